#include "host/render/sink.h"

#include <cmath>

#include "host/dbheader.h"
#include "host/dbsymtb.h"
#include "host/render/text.h"

namespace zepk::render {

namespace {

constexpr double kTwoPi = 6.28318530717958647692;

bool headerReal(AcDbDatabase* db, const char16_t* name, double* out) {
  db::DxfItem item;
  if (!db::getHeaderVar(db, name, &item)) return false;
  if (item.kind == db::DxfItem::Real) *out = item.p[0];
  else if (item.kind == db::DxfItem::Int) *out = static_cast<double>(item.i);
  else return false;
  return std::isfinite(*out);
}

std::u16string upper(std::u16string s) {
  for (char16_t& c : s)
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - 32);
  return s;
}

}  // namespace

// ------------------------------------------------------------ the drawing

DrawingProps::DrawingProps(AcDbDatabase* d) : db(d) {
  double v;
  if (headerReal(db, u"$LTSCALE", &v) && v > 0) ltscale = v;
  if (headerReal(db, u"$PDMODE", &v)) pdmode = static_cast<int>(v);
  if (headerReal(db, u"$PDSIZE", &v)) pdsize = v;
  if (headerReal(db, u"$LWDEFAULT", &v) && v >= 0) lwdefaultMm = v / 100.0;
}

const DrawingProps::Layer& DrawingProps::layer(AcDbObjectId id) {
  auto it = layers_.find(id);
  if (it != layers_.end()) return it->second;
  Layer l;
  l.color.setColorIndex(7);
  AcDbLayerTableRecord* rec = nullptr;
  if (!id.isNull() && acdbOpenObject(rec, id, AcDb::kForRead) == Acad::eOk) {
    l.off = rec->isOff();
    l.frozen = rec->isFrozen();
    l.color = rec->color();
    // A layer that is off keeps its colour as a negative number.
    if (l.color.isByACI() && l.color.colorIndex() == 0) l.color.setColorIndex(7);
    l.linetype = rec->linetypeObjectId();
    l.lineweight = rec->lineWeight();
    std::u16string name;
    rec->getName(name);
    l.isZero = name == u"0";
    // The points that dimensions are measured from are not part of the
    // picture, as they are not part of a plot.
    if (upper(name) == u"DEFPOINTS") l.off = true;
    rec->close();
  }
  return layers_.emplace(id, l).first->second;
}

const DrawingProps::Linetype& DrawingProps::linetype(AcDbObjectId id) {
  auto it = linetypes_.find(id);
  if (it != linetypes_.end()) return it->second;
  Linetype t;
  AcDbLinetypeTableRecord* rec = nullptr;
  if (id.isNull()) {
    t.kind = Linetype::ByLayer;
  } else if (acdbOpenObject(rec, id, AcDb::kForRead) == Acad::eOk) {
    std::u16string name;
    rec->getName(name);
    name = upper(name);
    if (name == u"BYLAYER") {
      t.kind = Linetype::ByLayer;
    } else if (name == u"BYBLOCK") {
      t.kind = Linetype::ByBlock;
    } else {
      double total = 0;
      for (int i = 0; i < rec->numDashes(); ++i) {
        double d = rec->dashLengthAt(i);
        if (!std::isfinite(d)) continue;
        t.dashes.push_back(d);
        total += std::fabs(d);
      }
      // A pattern of no length, or of dashes only, draws as a solid line.
      bool gaps = false;
      for (double d : t.dashes) gaps = gaps || d < 0;
      if (total > 0 && gaps) t.kind = Linetype::Pattern;
      else t.dashes.clear();
    }
    rec->close();
  }
  return linetypes_.emplace(id, t).first->second;
}

// ------------------------------------------------------------ traits

void Sink::setColor(Adesk::UInt16 c) {
  if (c == 256) color_.setColorMethod(AcCmEntityColor::kByLayer);
  else if (c == 0) color_.setColorMethod(AcCmEntityColor::kByBlock);
  else color_.setColorIndex(c);
}

AcDbObjectId Sink::effectiveLayer() const {
  if (!blocks_.empty() && props_.layer(layer_).isZero) return blocks_.back().layer;
  return layer_;
}

bool Sink::layerVisible() const {
  const DrawingProps::Layer& l = props_.layer(effectiveLayer());
  if (l.off || l.frozen) return false;
  // Frozen is frozen everywhere, also for the layer 0 entities of a block
  // on a frozen layer; their own layer is checked too.
  const DrawingProps::Layer& own = props_.layer(layer_);
  return !own.frozen;
}

bool Sink::layerFrozen() const { return props_.layer(effectiveLayer()).frozen; }

