// Each document's input point manager: the filter, monitors and context
// reactors programs attach, run on every point acedGetPoint takes.
#include <algorithm>
#include <map>

#include "host/acdocman.h"
#include "host/acedinpt.h"

namespace {

template <class T>
Acad::ErrorStatus addOnce(std::vector<T*>& v, T* p) {
  if (!p || std::find(v.begin(), v.end(), p) != v.end()) return Acad::eInvalidInput;
  v.push_back(p);
  return Acad::eOk;
}

template <class T>
Acad::ErrorStatus removeOne(std::vector<T*>& v, T* p) {
  auto it = std::find(v.begin(), v.end(), p);
  if (it == v.end()) return Acad::eInvalidInput;
  v.erase(it);
  return Acad::eOk;
}

// Managers live as long as the process; a document's goes with it through
// the reactor below.
struct Managers : AcApDocManagerReactor {
  std::map<AcApDocument*, AcEdInputPointManager> byDoc;
  bool watching = false;
  void documentToBeDestroyed(AcApDocument* doc) override { byDoc.erase(doc); }
};

Managers& managers() {
  static auto* m = new Managers;
  if (!m->watching && acDocManager) {
    acDocManager->addReactor(m);
    m->watching = true;
  }
  return *m;
}

}  // namespace

Acad::ErrorStatus AcEdInputPointManager::registerPointFilter(AcEdInputPointFilter* filter) {
  if (!filter || filter_) return Acad::eInvalidInput;
  filter_ = filter;
  return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::revokePointFilter() {
  if (!filter_) return Acad::eInvalidInput;
  filter_ = nullptr;
  return Acad::eOk;
}

Acad::ErrorStatus AcEdInputPointManager::addPointMonitor(AcEdInputPointMonitor* m) { return addOnce(monitors_, m); }
Acad::ErrorStatus AcEdInputPointManager::removePointMonitor(AcEdInputPointMonitor* m) { return removeOne(monitors_, m); }
Acad::ErrorStatus AcEdInputPointManager::addInputContextReactor(AcEdInputContextReactor* r) {
  return addOnce(reactors_, r);
}
Acad::ErrorStatus AcEdInputPointManager::removeInputContextReactor(AcEdInputContextReactor* r) {
  return removeOne(reactors_, r);
}

void AcEdInputPointManager::beginGetPoint(const double* base, const ACHAR* prompt, int flags, const ACHAR* keywords) {
  AcGePoint3d b;
  if (base) b.set(base[0], base[1], base[2]);
  // A copy: a reactor may detach itself while it is told.
  std::vector<AcEdInputContextReactor*> rs = reactors_;
  for (AcEdInputContextReactor* r : rs) r->beginGetPoint(base ? &b : nullptr, prompt, flags, keywords);
}

void AcEdInputPointManager::endGetPoint(AcApDocument* doc, int status, double point[3]) {
  AcGePoint3d p(point[0], point[1], point[2]);
  if (status == RTNORM) {
    AcEdInputPoint in;
    in.document = doc;
    in.rawPoint = p;
    in.computedPoint = p;
    if (filter_) {
      bool changed = false;
      AcGePoint3d moved;
      if (filter_->processInputPoint(in, changed, moved) == Acad::eOk && changed) {
        p = moved;
        in.computedPoint = p;
      }
    }
    std::vector<AcEdInputPointMonitor*> ms = monitors_;
    for (AcEdInputPointMonitor* m : ms) m->monitorInputPoint(in);
    point[0] = p.x;
    point[1] = p.y;
    point[2] = p.z;
  }
  const ACHAR* kw = nullptr;
  std::vector<AcEdInputContextReactor*> rs = reactors_;
  for (AcEdInputContextReactor* r : rs) r->endGetPoint(static_cast<Acad::PromptStatus>(status), p, kw);
}

AcEdInputPointManager* acedInputPointManager(AcApDocument* doc) {
  if (!doc) return nullptr;
  return &managers().byDoc[doc];
}
