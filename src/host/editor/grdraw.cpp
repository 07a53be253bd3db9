// Temporary graphics over the working drawing.
#include "host/aced.h"
#include "host/db/overlay.h"
#include "host/dbapserv.h"
#include "host/dbmain.h"
#include "host/editor/coords.h"

namespace {

zepk::db::Overlay* workingOverlay() {
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  return db ? &zepk::db::overlayOf(db) : nullptr;
}

AcGePoint3d ucsToWorld(const double p[3]) {
  double out[3];
  zepk::editor::transPoint(p, zepk::editor::currentUcs(), zepk::editor::CoordSys(), false, out);
  return AcGePoint3d(out[0], out[1], out[2]);
}

bool readPoint(const resbuf* rb, double out[3]) {
  if (!rb || (rb->restype != RTPOINT && rb->restype != RT3DPOINT)) return false;
  out[0] = rb->resval.rpoint[0];
  out[1] = rb->resval.rpoint[1];
  out[2] = rb->restype == RT3DPOINT ? rb->resval.rpoint[2] : 0.0;
  return true;
}

}  // namespace

int acedGrDraw(const ads_point from, const ads_point to, int color, int hl) {
  zepk::db::Overlay* overlay = workingOverlay();
  if (!overlay || !from || !to || color < -1 || color > 255) return RTERROR;
  overlay->vectors.push_back({ucsToWorld(from), ucsToWorld(to), color, hl != 0});
  return RTNORM;
}

int acedGrVecs(const resbuf* vlist, ads_matrix mat) {
  zepk::db::Overlay* overlay = workingOverlay();
  if (!overlay) return RTERROR;
  // Read everything first: a bad list draws nothing.
  std::vector<zepk::db::TransientVector> vectors;
  int color = 7;
  bool highlight = false;
  for (const resbuf* rb = vlist; rb; rb = rb->rbnext) {
    if (rb->restype == RTSHORT || rb->restype == RTLONG) {
      long c = rb->restype == RTSHORT ? rb->resval.rint : rb->resval.rlong;
      highlight = c >= 256;
      if (highlight) c -= 256;
      if (c < -1 || c > 255) return RTERROR;
      color = static_cast<int>(c);
      continue;
    }
    double a[3], b[3];
    if (!readPoint(rb, a) || !readPoint(rb->rbnext, b)) return RTERROR;
    rb = rb->rbnext;
    if (mat) {
      double ta[3], tb[3];
      for (int i = 0; i < 3; ++i) {
        ta[i] = mat[i][0] * a[0] + mat[i][1] * a[1] + mat[i][2] * a[2] + mat[i][3];
        tb[i] = mat[i][0] * b[0] + mat[i][1] * b[1] + mat[i][2] * b[2] + mat[i][3];
      }
      std::copy(ta, ta + 3, a);
      std::copy(tb, tb + 3, b);
    }
    vectors.push_back({ucsToWorld(a), ucsToWorld(b), color, highlight});
  }
  overlay->vectors.insert(overlay->vectors.end(), vectors.begin(), vectors.end());
  return RTNORM;
}

int acedRedraw(const ads_name ent, int mode) {
  zepk::db::Overlay* overlay = workingOverlay();
  if (!overlay) return RTERROR;
  if (!ent || (ent[0] == 0 && ent[1] == 0)) {
    if (mode < 0 || mode > 4) return RTERROR;
    overlay->clear();
    return RTNORM;
  }
  AcDbObjectId id;
  if (acdbGetObjectId(id, ent) != Acad::eOk || id.isErased()) return RTERROR;
  switch (mode) {
    case 1:
      overlay->hidden.erase(id);
      break;
    case 2:
      overlay->hidden.insert(id);
      break;
    case 3:
      overlay->highlighted.insert(id);
      break;
    case 4:
      overlay->highlighted.erase(id);
      break;
    default:
      return RTERROR;
  }
  return RTNORM;
}
