// Hatches (HATCH) and regions (REGION): areas bounded by loops.
#include <cmath>

#include "host/db/ents_internal.h"
#include "host/dbhatch.h"
#include "host/dbregion.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::MemoryDxfFiler;
using zepk::db::readInt;
using zepk::db::readPoint2d;
using zepk::db::readReal;
using zepk::db::take;

namespace {

constexpr double kPi = 3.14159265358979323846;
// Files hold the angles of edges and pattern lines in degrees.
double toDegrees(double rad) { return rad * 180.0 / kPi; }
double toRadians(double deg) { return deg * kPi / 180.0; }

#define ZEPK_TRY(expr)                          \
  do {                                          \
    Acad::ErrorStatus es_ = (expr);             \
    if (es_ != Acad::eOk) return es_;           \
  } while (0)

bool peekIs(MemoryDxfFiler* f, int code) { return !f->atEOF() && f->peekCode() == code; }

Acad::ErrorStatus readVector2d(MemoryDxfFiler* f, int code, AcGeVector2d& v) {
  AcGePoint2d p;
  ZEPK_TRY(readPoint2d(f, code, p));
  v = AcGeVector2d(p.x, p.y);
  return Acad::eOk;
}

Acad::ErrorStatus readFlag(MemoryDxfFiler* f, int code, bool& out) {
  int64_t v = 0;
  ZEPK_TRY(readInt(f, code, v));
  out = v != 0;
  return Acad::eOk;
}

// ---------------------------------------------------------------- hatch edges

using Edge = AcDbHatch::Edge;
using Loop = AcDbHatch::Loop;

Acad::ErrorStatus readEdge(MemoryDxfFiler* f, Edge& e) {
  int64_t type = 0;
  ZEPK_TRY(readInt(f, 72, type));
  switch (type) {
    case AcDbHatch::kLine:
      e.type = AcDbHatch::kLine;
      ZEPK_TRY(readPoint2d(f, 10, e.start));
      ZEPK_TRY(readPoint2d(f, 11, e.end));
      return Acad::eOk;
    case AcDbHatch::kCirArc:
    case AcDbHatch::kEllArc: {
      e.type = static_cast<AcDbHatch::HatchEdgeType>(type);
      ZEPK_TRY(readPoint2d(f, 10, e.center));
      if (type == AcDbHatch::kEllArc) {
        ZEPK_TRY(readVector2d(f, 11, e.majorAxis));
        ZEPK_TRY(readReal(f, 40, e.minorMajorRatio));
      } else {
        ZEPK_TRY(readReal(f, 40, e.radius));
      }
      double s = 0, t = 0;
      ZEPK_TRY(readReal(f, 50, s));
      ZEPK_TRY(readReal(f, 51, t));
      e.startAngle = toRadians(s);
      e.endAngle = toRadians(t);
      e.ccw = true;
      if (peekIs(f, 73)) ZEPK_TRY(readFlag(f, 73, e.ccw));
      return Acad::eOk;
    }
    case AcDbHatch::kSpline: {
      e.type = AcDbHatch::kSpline;
      int64_t degree = 3, nKnots = 0, nPoints = 0;
      ZEPK_TRY(readInt(f, 94, degree));
      e.degree = static_cast<int>(degree);
      ZEPK_TRY(readFlag(f, 73, e.rational));
      ZEPK_TRY(readFlag(f, 74, e.periodic));
      ZEPK_TRY(readInt(f, 95, nKnots));
      ZEPK_TRY(readInt(f, 96, nPoints));
      if (nKnots < 0 || nPoints < 0) return Acad::eBadDxfSequence;
      for (int64_t i = 0; i < nKnots; ++i) {
        double k = 0;
        ZEPK_TRY(readReal(f, 40, k));
        e.knots.push_back(k);
      }
      for (int64_t i = 0; i < nPoints; ++i) {
        AcGePoint2d p;
        ZEPK_TRY(readPoint2d(f, 10, p));
        e.controlPoints.push_back(p);
        if (peekIs(f, 42)) {
          double w = 1;
          ZEPK_TRY(readReal(f, 42, w));
          e.weights.push_back(w);
        }
      }
      // Fit data (files from 2010 on always give its count). A 97 that
      // is followed by fit points, by another 97 (the loop's own count of
      // sources), or with 0 by a tangent, is the fit point count; any
      // other 97 is the loop's.
      if (peekIs(f, 97)) {
        const auto& items = f->items();
        size_t p = f->position();
        int next = p + 1 < items.size() ? items[p + 1].code : 0;
        bool fit = next == 11 || next == 97 || ((next == 12 || next == 13) && items[p].i == 0);
        if (fit) {
          int64_t n = 0;
          ZEPK_TRY(readInt(f, 97, n));
          e.hasFitCount = true;
          for (int64_t i = 0; i < n; ++i) {
            AcGePoint2d q;
            ZEPK_TRY(readPoint2d(f, 11, q));
            e.fitPoints.push_back(q);
          }
        }
      }
      if (peekIs(f, 12)) {
        e.hasStartTangent = true;
        ZEPK_TRY(readVector2d(f, 12, e.startTangent));
      }
      if (peekIs(f, 13)) {
        e.hasEndTangent = true;
        ZEPK_TRY(readVector2d(f, 13, e.endTangent));
      }
      return Acad::eOk;
    }
    default: return Acad::eBadDxfSequence;
  }
}

void writeEdge(AcDbDxfFiler* f, const Edge& e) {
  f->writeInt16(72, static_cast<Adesk::Int16>(e.type));
  switch (e.type) {
    case AcDbHatch::kLine:
      f->writePoint2d(10, e.start);
      f->writePoint2d(11, e.end);
      break;
    case AcDbHatch::kCirArc:
    case AcDbHatch::kEllArc:
      f->writePoint2d(10, e.center);
      if (e.type == AcDbHatch::kEllArc) {
        f->writePoint2d(11, AcGePoint2d(e.majorAxis.x, e.majorAxis.y));
        f->writeDouble(40, e.minorMajorRatio);
      } else {
        f->writeDouble(40, e.radius);
      }
      f->writeDouble(50, toDegrees(e.startAngle));
      f->writeDouble(51, toDegrees(e.endAngle));
      f->writeInt16(73, e.ccw ? 1 : 0);
      break;
    case AcDbHatch::kSpline: {
      f->writeInt32(94, e.degree);
      bool rational = e.rational || !e.weights.empty();
      f->writeInt16(73, rational ? 1 : 0);
      f->writeInt16(74, e.periodic ? 1 : 0);
      f->writeInt32(95, static_cast<Adesk::Int32>(e.knots.size()));
      f->writeInt32(96, static_cast<Adesk::Int32>(e.controlPoints.size()));
      for (double k : e.knots) f->writeDouble(40, k);
      for (size_t i = 0; i < e.controlPoints.size(); ++i) {
        f->writePoint2d(10, e.controlPoints[i]);
        if (rational) f->writeDouble(42, i < e.weights.size() ? e.weights[i] : 1.0);
      }
      if (e.hasFitCount || !e.fitPoints.empty()) {
        f->writeInt32(97, static_cast<Adesk::Int32>(e.fitPoints.size()));
        for (const AcGePoint2d& p : e.fitPoints) f->writePoint2d(11, p);
      }
      if (e.hasStartTangent) f->writePoint2d(12, AcGePoint2d(e.startTangent.x, e.startTangent.y));
      if (e.hasEndTangent) f->writePoint2d(13, AcGePoint2d(e.endTangent.x, e.endTangent.y));
      break;
    }
  }
}

Acad::ErrorStatus readLoops(MemoryDxfFiler* f, std::vector<Loop>& loops) {
  loops.clear();
  int64_t n = 0;
  ZEPK_TRY(readInt(f, 91, n));
  for (int64_t i = 0; i < n; ++i) {
    Loop loop;
    int64_t type = 0;
    ZEPK_TRY(readInt(f, 92, type));
    loop.type = static_cast<Adesk::Int32>(type);
    if (type & AcDbHatch::kPolyline) {
      int64_t count = 0;
      bool hasBulge = false;
      ZEPK_TRY(readFlag(f, 72, hasBulge));
      ZEPK_TRY(readFlag(f, 73, loop.closed));
      ZEPK_TRY(readInt(f, 93, count));
      std::vector<double> bulges;
      bool anyBulge = false;
      for (int64_t k = 0; k < count; ++k) {
        AcGePoint2d p;
        ZEPK_TRY(readPoint2d(f, 10, p));
        loop.vertices.push_back(p);
        double b = 0;
        if (peekIs(f, 42)) {
          ZEPK_TRY(readReal(f, 42, b));
          anyBulge = true;
        }
        bulges.push_back(b);
      }
      if (hasBulge || anyBulge) loop.bulges = std::move(bulges);
    } else {
      int64_t count = 0;
      ZEPK_TRY(readInt(f, 93, count));
      for (int64_t k = 0; k < count; ++k) {
        Edge e;
        ZEPK_TRY(readEdge(f, e));
        loop.edges.push_back(std::move(e));
      }
    }
    if (peekIs(f, 97)) {
      int64_t sources = 0;
      ZEPK_TRY(readInt(f, 97, sources));
      for (int64_t k = 0; k < sources; ++k) {
        const DxfItem* it = take(f, 330);
        if (!it || it->kind != DxfItem::Id) return Acad::eBadDxfSequence;
        loop.sourceIds.push_back(it->id);
      }
    }
    loops.push_back(std::move(loop));
  }
  return Acad::eOk;
}

void writeLoops(AcDbDxfFiler* f, const std::vector<Loop>& loops) {
  f->writeInt32(91, static_cast<Adesk::Int32>(loops.size()));
  for (const Loop& loop : loops) {
    f->writeInt32(92, loop.type);
    if (loop.type & AcDbHatch::kPolyline) {
      bool hasBulge = false;
      for (double b : loop.bulges) hasBulge = hasBulge || b != 0.0;
      f->writeInt16(72, hasBulge ? 1 : 0);
      f->writeInt16(73, loop.closed ? 1 : 0);
      f->writeInt32(93, static_cast<Adesk::Int32>(loop.vertices.size()));
      for (size_t i = 0; i < loop.vertices.size(); ++i) {
        f->writePoint2d(10, loop.vertices[i]);
        if (hasBulge) f->writeDouble(42, i < loop.bulges.size() ? loop.bulges[i] : 0.0);
      }
    } else {
      f->writeInt32(93, static_cast<Adesk::Int32>(loop.edges.size()));
      for (const Edge& e : loop.edges) writeEdge(f, e);
    }
    f->writeInt32(97, static_cast<Adesk::Int32>(loop.sourceIds.size()));
    for (AcDbObjectId id : loop.sourceIds) f->writeObjectId(330, id);
  }
}

// The DWG-style stream of loops: everything, in order.
template <class T>
void putReals(AcDbDwgFiler* f, const std::vector<T>& v) {
  f->writeInt32(static_cast<Adesk::Int32>(v.size()));
  for (const T& x : v) {
    if constexpr (std::is_same_v<T, double>) f->writeDouble(x);
    else f->writePoint2d(x);
  }
}

template <class T>
bool getReals(AcDbDwgFiler* f, std::vector<T>& v) {
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  if (n < 0 || f->filerStatus() != Acad::eOk) return false;
  v.assign(static_cast<size_t>(n), T());
  for (T& x : v) {
    if constexpr (std::is_same_v<T, double>) f->readDouble(&x);
    else f->readPoint2d(&x);
  }
  return f->filerStatus() == Acad::eOk;
}

void writeLoopsDwg(AcDbDwgFiler* f, const std::vector<Loop>& loops) {
  f->writeInt32(static_cast<Adesk::Int32>(loops.size()));
  for (const Loop& loop : loops) {
    f->writeInt32(loop.type);
    putReals(f, loop.vertices);
    putReals(f, loop.bulges);
    f->writeBool(loop.closed);
    f->writeInt32(static_cast<Adesk::Int32>(loop.edges.size()));
    for (const Edge& e : loop.edges) {
      f->writeInt32(e.type);
      f->writePoint2d(e.start);
      f->writePoint2d(e.end);
      f->writePoint2d(e.center);
      f->writeDouble(e.radius);
      f->writePoint2d(AcGePoint2d(e.majorAxis.x, e.majorAxis.y));
      f->writeDouble(e.minorMajorRatio);
      f->writeDouble(e.startAngle);
      f->writeDouble(e.endAngle);
      f->writeBool(e.ccw);
      f->writeInt32(e.degree);
      f->writeBool(e.rational);
      f->writeBool(e.periodic);
      putReals(f, e.knots);
      putReals(f, e.controlPoints);
      putReals(f, e.weights);
      putReals(f, e.fitPoints);
      f->writeBool(e.hasFitCount);
      f->writeBool(e.hasStartTangent);
      f->writeBool(e.hasEndTangent);
      f->writePoint2d(AcGePoint2d(e.startTangent.x, e.startTangent.y));
      f->writePoint2d(AcGePoint2d(e.endTangent.x, e.endTangent.y));
    }
    f->writeInt32(static_cast<Adesk::Int32>(loop.sourceIds.size()));
    for (AcDbObjectId id : loop.sourceIds) f->writeSoftPointerId(id);
  }
}

Acad::ErrorStatus readLoopsDwg(AcDbDwgFiler* f, std::vector<Loop>& loops) {
  loops.clear();
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    Loop loop;
    f->readInt32(&loop.type);
    if (!getReals(f, loop.vertices) || !getReals(f, loop.bulges)) return Acad::eFilerError;
    f->readBool(&loop.closed);
    Adesk::Int32 edges = 0;
    f->readInt32(&edges);
    for (Adesk::Int32 k = 0; k < edges && f->filerStatus() == Acad::eOk; ++k) {
      Edge e;
      Adesk::Int32 type = 0;
      f->readInt32(&type);
      e.type = static_cast<AcDbHatch::HatchEdgeType>(type);
      f->readPoint2d(&e.start);
      f->readPoint2d(&e.end);
      f->readPoint2d(&e.center);
      f->readDouble(&e.radius);
      AcGePoint2d v;
      f->readPoint2d(&v);
      e.majorAxis = AcGeVector2d(v.x, v.y);
      f->readDouble(&e.minorMajorRatio);
      f->readDouble(&e.startAngle);
      f->readDouble(&e.endAngle);
      f->readBool(&e.ccw);
      Adesk::Int32 degree = 0;
      f->readInt32(&degree);
      e.degree = degree;
      f->readBool(&e.rational);
      f->readBool(&e.periodic);
      if (!getReals(f, e.knots) || !getReals(f, e.controlPoints) || !getReals(f, e.weights) ||
          !getReals(f, e.fitPoints))
        return Acad::eFilerError;
      f->readBool(&e.hasFitCount);
      f->readBool(&e.hasStartTangent);
      f->readBool(&e.hasEndTangent);
      f->readPoint2d(&v);
      e.startTangent = AcGeVector2d(v.x, v.y);
      f->readPoint2d(&v);
      e.endTangent = AcGeVector2d(v.x, v.y);
      loop.edges.push_back(std::move(e));
    }
    Adesk::Int32 sources = 0;
    f->readInt32(&sources);
    for (Adesk::Int32 k = 0; k < sources && f->filerStatus() == Acad::eOk; ++k) {
      AcDbObjectId id;
      f->readSoftPointerId(&id);
      loop.sourceIds.push_back(id);
    }
    loops.push_back(std::move(loop));
  }
  return f->filerStatus();
}

