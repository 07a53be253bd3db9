// LISP functions of the number and angle family.
#include <cstdint>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/ads.h"
#include "host/system/crt_rand.h"
#include "host/wincompat.h"
#include "services/lisp.h"
#include "services/numbers.h"

namespace zepk::services {

using frame::ArgReader;
using frame::MsgStyle;

resbuf* nextArgument(resbuf* rb) {
  if (!rb) return nullptr;
  if (rb->restype == RTLB) {
    int depth = 0;
    for (; rb; rb = rb->rbnext) {
      if (rb->restype == RTLB) ++depth;
      else if (rb->restype == RTLE && --depth == 0) break;
    }
  }
  return rb ? rb->rbnext : nullptr;
}

namespace {

// ---------------------------------------------------------------- angles

// The silent form: no argument or a wrong one gives no result, and
// anything after the first argument is ignored.
int silent(double (*convert)(double)) {
  resbuf* cur = acedGetArgs();
  double v = 0;
  if (RbGetReal(&cur, v) == RTNORM) acedRetReal(convert(v));
  return RSRSLT;
}

// The checked form, in the colon style; a wrong argument has the
// unnumbered text.
int checked(double (*convert)(double)) {
  ArgReader in(MsgStyle::Colon);
  double v = 0;
  if (!in.real(v, 0) || !in.end()) return RTERROR;
  acedRetReal(convert(v));
  return RSRSLT;
}

// ---------------------------------------------------------------- random

// A seed from a short, or from a real: the low 16 bits of the real's
// stored form, which is 0 for most reals. False for any other type.
bool seedOf(const resbuf* rb, unsigned& seed) {
  if (rb && rb->restype == RTSHORT) {
    seed = static_cast<unsigned>(rb->resval.rint);
    return true;
  }
  if (rb && rb->restype == RTREAL) {
    uint64_t bits = 0;
    std::memcpy(&bits, &rb->resval.rreal, sizeof bits);
    seed = static_cast<unsigned>(bits & 0xFFFF);
    return true;
  }
  return false;
}

constexpr double kRandMax = 32767.0;

double randomReal(double scale) { return sys::crtRand() / kRandMax * scale; }

// ---------------------------------------------------------------- geodesy

constexpr MsgStyle kGeoStyle = MsgStyle::Bang;
constexpr const ACHAR* kBadEllipsoid = u"椭球类型错误，应为1~4之间!";

// A coordinate: a real, a short or a long.
bool coordinate(ArgReader& in, double& v, int n) {
  resbuf** cur = in.cursor();
  if (*cur && (*cur)->restype == RTLONG) {
    v = (*cur)->resval.rlong;
    *cur = (*cur)->rbnext;
    return true;
  }
  return in.real(v, n);
}

// The ellipsoid number, a short from 1 to 4.
const Ellipsoid* ellipsoid(ArgReader& in, int n) {
  if (in.atEnd()) {
    frame::failTooFew(kGeoStyle);
    return nullptr;
  }
  int32_t k = 0;
  if (RbGetShort(in.cursor(), k) != RTNORM) {
    frame::failBadArg(kGeoStyle, n);
    return nullptr;
  }
  const Ellipsoid* e = ellipsoidNumber(k);
  if (!e) frame::fail(kBadEllipsoid);
  return e;
}

// The two optional offsets of the plane conversions, added to the northing
// and to the easting; nothing may follow them.
bool planeOffsets(ArgReader& in, double& dx, double& dy) {
  if (!in.atEnd() && !coordinate(in, dx, 5)) return false;
  if (!in.atEnd() && !coordinate(in, dy, 6)) return false;
  return in.end();
}

int retReals(std::initializer_list<double> values) {
  std::vector<double> v(values);
  return frame::retList(RbFromReals(v.data(), static_cast<int>(v.size())));
}

}  // namespace

int lispNumR2D() { return silent(radToDeg); }
int lispNumR2DMS() { return silent(radToDms); }
int lispNumD2R() { return silent(degToRad); }
int lispNumDMS2R() { return silent(dmsToRad); }
int lispNumD2DMS() { return silent(degToDms); }
int lispNumDMS2D() { return silent(dmsToDeg); }

int lispRtoDEG() { return checked(radToDeg); }
int lispRtoDMS() { return checked(radToDms); }
int lispDEGtoR() { return checked(degToRad); }
int lispDMStoR() { return checked(dmsToRad); }
int lispDEGtoDMS() { return checked(degToDms); }
int lispDMStoDEG() { return checked(dmsToDeg); }

// (ZEPK-Num-Round value digits [even]): a third argument other than nil
// rounds half to even. Missing digits are reported as wrong digits.
int lispNumRound() {
  constexpr MsgStyle kStyle = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::failTooFew(kStyle);
  double x = 0;
  int32_t n = 0;
  if (RbGetReal(&cur, x) != RTNORM) return frame::failBadArg(kStyle, 1);
  if (RbGetShort(&cur, n) != RTNORM) return frame::failBadArg(kStyle, 2);
  bool even = false;
  if (cur) {
    even = cur->restype != RTNIL;
    cur = nextArgument(cur);
  }
  if (cur) return frame::failTooMany(kStyle);
  if (!even) {
    acedRetReal(roundOffset(x, n));
  } else if (auto r = roundHalfEven(x, n)) {
    acedRetReal(*r);
  }
  return RSRSLT;
}

// (ZEPK-Num-Dec2Base base value): bases 2, 8, 10 and 16; any other base
// gives no result. Arguments after the value are not looked at.
int lispNumDec2Base() {
  constexpr MsgStyle kStyle = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  int32_t base = 0, value = 0;
  if (RbGetShort(&cur, base) != RTNORM) return frame::failBadArg(kStyle, 1);
  if (RbGetLong(&cur, value) != RTNORM) return frame::failBadArg(kStyle, 2);
  if (auto text = toBase(base, value)) acedRetStr(std::u16string(text->begin(), text->end()).c_str());
  return RSRSLT;
}

// (ZEPK-Num-Base2Dec base text [as-text]): the text is read byte by byte
// in the system code page; a third argument other than nil gives the value
// as decimal text.
int lispNumBase2Dec() {
  constexpr MsgStyle kStyle = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  int32_t base = 0;
  std::u16string text;
  if (RbGetShort(&cur, base) != RTNORM) return frame::failBadArg(kStyle, 1);
  if (RbGetCString(&cur, text) != RTNORM) return frame::failBadArg(kStyle, 2);
  bool asText = false;
  if (cur) {
    asText = cur->restype != RTNIL;
    cur = nextArgument(cur);
  }
  if (cur) return frame::failTooMany(kStyle);
  std::string bytes(text.size() * 2, '\0');
  int len = WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                                static_cast<int>(bytes.size()), nullptr, nullptr);
  bytes.resize(len > 0 ? static_cast<size_t>(len) : 0);
  auto value = fromBase(base, bytes);
  if (!value) return RSRSLT;
  if (asText) {
    std::string digits = std::to_string(*value);
    acedRetStr(std::u16string(digits.begin(), digits.end()).c_str());
  } else {
    resbuf rb{};
    rb.restype = RTLONG;
    rb.resval.rlong = *value;
    acedRetVal(&rb);
  }
  return RSRSLT;
}

