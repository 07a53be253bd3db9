// The LISP functions of the text, number and file services: thin edges
// that read the arguments, report failures in each function's own words,
// call the plain routines of this folder and return the result. The
// frame's function table binds them.
#pragma once

namespace zepk::services {

// Numbers and angles.
int lispRandSeed();
int lispRand();
int lispNumRound();
int lispNumDec2Base();
int lispNumBase2Dec();
// Angle conversions that report nothing: a missing or wrong argument
// gives no result.
int lispNumR2D();
int lispNumR2DMS();
int lispNumD2R();
int lispNumDMS2R();
int lispNumD2DMS();
int lispNumDMS2D();
// The same conversions, checked: too few, wrong and surplus arguments are
// reported.
int lispDEGtoR();
int lispRtoDEG();
int lispDEGtoDMS();
int lispDMStoDEG();
int lispDMStoR();
int lispRtoDMS();
// Geodetic, space rectangular and Gauss-Krueger plane coordinates.
int lispXY2BL();
int lispBL2XY();
int lispBLH2XYZ();
int lispXYZ2BLH();

// Formulas held in text.
int lispStringCal();
int lispStringExpress();

}  // namespace zepk::services

struct resbuf;

namespace zepk::services {

// The argument after the one at rb: past the whole list when rb opens one.
// Null at the end of the arguments.
resbuf* nextArgument(resbuf* rb);

}  // namespace zepk::services