bool isGradientCode(int code) {
  return (code >= 450 && code <= 453) || (code >= 460 && code <= 463) || code == 470 || code == 63 || code == 421;
}

}  // namespace

// ---------------------------------------------------------------- hatch

ZEPK_DEFINE_ENTITY_CLASS(AcDbHatch, AcDbEntity, u"HATCH")
ZEPK_DEFINE_ENTITY_FILERS(AcDbHatch, AcDbEntity)

const ClassSchema& AcDbHatch::schema() {
  static const ClassSchema s{
      u"AcDbHatch",
      {
          field<&AcDbHatch::elevationPoint_>(10, "ElevationPoint"),
          field<&AcDbHatch::normal_>(210, "Normal", AcGeVector3d(0, 0, 1)),
          field<&AcDbHatch::patternName_>(2, "PatternName", u"SOLID"),
          field<&AcDbHatch::solidFill_>(70, "SolidFill", 1),
          field<&AcDbHatch::associative_>(71, "Associative", 0),
          customPart(
              {91},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                writeLoops(f, static_cast<const AcDbHatch*>(o)->loops_);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) { return readLoops(f, static_cast<AcDbHatch*>(o)->loops_); },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                writeLoopsDwg(f, static_cast<const AcDbHatch*>(o)->loops_);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) { return readLoopsDwg(f, static_cast<AcDbHatch*>(o)->loops_); },
              [](AcDbObject* o) { static_cast<AcDbHatch*>(o)->loops_.clear(); }),
          field<&AcDbHatch::style_>(75, "HatchStyle", kNormal),
          field<&AcDbHatch::patternType_>(76, "PatternType", kPreDefined),
          field<&AcDbHatch::patternAngle_>(52, "PatternAngle", 0.0, kOptional),
          field<&AcDbHatch::patternScale_>(41, "PatternScale", 1.0, kOptional),
          field<&AcDbHatch::patternDouble_>(77, "PatternDouble", 0, kOptional),
          // Pattern lines: 78 their count, then each line's angle (53, in
          // degrees), base point (43, 44), offset (45, 46) and dashes (79
          // their count, 49 each).
          customPart(
              {78},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const auto& lines = static_cast<const AcDbHatch*>(o)->patternLines_;
                if (lines.empty() && !f->includesDefaultValues()) return f->filerStatus();
                f->writeInt16(78, static_cast<Adesk::Int16>(lines.size()));
                for (const PatternLine& l : lines) {
                  f->writeDouble(53, toDegrees(l.angle));
                  f->writeDouble(43, l.baseX);
                  f->writeDouble(44, l.baseY);
                  f->writeDouble(45, l.offsetX);
                  f->writeDouble(46, l.offsetY);
                  f->writeInt16(79, static_cast<Adesk::Int16>(l.dashes.size()));
                  for (double d : l.dashes) f->writeDouble(49, d);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto& lines = static_cast<AcDbHatch*>(o)->patternLines_;
                lines.clear();
                int64_t n = 0;
                ZEPK_TRY(readInt(f, 78, n));
                for (int64_t i = 0; i < n; ++i) {
                  PatternLine l;
                  double angle = 0;
                  int64_t dashes = 0;
                  ZEPK_TRY(readReal(f, 53, angle));
                  l.angle = toRadians(angle);
                  ZEPK_TRY(readReal(f, 43, l.baseX));
                  ZEPK_TRY(readReal(f, 44, l.baseY));
                  ZEPK_TRY(readReal(f, 45, l.offsetX));
                  ZEPK_TRY(readReal(f, 46, l.offsetY));
                  ZEPK_TRY(readInt(f, 79, dashes));
                  for (int64_t k = 0; k < dashes; ++k) {
                    double d = 0;
                    ZEPK_TRY(readReal(f, 49, d));
                    l.dashes.push_back(d);
                  }
                  lines.push_back(std::move(l));
                }
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                const auto& lines = static_cast<const AcDbHatch*>(o)->patternLines_;
                f->writeInt32(static_cast<Adesk::Int32>(lines.size()));
                for (const PatternLine& l : lines) {
                  f->writeDouble(l.angle);
                  f->writeDouble(l.baseX);
                  f->writeDouble(l.baseY);
                  f->writeDouble(l.offsetX);
                  f->writeDouble(l.offsetY);
                  putReals(f, l.dashes);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto& lines = static_cast<AcDbHatch*>(o)->patternLines_;
                lines.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  PatternLine l;
                  f->readDouble(&l.angle);
                  f->readDouble(&l.baseX);
                  f->readDouble(&l.baseY);
                  f->readDouble(&l.offsetX);
                  f->readDouble(&l.offsetY);
                  if (!getReals(f, l.dashes)) return Acad::eFilerError;
                  lines.push_back(std::move(l));
                }
                return f->filerStatus();
              },
              [](AcDbObject* o) { static_cast<AcDbHatch*>(o)->patternLines_.clear(); }),
          field<&AcDbHatch::pixelSize_>(47, "PixelSize", 0.0, kOptional),
          // Seed points: 98 their count, then 10 each.
          customPart(
              {98},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const auto& seeds = static_cast<const AcDbHatch*>(o)->seeds_;
                f->writeInt32(98, static_cast<Adesk::Int32>(seeds.size()));
                for (const AcGePoint2d& p : seeds) f->writePoint2d(10, p);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto& seeds = static_cast<AcDbHatch*>(o)->seeds_;
                seeds.clear();
                int64_t n = 0;
                ZEPK_TRY(readInt(f, 98, n));
                for (int64_t i = 0; i < n && peekIs(f, 10); ++i) {
                  AcGePoint2d p;
                  ZEPK_TRY(readPoint2d(f, 10, p));
                  seeds.push_back(p);
                }
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                putReals(f, static_cast<const AcDbHatch*>(o)->seeds_);
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                return getReals(f, static_cast<AcDbHatch*>(o)->seeds_) ? Acad::eOk : Acad::eFilerError;
              },
              [](AcDbObject* o) { static_cast<AcDbHatch*>(o)->seeds_.clear(); }),
          // The gradient (files from 2004 on): 450 to 453, 460 to 463, 470,
          // and for each colour 463, 63 and 421.
          customPart(
              {450, 451, 452, 453, 460, 461, 462, 463, 470},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const Gradient& g = static_cast<const AcDbHatch*>(o)->gradient_;
                if (!g.present) return f->filerStatus();
                f->writeInt32(450, g.solidOrGradient);
                f->writeInt32(451, g.reserved);
                f->writeDouble(460, g.angle);
                f->writeDouble(461, g.shift);
                f->writeInt32(452, g.oneColor);
                f->writeDouble(462, g.tint);
                f->writeInt32(453, static_cast<Adesk::Int32>(g.colors.size()));
                for (const GradientColor& c : g.colors) {
                  f->writeDouble(463, c.value);
                  if (c.colorIndex >= 0) f->writeInt16(63, c.colorIndex);
                  f->writeInt32(421, static_cast<Adesk::Int32>(c.rgb));
                }
                return f->writeString(470, g.name);
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                Gradient& g = static_cast<AcDbHatch*>(o)->gradient_;
                g = Gradient();
                g.present = true;
                while (!f->atEOF() && isGradientCode(f->peekCode())) {
                  const DxfItem* it = f->next();
                  double real = it->kind == DxfItem::Real ? it->p[0] : static_cast<double>(it->i);
                  auto lastColor = [&]() -> GradientColor& {
                    if (g.colors.empty()) g.colors.emplace_back();
                    return g.colors.back();
                  };
                  switch (it->code) {
                    case 450: g.solidOrGradient = static_cast<Adesk::Int32>(it->i); break;
                    case 451: g.reserved = static_cast<Adesk::Int32>(it->i); break;
                    case 452: g.oneColor = static_cast<Adesk::Int32>(it->i); break;
                    case 453: break;  // the count: the colours' own
                    case 460: g.angle = real; break;
                    case 461: g.shift = real; break;
                    case 462: g.tint = real; break;
                    case 463: g.colors.emplace_back().value = real; break;
                    case 63: lastColor().colorIndex = static_cast<Adesk::Int16>(it->i); break;
                    case 421: lastColor().rgb = static_cast<Adesk::UInt32>(it->i); break;
                    case 470: g.name = it->s; break;
                    default: break;
                  }
                }
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                const Gradient& g = static_cast<const AcDbHatch*>(o)->gradient_;
                f->writeBool(g.present);
                f->writeInt32(g.solidOrGradient);
                f->writeInt32(g.reserved);
                f->writeInt32(g.oneColor);
                f->writeDouble(g.angle);
                f->writeDouble(g.shift);
                f->writeDouble(g.tint);
                f->writeInt32(static_cast<Adesk::Int32>(g.colors.size()));
                for (const GradientColor& c : g.colors) {
                  f->writeDouble(c.value);
                  f->writeInt16(c.colorIndex);
                  f->writeUInt32(c.rgb);
                }
                return f->writeString(g.name);
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                Gradient& g = static_cast<AcDbHatch*>(o)->gradient_;
                f->readBool(&g.present);
                f->readInt32(&g.solidOrGradient);
                f->readInt32(&g.reserved);
                f->readInt32(&g.oneColor);
                f->readDouble(&g.angle);
                f->readDouble(&g.shift);
                f->readDouble(&g.tint);
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                g.colors.clear();
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  GradientColor c;
                  f->readDouble(&c.value);
                  f->readInt16(&c.colorIndex);
                  f->readUInt32(&c.rgb);
                  g.colors.push_back(c);
                }
                return f->readString(&g.name);
              },
              [](AcDbObject* o) { static_cast<AcDbHatch*>(o)->gradient_ = Gradient(); }),
      }};
  return s;
}