// (ZEPK-RandSeed [seed]): no argument seeds from the clock.
int lispRandSeed() {
  resbuf* cur = acedGetArgs();
  unsigned seed = 0;
  if (!cur) {
    sys::crtSrand(static_cast<unsigned>(std::time(nullptr)));
  } else if (seedOf(cur, seed)) {
    sys::crtSrand(seed);
  } else {
    acedRetNil();
    return RSRSLT;
  }
  acedRetT();
  return RSRSLT;
}

// (ZEPK-Rand), (ZEPK-Rand r|n), (ZEPK-Rand seed r|n [count]): a real r
// scales a real in 0..1, a short n gives an integer below it; with a count,
// a list of that many. A zero n, which has no values below it, is refused
// as a wrong argument.
int lispRand() {
  constexpr MsgStyle kStyle = MsgStyle::LineDot;
  resbuf* args = acedGetArgs();
  if (!args) {
    acedRetReal(randomReal(1.0));
    return RSRSLT;
  }
  resbuf* range = nextArgument(args);
  bool seeded = range != nullptr;
  if (!seeded) range = args;
  unsigned seed = 0;
  if (seeded && !seedOf(args, seed)) return frame::failBadArg(kStyle);
  const bool real = range->restype == RTREAL;
  if (!real && (range->restype != RTSHORT || range->resval.rint == 0)) return frame::failBadArg(kStyle);
  resbuf* cur = range->rbnext;
  const bool listed = cur != nullptr;
  int32_t count = 0;
  if (listed && RbGetShort(&cur, count) != RTNORM) return frame::failBadArg(kStyle);
  if (cur) return frame::failTooMany(kStyle);

  if (seeded) sys::crtSrand(seed);
  const double r = real ? range->resval.rreal : 0.0;
  const int n = real ? 1 : range->resval.rint;
  if (!listed) {
    if (real) acedRetReal(randomReal(r));
    else acedRetInt(sys::crtRand() % n);
    return RSRSLT;
  }
  if (real) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) values.push_back(randomReal(r));
    return frame::retList(RbFromReals(values.data(), static_cast<int>(values.size())));
  }
  std::vector<int32_t> values;
  for (int i = 0; i < count; ++i) values.push_back(sys::crtRand() % n);
  return frame::retList(RbFromInts(values.data(), static_cast<int>(values.size())));
}

