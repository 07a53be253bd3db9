// The curve functions on entity names: vlax-curve-getStartParam and the
// rest. Each opens the entity for read, asks the curve (AcDbCurve), and
// gives nil where the curve has no answer: a name that is not a curve's, a
// parameter or distance off its range, a point not on it.
#include <functional>

#include "host/dbapserv.h"
#include "host/dbents.h"
#include "host/lisp/drawing.h"

namespace zepk::lisp {

namespace {

// Runs f on the curve the first argument names; nil when it names none.
Value withCurve(Interp& in, const Value& arg, const std::function<Value(const AcDbCurve&)>& f) {
  int64_t n[2];
  argEname(in, arg, n);
  AcDbObjectId id;
  if (acdbGetObjectId(id, n) != Acad::eOk) return Value();
  AcDbObjectPointer<AcDbCurve> curve(id, AcDb::kForRead);
  if (curve.openStatus() != Acad::eOk) return Value();
  return f(*curve.object());
}

Value point(const AcGePoint3d& p) {
  double c[3] = {p.x, p.y, p.z};
  return pointValue(c, 3);
}

Value vec(const AcGeVector3d& v) {
  double c[3] = {v.x, v.y, v.z};
  return pointValue(c, 3);
}

Value real(Acad::ErrorStatus es, double v) { return es == Acad::eOk ? Value::real(v) : Value(); }
Value pointOr(Acad::ErrorStatus es, const AcGePoint3d& p) { return es == Acad::eOk ? point(p) : Value(); }
Value vecOr(Acad::ErrorStatus es, const AcGeVector3d& v) { return es == Acad::eOk ? vec(v) : Value(); }

AcGePoint3d argPoint3d(Interp& in, const Value& v) {
  double p[3] = {0, 0, 0};
  argPoint(in, v, p);
  return {p[0], p[1], p[2]};
}

Value fnStartParam(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) {
    double p;
    Acad::ErrorStatus es = c.getStartParam(p);
    return real(es, p);
  });
}

Value fnEndParam(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) {
    double p;
    Acad::ErrorStatus es = c.getEndParam(p);
    return real(es, p);
  });
}

Value fnStartPoint(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getStartPoint(p);
    return pointOr(es, p);
  });
}

Value fnEndPoint(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getEndPoint(p);
    return pointOr(es, p);
  });
}

Value fnPointAtParam(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double t = argNum(in, a[1]);
  return withCurve(in, a[0], [t](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getPointAtParam(t, p);
    return pointOr(es, p);
  });
}

Value fnParamAtPoint(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  AcGePoint3d q = argPoint3d(in, a[1]);
  return withCurve(in, a[0], [q](const AcDbCurve& c) {
    double t;
    Acad::ErrorStatus es = c.getParamAtPoint(q, t);
    return real(es, t);
  });
}

Value fnDistAtParam(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double t = argNum(in, a[1]);
  return withCurve(in, a[0], [t](const AcDbCurve& c) {
    double d;
    Acad::ErrorStatus es = c.getDistAtParam(t, d);
    return real(es, d);
  });
}

Value fnParamAtDist(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double d = argNum(in, a[1]);
  return withCurve(in, a[0], [d](const AcDbCurve& c) {
    double t;
    Acad::ErrorStatus es = c.getParamAtDist(d, t);
    return real(es, t);
  });
}

Value fnDistAtPoint(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  AcGePoint3d q = argPoint3d(in, a[1]);
  return withCurve(in, a[0], [q](const AcDbCurve& c) {
    double d;
    Acad::ErrorStatus es = c.getDistAtPoint(q, d);
    return real(es, d);
  });
}

Value fnPointAtDist(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double d = argNum(in, a[1]);
  return withCurve(in, a[0], [d](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getPointAtDist(d, p);
    return pointOr(es, p);
  });
}

Value fnFirstDeriv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double t = argNum(in, a[1]);
  return withCurve(in, a[0], [t](const AcDbCurve& c) {
    AcGeVector3d v;
    Acad::ErrorStatus es = c.getFirstDeriv(t, v);
    return vecOr(es, v);
  });
}

Value fnSecondDeriv(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  double t = argNum(in, a[1]);
  return withCurve(in, a[0], [t](const AcDbCurve& c) {
    AcGeVector3d v;
    Acad::ErrorStatus es = c.getSecondDeriv(t, v);
    return vecOr(es, v);
  });
}

Value fnClosestPointTo(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  AcGePoint3d q = argPoint3d(in, a[1]);
  bool extend = a.size > 2 && !a[2].isNil();
  return withCurve(in, a[0], [q, extend](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getClosestPointTo(q, p, extend);
    return pointOr(es, p);
  });
}

Value fnClosestPointToProjection(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 4);
  AcGePoint3d q = argPoint3d(in, a[1]);
  AcGePoint3d n = argPoint3d(in, a[2]);
  bool extend = a.size > 3 && !a[3].isNil();
  return withCurve(in, a[0], [q, n, extend](const AcDbCurve& c) {
    AcGePoint3d p;
    Acad::ErrorStatus es = c.getClosestPointTo(q, n.asVector(), p, extend);
    return pointOr(es, p);
  });
}

Value fnArea(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) {
    double v;
    Acad::ErrorStatus es = c.getArea(v);
    return real(es, v);
  });
}

Value truth(bool b) { return b ? T() : Value(); }

Value fnIsClosed(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) { return truth(c.isClosed()); });
}

Value fnIsPeriodic(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) { return truth(c.isPeriodic()); });
}

Value fnIsPlanar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  return withCurve(in, a[0], [](const AcDbCurve& c) { return truth(c.isPlanar()); });
}

}  // namespace

void registerCurveFunctions(Interp& in) {
  in.defSubr("vlax-curve-getStartParam", fnStartParam);
  in.defSubr("vlax-curve-getEndParam", fnEndParam);
  in.defSubr("vlax-curve-getStartPoint", fnStartPoint);
  in.defSubr("vlax-curve-getEndPoint", fnEndPoint);
  in.defSubr("vlax-curve-getPointAtParam", fnPointAtParam);
  in.defSubr("vlax-curve-getParamAtPoint", fnParamAtPoint);
  in.defSubr("vlax-curve-getDistAtParam", fnDistAtParam);
  in.defSubr("vlax-curve-getParamAtDist", fnParamAtDist);
  in.defSubr("vlax-curve-getDistAtPoint", fnDistAtPoint);
  in.defSubr("vlax-curve-getPointAtDist", fnPointAtDist);
  in.defSubr("vlax-curve-getFirstDeriv", fnFirstDeriv);
  in.defSubr("vlax-curve-getSecondDeriv", fnSecondDeriv);
  in.defSubr("vlax-curve-getClosestPointTo", fnClosestPointTo);
  in.defSubr("vlax-curve-getClosestPointToProjection", fnClosestPointToProjection);
  in.defSubr("vlax-curve-getArea", fnArea);
  in.defSubr("vlax-curve-isClosed", fnIsClosed);
  in.defSubr("vlax-curve-isPeriodic", fnIsPeriodic);
  in.defSubr("vlax-curve-isPlanar", fnIsPlanar);
}

}  // namespace zepk::lisp
