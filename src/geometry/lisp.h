// The LISP functions of the vector, matrix and plane family.
#pragma once

namespace zepk::geometry {

int lispVecUnit();
int lispVecNorm();
int lispVecCross();
int lispVecDot();
int lispVecAdd();
int lispVecSub();
int lispVecMxV();
int lispVecScale();
int lispVecIsCodirectional();
int lispVecIsParallel();
int lispVecIsPerpendicular();
int lispVecIsUnit();
int lispVecIsZero();
int lispVecRotateTo();
int lispVecPerp();
int lispVecNegate();
int lispVecOrthoProject();
int lispVecProject();
int lispVecMirror();
int lispVecRotateBy();
int lispVecAngleTo();

int lispMatIdentity();
int lispMatDet();
int lispMatInverse();
int lispMatTrp();
int lispMatProduct();
int lispMatTranslation();
int lispMatRotation();
int lispMatGetCoordSystem();
int lispMatSetCoordSystem();
int lispMatAlignCoordSys();
int lispMatMirroring();
int lispMatScaling();
int lispMatIsScaledOrtho();
int lispMatIsUniScaledOrtho();
int lispMatNorm();
int lispMatScale();
int lispMatWcs2Ucs();
int lispMatUcs2Wcs();
int lispMatMxP();
int lispMatBlockTransform2Ref();
int lispMatBlockTransform2Def();

int lispPlane();
int lispPlaneIntersectWith();
int lispLine3dIntersectWith();
int lispLine3dProjIntersectWith();
int lispInters();
int lispIsColinearTo();
int lispPointIsColinearTo();
int lispPointGetColinear();
int lispPointProject();
int lispPointPerToLine();
int lispPointPerDistance();
int lispPointGetTriIntersElev();


int lispCurveGetStartParam();
int lispCurveGetEndParam();
int lispCurveGetStartPoint();
int lispCurveGetEndPoint();
int lispCurveIsClosed();
int lispCurveIsPeriodic();
int lispCurveGetDistAtParam();
int lispCurveGetParamAtDist();
int lispCurveGetPointAtParam();
int lispCurveGetPointAtDist();
int lispCurveGetDistAtPoint();
int lispCurveGetParamAtPoint();
int lispCurveGetFirstDeriv();
int lispCurveGetSecondDeriv();
int lispCurveLength();
int lispCurveMidPoint();
int lispCurveGetClosestPointTo();
int lispCurveDistanceTo();
int lispCurveReverse();
int lispCurveGetSamplet();
int lispCurveGetUniformPoints();
int lispPolyGetData();
int lispClockWiseP();
int lispGetArea();
int lispCurveGetArea();
int lispCurveToLwpolyline();
int lispPointGetBulge();
int lispPointGetCenter();
int lispCurveInters();
int lispGetIntersPoints();
int lispCurveGetOrthoProjectedCurve();
int lispCurveGetProjectCurve();
int lispCurveGetSpline();
int lispCurveToRegion();
int lispRegionToPoly();
int lispCurveCentroid();
int lispPolyAddVertex();
int lispPolyRemovePoint();
int lispPolyOrderByIndex();
int lispPointsTransFormBy();
int lispCurveGetGripPoints();
int lispCurveGetStretchPoints();

}  // namespace zepk::geometry
