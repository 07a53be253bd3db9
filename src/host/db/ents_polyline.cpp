// The lightweight polyline (LWPOLYLINE).
#include <cmath>

#include "host/db/ents_internal.h"
#include "host/dbpl.h"

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::MemoryDxfFiler;

ZEPK_DEFINE_ENTITY_CLASS(AcDbPolyline, AcDbCurve, u"LWPOLYLINE")
ZEPK_DEFINE_ENTITY_FILERS(AcDbPolyline, AcDbCurve)

const ClassSchema& AcDbPolyline::schema() {
  static const ClassSchema s{
      u"AcDbPolyline",
      {
          // The count stands before the vertices; it is the vertices'.
          customPart(
              {90},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                return f->writeInt32(90, static_cast<Adesk::Int32>(static_cast<const AcDbPolyline*>(o)->verts_.size()));
              },
              [](AcDbObject*, MemoryDxfFiler* f) {
                f->next();
                return Acad::eOk;
              },
              [](const AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); },
              [](AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); }, nullptr),
          field<&AcDbPolyline::flags_>(70, "Flags", 0),
          field<&AcDbPolyline::constantWidth_>(43, "ConstantWidth", 0.0, kOptional),
          field<&AcDbPolyline::elevation_>(38, "Elevation", 0.0, kOptional),
          field<&AcDbPolyline::thickness_>(39, "Thickness", 0.0, kOptional),
          // Each vertex: 10, then its widths (40, 41) when it has its own,
          // its bulge (42) when not 0, its identifier (91) when not 0.
          customPart(
              {10},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* pl = static_cast<const AcDbPolyline*>(o);
                bool all = f->includesDefaultValues();
                for (const Vertex& v : pl->verts_) {
                  f->writePoint2d(10, v.point);
                  if (all || v.startWidth >= 0 || v.endWidth >= 0) {
                    f->writeDouble(40, v.startWidth >= 0 ? v.startWidth : pl->constantWidth_);
                    f->writeDouble(41, v.endWidth >= 0 ? v.endWidth : pl->constantWidth_);
                  }
                  if (all || v.bulge != 0.0) f->writeDouble(42, v.bulge);
                  if (all || v.id != 0) f->writeInt32(91, v.id);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* pl = static_cast<AcDbPolyline*>(o);
                pl->verts_.clear();
                // Room for the vertices at once: one 10 group each.
                size_t n = 0;
                for (size_t i = f->position(), end = f->readEnd(); i < end; ++i) {
                  const int c = f->items()[i].code;
                  if (c == 100 || c == 1001) break;
                  n += c == 10;
                }
                pl->verts_.reserve(n);
                while (const DxfItem* it = zepk::db::take(f, 10)) {
                  if (it->kind != DxfItem::Point) return Acad::eInvalidResBuf;
                  Vertex v;
                  v.point = AcGePoint2d(it->p[0], it->p[1]);
                  bool seen[4] = {false, false, false, false};
                  for (;;) {
                    int code = f->atEOF() ? 0 : f->peekCode();
                    int slot = code == 40 ? 0 : code == 41 ? 1 : code == 42 ? 2 : code == 91 ? 3 : -1;
                    if (slot < 0 || seen[slot]) break;
                    seen[slot] = true;
                    const DxfItem* g = f->next();
                    if (slot == 3) {
                      if (g->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                      v.id = static_cast<Adesk::Int32>(g->i);
                      continue;
                    }
                    if (g->kind != DxfItem::Real && g->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                    double x = g->kind == DxfItem::Real ? g->p[0] : static_cast<double>(g->i);
                    (slot == 0 ? v.startWidth : slot == 1 ? v.endWidth : v.bulge) = x;
                  }
                  pl->verts_.push_back(v);
                }
                pl->verts_.shrink_to_fit();  // a drawing holds many: no spare room in each
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* pl = static_cast<const AcDbPolyline*>(o);
                f->writeInt32(static_cast<Adesk::Int32>(pl->verts_.size()));
                for (const Vertex& v : pl->verts_) {
                  f->writePoint2d(v.point);
                  f->writeDouble(v.bulge);
                  f->writeDouble(v.startWidth);
                  f->writeDouble(v.endWidth);
                  f->writeInt32(v.id);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* pl = static_cast<AcDbPolyline*>(o);
                Adesk::Int32 n = 0;
                f->readInt32(&n);
                if (n < 0) return Acad::eFilerError;
                pl->verts_.assign(static_cast<size_t>(n), Vertex());
                for (Vertex& v : pl->verts_) {
                  f->readPoint2d(&v.point);
                  f->readDouble(&v.bulge);
                  f->readDouble(&v.startWidth);
                  f->readDouble(&v.endWidth);
                  f->readInt32(&v.id);
                }
                return f->filerStatus();
              },
              [](AcDbObject* o) { static_cast<AcDbPolyline*>(o)->verts_.clear(); }),
          field<&AcDbPolyline::normal_>(210, "Normal", AcGeVector3d(0, 0, 1), kOptional),
      }};
  return s;
}

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d& pt, double bulge,
                                            double startWidth, double endWidth, Adesk::Int32 vertexIdentifier) {
  assertWriteEnabled();
  Vertex v;
  v.point = pt;
  v.bulge = bulge;
  v.startWidth = startWidth < 0 ? -1.0 : startWidth;
  v.endWidth = endWidth < 0 ? -1.0 : endWidth;
  v.id = vertexIdentifier;
  if (index > verts_.size()) index = static_cast<unsigned int>(verts_.size());
  verts_.insert(verts_.begin() + index, v);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  verts_.erase(verts_.begin() + index);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d& pt) const {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  pt = verts_[index].point;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d& pt) const {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  const AcGePoint2d& p = verts_[index].point;
  pt = zepk::db::ecsToWcs(normal_, AcGePoint3d(p.x, p.y, elevation_));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d& pt) {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  verts_[index].point = pt;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double& bulge) const {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  bulge = verts_[index].bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  verts_[index].bulge = bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getWidthsAt(unsigned int index, double& startWidth, double& endWidth) const {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  const Vertex& v = verts_[index];
  startWidth = v.startWidth >= 0 ? v.startWidth : constantWidth_;
  endWidth = v.endWidth >= 0 ? v.endWidth : constantWidth_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getStartWidthAt(unsigned int index, double& w) const {
  double e = 0;
  return getWidthsAt(index, w, e);
}

Acad::ErrorStatus AcDbPolyline::getEndWidthAt(unsigned int index, double& w) const {
  double s = 0;
  return getWidthsAt(index, s, w);
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth, double endWidth) {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  if (startWidth < 0 || endWidth < 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  verts_[index].startWidth = startWidth;
  verts_[index].endWidth = endWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getVertexIdentifierAt(unsigned int index, Adesk::Int32& id) const {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  id = verts_[index].id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setVertexIdentifierAt(unsigned int index, Adesk::Int32 id) {
  if (index >= verts_.size()) return Acad::eInvalidIndex;
  assertWriteEnabled();
  verts_[index].id = id;
  return Acad::eOk;
}

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
  size_t n = verts_.size();
  if (index >= n) return kEmpty;
  if (n == 1) return kPoint;
  if (index == n - 1 && !isClosed()) return kEmpty;
  const Vertex& a = verts_[index];
  const Vertex& b = verts_[(index + 1) % n];
  if (a.point.isEqualTo(b.point)) return kCoincident;
  return a.bulge != 0.0 ? kArc : kLine;
}

void AcDbPolyline::setClosed(bool closed) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(closed ? (flags_ | 1) : (flags_ & ~1));
}

void AcDbPolyline::setPlinegen(bool plinegen) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(plinegen ? (flags_ | 128) : (flags_ & ~128));
}

bool AcDbPolyline::isOnlyLines() const {
  for (const Vertex& v : verts_)
    if (v.bulge != 0.0) return false;
  return true;
}

bool AcDbPolyline::hasWidth() const {
  for (unsigned int i = 0; i < verts_.size(); ++i) {
    double s = 0, e = 0;
    getWidthsAt(i, s, e);
    if (s != 0.0 || e != 0.0) return true;
  }
  return false;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double& width) const {
  width = constantWidth_;
  for (unsigned int i = 0; i < verts_.size(); ++i) {
    double s = 0, e = 0;
    getWidthsAt(i, s, e);
    if (i == 0) width = s;
    if (s != width || e != width) return Acad::eNotApplicable;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
  if (width < 0) return Acad::eInvalidInput;
  assertWriteEnabled();
  constantWidth_ = width;
  for (Vertex& v : verts_) v.startWidth = v.endWidth = -1.0;
  return Acad::eOk;
}

void AcDbPolyline::setElevation(double elev) {
  assertWriteEnabled();
  elevation_ = elev;
}

Acad::ErrorStatus AcDbPolyline::setThickness(double t) {
  assertWriteEnabled();
  thickness_ = t;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d& n) {
  double len = n.length();
  if (!(len > 1e-12)) return Acad::eInvalidInput;
  assertWriteEnabled();
  normal_ = n / len;
  return Acad::eOk;
}

void AcDbPolyline::reset(bool reuse, unsigned int numVerts) {
  assertWriteEnabled();
  if (!reuse) {
    verts_.clear();
  } else if (numVerts < verts_.size()) {
    verts_.resize(numVerts);
  }
}