Adesk::Int32 AcDbHatch::loopTypeAt(int loopIndex) const {
  if (loopIndex < 0 || loopIndex >= numLoops()) return kDefault;
  return loops_[static_cast<size_t>(loopIndex)].type;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                        const AcGeDoubleArray& bulges) {
  Loop loop;
  loop.type = loopType | kPolyline;
  loop.vertices = vertices;
  loop.bulges = bulges;
  return appendLoop(loop);
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const std::vector<Edge>& edges) {
  Loop loop;
  loop.type = loopType & ~kPolyline;
  loop.edges = edges;
  return appendLoop(loop);
}

Acad::ErrorStatus AcDbHatch::appendLoop(const Loop& loop) { return insertLoopAt(numLoops(), loop); }

Acad::ErrorStatus AcDbHatch::insertLoopAt(int loopIndex, const Loop& loop) {
  if (loopIndex < 0 || loopIndex > numLoops()) return Acad::eInvalidIndex;
  bool polyline = loop.type & kPolyline;
  if (polyline ? loop.vertices.size() < 2 : loop.edges.empty()) return Acad::eInvalidInput;
  if (polyline && !loop.bulges.empty() && loop.bulges.size() != loop.vertices.size()) return Acad::eInvalidInput;
  assertWriteEnabled();
  loops_.insert(loops_.begin() + loopIndex, loop);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeLoopAt(int loopIndex) {
  if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  loops_.erase(loops_.begin() + loopIndex);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int loopIndex, Adesk::Int32& loopType, AcGePoint2dArray& vertices,
                                       AcGeDoubleArray& bulges) const {
  if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
  const Loop& loop = loops_[static_cast<size_t>(loopIndex)];
  if (!(loop.type & kPolyline)) return Acad::eNotApplicable;
  loopType = loop.type;
  vertices = loop.vertices;
  bulges = loop.bulges;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getAssocObjIdsAt(int loopIndex, AcDbObjectIdArray& ids) const {
  if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
  ids = loops_[static_cast<size_t>(loopIndex)].sourceIds;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setAssocObjIdsAt(int loopIndex, const AcDbObjectIdArray& ids) {
  if (loopIndex < 0 || loopIndex >= numLoops()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  loops_[static_cast<size_t>(loopIndex)].sourceIds = ids;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setAssociative(bool isAssociative) {
  assertWriteEnabled();
  associative_ = isAssociative ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setHatchObjectType(HatchObjectType type) {
  assertWriteEnabled();
  if (type == kGradientObject) {
    gradient_.present = true;
    gradient_.solidOrGradient = 1;
    solidFill_ = 1;
    patternName_ = u"SOLID";
  } else if (gradient_.present) {
    gradient_.solidOrGradient = 0;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
  if (style < kNormal || style > kIgnore) return Acad::eInvalidInput;
  assertWriteEnabled();
  style_ = static_cast<int16_t>(style);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType patType, const ACHAR* patName) {
  if (!patName || !*patName || patType < kUserDefined || patType > kCustomDefined) return Acad::eInvalidInput;
  assertWriteEnabled();
  patternType_ = static_cast<int16_t>(patType);
  patternName_ = patName;
  std::u16string upper = patternName_;
  for (char16_t& c : upper)
    if (c >= u'a' && c <= u'z') c = char16_t(c - 32);
  solidFill_ = upper == u"SOLID" ? 1 : 0;
  if (!solidFill_ && gradient_.present) gradient_.solidOrGradient = 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternAngle(double angle) {
  assertWriteEnabled();
  patternAngle_ = angle;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
  if (!(scale > 0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  patternScale_ = scale;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternSpace(double space) { return setPatternScale(space); }

Acad::ErrorStatus AcDbHatch::setPatternDouble(bool isDouble) {
  assertWriteEnabled();
  patternDouble_ = isDouble ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getPatternDefinitionAt(int index, double& angle, double& baseX, double& baseY,
                                                    double& offsetX, double& offsetY,
                                                    AcGeDoubleArray& dashes) const {
  if (index < 0 || index >= numPatternDefinitions()) return Acad::eInvalidIndex;
  const PatternLine& l = patternLines_[static_cast<size_t>(index)];
  angle = l.angle;
  baseX = l.baseX;
  baseY = l.baseY;
  offsetX = l.offsetX;
  offsetY = l.offsetY;
  dashes = l.dashes;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternDefinitions(const std::vector<PatternLine>& lines) {
  assertWriteEnabled();
  patternLines_ = lines;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setGradient(GradientPatternType gradType, const ACHAR* gradName) {
  if (!gradName || !*gradName) return Acad::eInvalidInput;
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.name = gradName;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setGradientAngle(double angle) {
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.angle = angle;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setGradientShift(double shift) {
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.shift = shift;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setShadeTintValue(double value) {
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.tint = value;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setGradientOneColorMode(bool oneColor) {
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.oneColor = oneColor ? 1 : 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setGradientColors(const std::vector<GradientColor>& colors) {
  if (colors.empty() || colors.size() > 2) return Acad::eInvalidInput;
  assertWriteEnabled();
  gradient_.present = true;
  gradient_.colors = colors;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setElevation(double z) {
  assertWriteEnabled();
  elevationPoint_ = AcGePoint3d(0, 0, z);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPixelSize(double size) {
  assertWriteEnabled();
  pixelSize_ = size;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setSeedPoints(const AcGePoint2dArray& points) {
  assertWriteEnabled();
  seeds_ = points;
  return Acad::eOk;
}

// ---------------------------------------------------------------- region

namespace {

using RegionEdge = AcDbRegion::Edge;

Acad::ErrorStatus readRegionLoops(MemoryDxfFiler* f, std::vector<AcDbRegion::Loop>& loops) {
  loops.clear();
  int64_t n = 0;
  ZEPK_TRY(readInt(f, 90, n));
  for (int64_t i = 0; i < n; ++i) {
    int64_t m = 0;
    ZEPK_TRY(readInt(f, 91, m));
    AcDbRegion::Loop loop;
    for (int64_t k = 0; k < m; ++k) {
      int64_t type = 0;
      RegionEdge e;
      ZEPK_TRY(readInt(f, 72, type));
      if (type == 1) {
        ZEPK_TRY(readPoint2d(f, 10, e.start));
        ZEPK_TRY(readPoint2d(f, 11, e.end));
      } else if (type == 2) {
        e.isArc = true;
        double s = 0, t = 0;
        ZEPK_TRY(readPoint2d(f, 10, e.center));
        ZEPK_TRY(readReal(f, 40, e.radius));
        ZEPK_TRY(readReal(f, 50, s));
        ZEPK_TRY(readReal(f, 51, t));
        ZEPK_TRY(readFlag(f, 73, e.ccw));
        e.startAngle = toRadians(s);
        e.endAngle = toRadians(t);
      } else {
        return Acad::eBadDxfSequence;
      }
      loop.push_back(e);
    }
    loops.push_back(std::move(loop));
  }
  return Acad::eOk;
}

}  // namespace

ZEPK_DEFINE_ENTITY_CLASS(AcDbRegion, AcDbEntity, u"REGION")

AcDbRegion::~AcDbRegion() = default;

// The modeller's groups, kept as read.
const ClassSchema& AcDbRegion::modelerSchema() {
  static const ClassSchema s{
      u"AcDbModelerGeometry",
      {customPart(
          {70, 1, 3, 290, 2},
          [](const AcDbObject* o, AcDbDxfFiler* f) {
            for (const ModelerGroup& g : static_cast<const AcDbRegion*>(o)->modeler_) {
              if (g.isText) f->writeString(g.code, g.text);
              else f->writeInt64(g.code, g.value);
            }
            return f->filerStatus();
          },
          [](AcDbObject* o, MemoryDxfFiler* f) {
            auto& groups = static_cast<AcDbRegion*>(o)->modeler_;
            groups.clear();
            while (!f->atEOF()) {
              int code = f->peekCode();
              if (code != 70 && code != 1 && code != 3 && code != 290 && code != 2) break;
              const DxfItem* it = f->next();
              ModelerGroup g;
              g.code = code;
              g.isText = it->kind == DxfItem::String;
              if (g.isText) g.text = it->s;
              else if (it->kind == DxfItem::Int) g.value = it->i;
              else return Acad::eInvalidResBuf;
              groups.push_back(std::move(g));
            }
            return Acad::eOk;
          },
          [](const AcDbObject* o, AcDbDwgFiler* f) {
            const auto& groups = static_cast<const AcDbRegion*>(o)->modeler_;
            f->writeInt32(static_cast<Adesk::Int32>(groups.size()));
            for (const ModelerGroup& g : groups) {
              f->writeInt32(g.code);
              f->writeBool(g.isText);
              f->writeString(g.text);
              f->writeInt64(g.value);
            }
            return f->filerStatus();
          },
          [](AcDbObject* o, AcDbDwgFiler* f) {
            auto& groups = static_cast<AcDbRegion*>(o)->modeler_;
            groups.clear();
            Adesk::Int32 n = 0;
            f->readInt32(&n);
            for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
              ModelerGroup g;
              Adesk::Int32 code = 0;
              f->readInt32(&code);
              g.code = code;
              f->readBool(&g.isText);
              f->readString(&g.text);
              f->readInt64(&g.value);
              groups.push_back(std::move(g));
            }
            return f->filerStatus();
          },
          [](AcDbObject* o) { static_cast<AcDbRegion*>(o)->modeler_.clear(); })}};
  return s;
}

// The region's own loops: 90 their count; each loop 91 its edge count; each
// edge 72 its type, a line 10 and 11, an arc 10, 40, 50 and 51 (degrees)
// and 73 (counter-clockwise).
const ClassSchema& AcDbRegion::schema() {
  static const ClassSchema s{
      u"AcDbRegion",
      {
          field<&AcDbRegion::normal_>(210, "Normal", AcGeVector3d(0, 0, 1), kOptional),
          customPart(
              {90},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                const auto& loops = static_cast<const AcDbRegion*>(o)->loops_;
                f->writeInt32(90, static_cast<Adesk::Int32>(loops.size()));
                for (const Loop& loop : loops) {
                  f->writeInt32(91, static_cast<Adesk::Int32>(loop.size()));
                  for (const Edge& e : loop) {
                    f->writeInt16(72, e.isArc ? 2 : 1);
                    if (!e.isArc) {
                      f->writePoint2d(10, e.start);
                      f->writePoint2d(11, e.end);
                    } else {
                      f->writePoint2d(10, e.center);
                      f->writeDouble(40, e.radius);
                      f->writeDouble(50, toDegrees(e.startAngle));
                      f->writeDouble(51, toDegrees(e.endAngle));
                      f->writeInt16(73, e.ccw ? 1 : 0);
                    }
                  }
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) { return readRegionLoops(f, static_cast<AcDbRegion*>(o)->loops_); },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                const auto& loops = static_cast<const AcDbRegion*>(o)->loops_;
                f->writeInt32(static_cast<Adesk::Int32>(loops.size()));
                for (const Loop& loop : loops) {
                  f->writeInt32(static_cast<Adesk::Int32>(loop.size()));
                  for (const Edge& e : loop) {
                    f->writeBool(e.isArc);
                    f->writePoint2d(e.start);
                    f->writePoint2d(e.end);
                    f->writePoint2d(e.center);
                    f->writeDouble(e.radius);
                    f->writeDouble(e.startAngle);
                    f->writeDouble(e.endAngle);
                    f->writeBool(e.ccw);
                  }
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto& loops = static_cast<AcDbRegion*>(o)->loops_;
                loops.clear();
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
                  Adesk::Int32 m = 0;
                  f->readInt32(&m);
                  Loop loop;
                  for (Adesk::Int32 k = 0; k < m && f->filerStatus() == Acad::eOk; ++k) {
                    Edge e;
                    f->readBool(&e.isArc);
                    f->readPoint2d(&e.start);
                    f->readPoint2d(&e.end);
                    f->readPoint2d(&e.center);
                    f->readDouble(&e.radius);
                    f->readDouble(&e.startAngle);
                    f->readDouble(&e.endAngle);
                    f->readBool(&e.ccw);
                    loop.push_back(e);
                  }
                  loops.push_back(std::move(loop));
                }
                return f->filerStatus();
              },
              [](AcDbObject* o) { static_cast<AcDbRegion*>(o)->loops_.clear(); }),
      }};
  return s;
}

// The modeller's part always; the region's own part when it has loops.
Acad::ErrorStatus AcDbRegion::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dxfOutFields(f);
  if (es == Acad::eOk) es = zepk::db::dxfOutPart(modelerSchema(), this, f);
  if (es != Acad::eOk || loops_.empty()) return es;
  return zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbRegion::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
  if (es == Acad::eOk) es = zepk::db::dxfInPart(modelerSchema(), this, f);
  if (es != Acad::eOk) return es;
  loops_.clear();
  normal_ = AcGeVector3d(0, 0, 1);
  auto* mf = dynamic_cast<MemoryDxfFiler*>(f);
  if (mf && !mf->atEOF() && mf->peekCode() == 100 && mf->items()[mf->position()].s == u"AcDbRegion")
    return zepk::db::dxfInPart(schema(), this, f);
  return es;
}

Acad::ErrorStatus AcDbRegion::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbEntity::dwgOutFields(f);
  if (es == Acad::eOk) es = zepk::db::dwgOutPart(modelerSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbRegion::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbEntity::dwgInFields(f);
  if (es == Acad::eOk) es = zepk::db::dwgInPart(modelerSchema(), this, f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbRegion::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::appendLoop(const Loop& loop) {
  if (loop.empty()) return Acad::eInvalidInput;
  assertWriteEnabled();
  loops_.push_back(loop);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbRegion::setLoops(const std::vector<Loop>& loops) {
  for (const Loop& l : loops)
    if (l.empty()) return Acad::eInvalidInput;
  assertWriteEnabled();
  loops_ = loops;
  return Acad::eOk;
}

bool AcDbRegion::isNull() const { return loops_.empty() && modeler_.empty(); }

bool AcDbRegion::hasModelerData() const {
  for (const ModelerGroup& g : modeler_)
    if (g.code == 1 || g.code == 3 || g.code == 2) return true;
  return false;
}