void Sink::pushBlock() {
  Inherited in;
  in.layer = effectiveLayer();
  const DrawingProps::Layer& l = props_.layer(in.layer);
  if (color_.isByLayer()) in.color = l.color;
  else if (color_.isByBlock()) in.color = blocks_.empty() ? AcCmEntityColor() : blocks_.back().color;
  else in.color = color_;
  if (in.color.isByBlock() || in.color.isByLayer()) in.color.setColorIndex(7);
  const DrawingProps::Linetype& t = props_.linetype(linetype_);
  if (t.kind == DrawingProps::Linetype::ByLayer) in.linetype = l.linetype;
  else if (t.kind == DrawingProps::Linetype::ByBlock) in.linetype = blocks_.empty() ? AcDbObjectId() : blocks_.back().linetype;
  else in.linetype = linetype_;
  int lw = lineweight_;
  if (lw == AcDb::kLnWtByLayer) lw = l.lineweight;
  else if (lw == AcDb::kLnWtByBlock) lw = blocks_.empty() ? -3 : blocks_.back().lineweight;
  in.lineweight = lw;
  blocks_.push_back(in);
}

void Sink::popBlock() {
  if (!blocks_.empty()) blocks_.pop_back();
}

Style Sink::resolve() const {
  Style s;
  AcDbObjectId layerId = effectiveLayer();
  const DrawingProps::Layer& l = props_.layer(layerId);
  AcCmEntityColor c = color_;
  if (c.isByLayer()) c = l.color;
  else if (c.isByBlock()) c = blocks_.empty() ? AcCmEntityColor() : blocks_.back().color;
  s.background = c.isNone();
  if (c.isByLayer() || c.isByBlock() || c.isForeground() || c.isNone()) c.setColorIndex(7);
  if (c.isByColor()) {
    s.rgb = c.rgb();
  } else {
    int i = c.colorIndex();
    s.foreground = i == 7;
    s.rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(i > 255 ? 7 : i));
  }

  // Linetype: ByLayer, ByBlock, else the entity's own.
  AcDbObjectId lt = linetype_;
  for (int guard = 0; guard < 3 && !solidLines_; ++guard) {
    const DrawingProps::Linetype& t = props_.linetype(lt);
    if (t.kind == DrawingProps::Linetype::ByLayer) {
      lt = l.linetype;
      if (props_.linetype(lt).kind == DrawingProps::Linetype::ByLayer) break;
    } else if (t.kind == DrawingProps::Linetype::ByBlock) {
      if (blocks_.empty()) break;
      lt = blocks_.back().linetype;
    } else {
      if (t.kind == DrawingProps::Linetype::Pattern) {
        double k = props_.ltscale * (ltscale_ > 0 ? ltscale_ : 1.0);
        for (double d : t.dashes) s.dashes.push_back(d * k);
      }
      break;
    }
  }

  int lw = lineweight_;
  if (lw == AcDb::kLnWtByLayer) lw = l.lineweight;
  else if (lw == AcDb::kLnWtByBlock) lw = blocks_.empty() ? -3 : blocks_.back().lineweight;
  s.lineweightMm = lw >= 0 ? lw / 100.0 : props_.lwdefaultMm;
  if (highlight && pixelsPerUnit_ > 0) s.dashes = {6.0 / pixelsPerUnit_, -4.0 / pixelsPerUnit_};
  return s;
}

// ------------------------------------------------------------ geometry

AcGePoint3d Sink::toPlan(const AcGePoint3d& p) const {
  if (identity_) return p;
  AcGePoint3d q = p;
  q.transformBy(model_);
  return q;
}

// The map of the unit circle onto center + cos t u + sin t v, on the plan.
Affine Sink::arcMap(const AcGePoint3d& c, const AcGeVector3d& u, const AcGeVector3d& v) const {
  AcGePoint3d o = toPlan(c);
  AcGeVector3d a = u, b = v;
  if (!identity_) {
    a.transformBy(model_);
    b.transformBy(model_);
  }
  Affine m;
  m.xx = a.x, m.yx = a.y, m.xy = b.x, m.yy = b.y, m.x0 = o.x, m.y0 = o.y;
  return m;
}

void Sink::points(Path& path, Adesk::UInt32 n, const AcGePoint3d* pts) const {
  for (Adesk::UInt32 i = 0; i < n; ++i) {
    AcGePoint3d p = toPlan(pts[i]);
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) continue;
    if (i == 0) path.moveTo(p.x, p.y);
    else path.lineTo(p.x, p.y);
  }
}

void Sink::emit(const Path& path, bool fill) const {
  if (path.ops.empty()) return;
  const_cast<Sink*>(this)->emitPath(path, resolve(), fill);
}

Adesk::Boolean Sink::circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) const {
  if (!(radius > 0) || !std::isfinite(radius)) return false;
  AcGeMatrix3d ocs = AcGeMatrix3d::planeToWorld(normal);
  Path p;
  p.arc(arcMap(center, ocs.getCsXAxis() * radius, ocs.getCsYAxis() * radius), 0, kTwoPi);
  p.close();
  emit(p, fill_ == kAcGiFillAlways);
  return false;
}

