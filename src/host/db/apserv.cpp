// The working drawing and entity names.
#include <unordered_map>

#include "host/dbapserv.h"
#include "host/ol_errno.h"

namespace {

// The names handed out, by the record they name, and the drawing each
// belongs to: a drawing that goes away takes its names with it, so that a
// name kept in LISP after its drawing closed names nothing instead of
// freed memory.
class NameRegistry : public AcDbDatabaseReactor {
 public:
  void issue(AcDbStub* stub) {
    auto [it, added] = names_.emplace(stub, stub->db);
    if (added && watched_.emplace(stub->db, true).second) stub->db->addReactor(this);
  }
  AcDbStub* find(int64_t name) const {
    auto* stub = reinterpret_cast<AcDbStub*>(static_cast<intptr_t>(name));
    return names_.count(stub) ? stub : nullptr;
  }
  void goodbye(const AcDbDatabase* db) override {
    for (auto it = names_.begin(); it != names_.end();) it = it->second == db ? names_.erase(it) : std::next(it);
    watched_.erase(db);
  }

 private:
  std::unordered_map<AcDbStub*, const AcDbDatabase*> names_;
  std::unordered_map<const AcDbDatabase*, bool> watched_;
};

NameRegistry& registry() {
  static auto* r = new NameRegistry;
  return *r;
}

}  // namespace

AcDbHostApplicationServices* acdbHostApplicationServices() {
  static auto* s = new AcDbHostApplicationServices;
  return s;
}

Acad::ErrorStatus acdbGetAdsName(ads_name& objName, AcDbObjectId objId) {
  ads_name_clear(objName);
  AcDbStub* stub = objId.stub();
  if (!stub || !stub->db) return Acad::eNullObjectId;
  registry().issue(stub);
  objName[0] = static_cast<int64_t>(objId.asOldId());
  return Acad::eOk;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& objId, const ads_name objName) {
  objId.setNull();
  if (!objName || objName[1] != 0) return Acad::eInvalidAdsName;
  AcDbStub* stub = registry().find(objName[0]);
  if (!stub) return Acad::eInvalidAdsName;
  objId = AcDbObjectId(stub);
  return Acad::eOk;
}

int& zepk::hostErrno() {
  static int value = OL_GOOD;
  return value;
}
