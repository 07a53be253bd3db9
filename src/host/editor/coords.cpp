#include "host/editor/coords.h"

#include <cmath>

#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/editor/sysvars.h"
#include "host/entlist.h"
#include "host/gevec3d.h"
#include "host/ol_errno.h"

namespace zepk::editor {

bool normalCs(const double normal[3], CoordSys* out) {
  AcGeVector3d n(normal[0], normal[1], normal[2]);
  double len = n.length();
  if (len == 0 || !std::isfinite(len)) return false;
  n /= len;
  AcGeVector3d x = n.perpVector();
  AcGeVector3d y = n.crossProduct(x);
  CoordSys cs;
  for (int k = 0; k < 3; ++k) {
    cs.x[k] = x[k];
    cs.y[k] = y[k];
    cs.z[k] = n[k];
  }
  *out = cs;
  return true;
}

CoordSys currentUcs() {
  CoordSys cs;
  SysValue o, x, y;
  getSysVar(u"UCSORG", &o);
  getSysVar(u"UCSXDIR", &x);
  getSysVar(u"UCSYDIR", &y);
  for (int k = 0; k < 3; ++k) {
    cs.o[k] = o.p[k];
    cs.x[k] = x.p[k];
    cs.y[k] = y.p[k];
  }
  cs.z[0] = cs.x[1] * cs.y[2] - cs.x[2] * cs.y[1];
  cs.z[1] = cs.x[2] * cs.y[0] - cs.x[0] * cs.y[2];
  cs.z[2] = cs.x[0] * cs.y[1] - cs.x[1] * cs.y[0];
  return cs;
}

void transPoint(const double p[3], const CoordSys& from, const CoordSys& to, bool disp, double out[3]) {
  double w[3];
  for (int k = 0; k < 3; ++k) w[k] = (disp ? 0.0 : from.o[k]) + p[0] * from.x[k] + p[1] * from.y[k] + p[2] * from.z[k];
  if (!disp)
    for (int k = 0; k < 3; ++k) w[k] -= to.o[k];
  out[0] = w[0] * to.x[0] + w[1] * to.x[1] + w[2] * to.x[2];
  out[1] = w[0] * to.y[0] + w[1] * to.y[1] + w[2] * to.y[2];
  out[2] = w[0] * to.z[0] + w[1] * to.z[1] + w[2] * to.z[2];
}

}  // namespace zepk::editor

using namespace zepk;

namespace zepk::editor {

bool coordSysOf(const resbuf* rb, CoordSys* out) {
  if (!rb) return false;
  switch (rb->restype) {
    case RTSHORT:
    case RTLONG: {
      int code = rb->restype == RTSHORT ? rb->resval.rint : rb->resval.rlong;
      if (code == 0) {
        *out = editor::CoordSys();
        return true;
      }
      if (code == 1 || code == 2) {
        *out = editor::currentUcs();
        return true;
      }
      return false;
    }
    case RTPOINT:
    case RT3DPOINT: {
      double n[3] = {rb->resval.rpoint[0], rb->resval.rpoint[1], rb->restype == RTPOINT ? 0.0 : rb->resval.rpoint[2]};
      return editor::normalCs(n, out);
    }
    case RTENAME: {
      AcDbObjectId id;
      if (acdbGetObjectId(id, rb->resval.rlname) != Acad::eOk) return false;
      std::vector<db::DxfItem> items;
      if (!db::objectGroups(id, {}, &items)) return false;
      double n[3] = {0, 0, 1};
      for (const db::DxfItem& it : items)
        if (it.code == 210 && it.kind == db::DxfItem::Point) n[0] = it.p[0], n[1] = it.p[1], n[2] = it.p[2];
      return editor::normalCs(n, out);
    }
    default: return false;
  }
}

}  // namespace zepk::editor

int acedTrans(const ads_point pt, const resbuf* from, const resbuf* to, int disp, ads_point result) {
  if (!pt || !result) return RTERROR;
  editor::CoordSys a, b;
  if (!editor::coordSysOf(from, &a) || !editor::coordSysOf(to, &b)) {
    hostErrno() = OL_ETRANS;
    return RTERROR;
  }
  editor::transPoint(pt, a, b, disp != 0, result);
  return RTNORM;
}

bool acdbUcs2Wcs(const ads_point p, ads_point q, bool vec) {
  if (!p || !q) return false;
  editor::transPoint(p, editor::currentUcs(), editor::CoordSys(), vec, q);
  return true;
}

bool acdbWcs2Ucs(const ads_point p, ads_point q, bool vec) {
  if (!p || !q) return false;
  editor::transPoint(p, editor::CoordSys(), editor::currentUcs(), vec, q);
  return true;
}

bool acdbEcs2Wcs(const ads_point p, ads_point q, const ads_point normal, bool vec) {
  editor::CoordSys ecs;
  if (!p || !q || !normal || !editor::normalCs(normal, &ecs)) return false;
  editor::transPoint(p, ecs, editor::CoordSys(), vec, q);
  return true;
}

bool acdbWcs2Ecs(const ads_point p, ads_point q, const ads_point normal, bool vec) {
  editor::CoordSys ecs;
  if (!p || !q || !normal || !editor::normalCs(normal, &ecs)) return false;
  editor::transPoint(p, editor::CoordSys(), ecs, vec, q);
  return true;
}