Adesk::Boolean Sink::circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                                 const AcGeVector3d& startVector, double sweep, AcGiArcType type) const {
  if (!(radius > 0) || !std::isfinite(radius) || !std::isfinite(sweep)) return false;
  AcGeVector3d n = normal.normal();
  AcGeVector3d x = startVector - n * startVector.dotProduct(n);
  if (x.isZeroLength()) x = AcGeMatrix3d::planeToWorld(n).getCsXAxis();
  x = x.normal();
  AcGeVector3d y = n.crossProduct(x);
  Affine m = arcMap(center, x * radius, y * radius);
  Path p;
  p.arc(m, 0, sweep);
  if (type == kAcGiArcSector) {
    p.lineTo(m.x0, m.y0);
    p.close();
  } else if (type == kAcGiArcChord) {
    p.close();
  }
  emit(p, type != kAcGiArcSimple && fill_ == kAcGiFillAlways);
  return false;
}

Adesk::Boolean Sink::ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                   const AcGeVector3d& minorAxis, double t0, double t1) const {
  if (majorAxis.isZeroLength() || !std::isfinite(t0) || !std::isfinite(t1)) return false;
  Path p;
  p.arc(arcMap(center, majorAxis, minorAxis), t0, t1);
  if (std::fabs(t1 - t0) >= kTwoPi - 1e-12) p.close();
  emit(p, false);
  return false;
}

Adesk::Boolean Sink::polyline(Adesk::UInt32 n, const AcGePoint3d* pts, const AcGeVector3d*, Adesk::LongPtr) const {
  if (n == 0 || !pts) return false;
  Path p;
  points(p, n, pts);
  emit(p, false);
  return false;
}

Adesk::Boolean Sink::polygon(Adesk::UInt32 n, const AcGePoint3d* pts) const {
  if (n == 0 || !pts) return false;
  Path p;
  points(p, n, pts);
  p.close();
  emit(p, fill_ == kAcGiFillAlways);
  return false;
}

Adesk::Boolean Sink::polyPolygon(Adesk::UInt32 nbLoops, const Adesk::UInt32* sizes, const AcGePoint3d* pts) const {
  if (!sizes || !pts) return false;
  Path p;
  const AcGePoint3d* at = pts;
  for (Adesk::UInt32 i = 0; i < nbLoops; ++i) {
    if (sizes[i] == 0) continue;
    points(p, sizes[i], at);
    p.close();
    at += sizes[i];
  }
  emit(p, fill_ == kAcGiFillAlways);
  return false;
}

Adesk::Boolean Sink::shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pts, Adesk::UInt32 faceListSize,
                           const Adesk::Int32* faces) const {
  if (!pts || !faces) return false;
  Path p;
  for (Adesk::UInt32 i = 0; i < faceListSize;) {
    Adesk::Int32 n = faces[i++];
    // A negative count is a hole in the face before it.
    Adesk::UInt32 count = static_cast<Adesk::UInt32>(n < 0 ? -n : n);
    if (i + count > faceListSize) break;
    bool first = true;
    for (Adesk::UInt32 k = 0; k < count; ++k) {
      Adesk::Int32 idx = faces[i + k];
      if (idx < 0 || static_cast<Adesk::UInt32>(idx) >= nbVertex) continue;
      AcGePoint3d q = toPlan(pts[idx]);
      if (first) p.moveTo(q.x, q.y);
      else p.lineTo(q.x, q.y);
      first = false;
    }
    if (!first) p.close();
    i += count;
  }
  emit(p, fill_ == kAcGiFillAlways);
  return false;
}

Adesk::Boolean Sink::text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
                          double height, double width, double oblique, const ACHAR* msg) const {
  if (!msg || !*msg || !(height > 0) || !std::isfinite(height)) return false;
  AcGeVector3d n = normal.isZeroLength() ? AcGeVector3d(0, 0, 1) : normal.normal();
  AcGeVector3d x = direction - n * direction.dotProduct(n);
  if (x.isZeroLength()) x = AcGeMatrix3d::planeToWorld(n).getCsXAxis();
  x = x.normal();
  AcGeVector3d y = n.crossProduct(x);
  double wf = width > 0 && std::isfinite(width) ? width : 1.0;
  double slant = std::isfinite(oblique) ? std::tan(oblique) : 0.0;
  // Text units: u along the baseline, v up, capital height 1.
  AcGeVector3d ue = x * (height * wf), ve = y * height + x * (height * slant);
  AcGePoint3d o = toPlan(position);
  if (!identity_) {
    ue.transformBy(model_);
    ve.transformBy(model_);
  }
  TextRun run;
  run.place.xx = ue.x, run.place.yx = ue.y, run.place.xy = ve.x, run.place.yy = ve.y;
  run.place.x0 = o.x, run.place.y0 = o.y;
  run.text = decodeTextCodes(msg);
  const_cast<Sink*>(this)->emitText(run, resolve());
  return false;
}

Adesk::Boolean Sink::pushModelTransform(const AcGeMatrix3d& m) {
  transforms_.push_back(model_);
  model_ = model_ * m;
  identity_ = false;
  return false;
}

Adesk::Boolean Sink::popModelTransform() {
  if (transforms_.empty()) return false;
  model_ = transforms_.back();
  transforms_.pop_back();
  identity_ = transforms_.empty();
  if (identity_) model_.setToIdentity();
  return false;
}

}  // namespace zepk::render