// (ZEPK-XYZ2BLH x y z ellipsoid) -> (B L H), B and L in ddd.mmss.
int lispXYZ2BLH() {
  ArgReader in(kGeoStyle);
  double xyz[3] = {};
  for (int i = 0; i < 3; ++i)
    if (!coordinate(in, xyz[i], i + 1)) return RTERROR;
  const Ellipsoid* e = ellipsoid(in, 4);
  if (!e || !in.end()) return RTERROR;
  double lat = 0, lon = 0, h = 0;
  cartesianToGeodetic(*e, xyz, &lat, &lon, &h);
  return retReals({radToDms(lat), radToDms(lon), h});
}

// (ZEPK-BLH2XYZ B L H ellipsoid) -> (x y z), B and L in ddd.mmss.
int lispBLH2XYZ() {
  ArgReader in(kGeoStyle);
  double blh[3] = {};
  for (int i = 0; i < 3; ++i)
    if (!coordinate(in, blh[i], i + 1)) return RTERROR;
  const Ellipsoid* e = ellipsoid(in, 4);
  if (!e || !in.end()) return RTERROR;
  double xyz[3] = {};
  geodeticToCartesian(*e, dmsToRad(blh[0]), dmsToRad(blh[1]), blh[2], xyz);
  return retReals({xyz[0], xyz[1], xyz[2]});
}

// (ZEPK-XY2BL x y meridian ellipsoid [dx [dy]]) -> (B L) in ddd.mmss. The
// offsets are added to the plane coordinates before the inverse
// projection: 0 to the northing and -500000 to the easting by default.
int lispXY2BL() {
  ArgReader in(kGeoStyle);
  double x = 0, y = 0, meridian = 0, dx = 0.0, dy = -500000.0;
  if (!coordinate(in, x, 1) || !coordinate(in, y, 2) || !coordinate(in, meridian, 3)) return RTERROR;
  const Ellipsoid* e = ellipsoid(in, 4);
  if (!e || !planeOffsets(in, dx, dy)) return RTERROR;
  double lat = 0, lon = 0;
  gaussKruegerInverse(*e, dmsToRad(meridian), x + dx, y + dy, &lat, &lon);
  return retReals({radToDms(lat), radToDms(lon)});
}

// (ZEPK-BL2XY B L meridian ellipsoid [dx [dy]]) -> (x y), angles in
// ddd.mmss; the offsets are added to the projected northing (0 by default)
// and easting (500000 by default).
int lispBL2XY() {
  ArgReader in(kGeoStyle);
  double lat = 0, lon = 0, meridian = 0, dx = 0.0, dy = 500000.0;
  if (!coordinate(in, lat, 1) || !coordinate(in, lon, 2) || !coordinate(in, meridian, 3)) return RTERROR;
  const Ellipsoid* e = ellipsoid(in, 4);
  if (!e || !planeOffsets(in, dx, dy)) return RTERROR;
  double x = 0, y = 0;
  gaussKruegerForward(*e, dmsToRad(meridian), dmsToRad(lat), dmsToRad(lon), &x, &y);
  return retReals({x + dx, y + dy});
}

}  // namespace zepk::services
