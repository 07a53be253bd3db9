// Databases: the object records, handles, reactors and undo.
#include <algorithm>
#include <cstring>
#include <deque>
#include <fstream>
#include <memory>
#include <unordered_map>
#include <unordered_set>

#include "host/db/dxffile.h"
#include "host/db/dxfinternal.h"
#include "host/db/internal.h"
#include "host/db/overlay.h"
#include "host/dbmain.h"
#include "host/system/utf.h"

// ---------------------------------------------------------------- handles and ids

AcDbHandle::AcDbHandle(const ACHAR* hex) {
  uint64_t v = 0;
  int digits = 0;
  for (const ACHAR* p = hex; p && *p; ++p) {
    ACHAR c = *p;
    int d = (c >= u'0' && c <= u'9') ? c - u'0' : (c >= u'a' && c <= u'f') ? c - u'a' + 10 : (c >= u'A' && c <= u'F') ? c - u'A' + 10 : -1;
    if (d < 0 || ++digits > 16) {
      value_ = 0;
      return;
    }
    v = (v << 4) | static_cast<uint64_t>(d);
  }
  value_ = v;
}

std::u16string AcDbHandle::ascii() const {
  static const char16_t* digits = u"0123456789ABCDEF";
  if (value_ == 0) return u"0";
  std::u16string s;
  for (uint64_t v = value_; v; v >>= 4) s.insert(s.begin(), digits[v & 0xF]);
  return s;
}

void AcDbHandle::getIntoAsciiBuffer(ACHAR* buf, size_t bufSize) const {
  if (!buf || bufSize == 0) return;
  std::u16string s = ascii();
  size_t n = std::min(s.size(), bufSize - 1);
  std::memcpy(buf, s.data(), n * sizeof(ACHAR));
  buf[n] = 0;
}

const AcDbObjectId AcDbObjectId::kNull;

bool AcDbObjectId::isValid() const { return stub_ && stub_->db && stub_->object; }
bool AcDbObjectId::isErased() const { return stub_ && stub_->erased; }
AcDbDatabase* AcDbObjectId::database() const { return stub_ ? stub_->db : nullptr; }
AcDbHandle AcDbObjectId::handle() const { return stub_ ? stub_->handle : AcDbHandle(); }

// ---------------------------------------------------------------- database

struct AcDbDatabase::Impl {
  // Records never move, so ids stay valid while the database lives.
  std::deque<AcDbStub> stubs;
  std::unordered_map<uint64_t, AcDbStub*> byHandle;
  mutable std::vector<AcDbDatabaseReactor*> reactors;
  std::vector<zepk::db::UndoMark> marks;
  // Marks taken back, newest last, each with the state its objects had
  // before it was taken back; a new mark forgets them.
  struct Redo {
    zepk::db::UndoMark mark;
    std::vector<zepk::db::UndoRecord> after;
  };
  std::vector<Redo> redo;
  int openMarks = 0;
  std::vector<zepk::db::HeaderVar> header;
  // The message of the last failed readDwgFile or saveAs.
  std::string fileError;
  zepk::db::Overlay overlay;
};

ACRX_DEFINE_HOST_CLASS(AcDbDatabase, AcRxObject, nullptr, nullptr)

AcDbDatabase::AcDbDatabase() : impl_(std::make_unique<Impl>()) {}

AcDbDatabase::~AcDbDatabase() {
  for (AcDbDatabaseReactor* r : std::vector<AcDbDatabaseReactor*>(impl_->reactors)) r->goodbye(this);
  impl_->marks.clear();
  for (AcDbStub& s : impl_->stubs) {
    delete s.object;
    s.object = nullptr;
  }
}

AcDbStub* AcDbDatabase::newStub(AcDbHandle h) {
  impl_->stubs.emplace_back();
  AcDbStub* s = &impl_->stubs.back();
  s->db = this;
  s->handle = h;
  impl_->byHandle[h.value()] = s;
  return s;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId& id, AcDbObject* obj) {
  AcDbHandle h = handseed_;
  Acad::ErrorStatus es = addAcDbObjectWithHandle(id, obj, h);
  return es;
}

Acad::ErrorStatus AcDbDatabase::addAcDbObjectWithHandle(AcDbObjectId& id, AcDbObject* obj, AcDbHandle h) {
  if (!obj) return Acad::eNullObjectPointer;
  if (obj->stub_) return Acad::eAlreadyInDb;
  if (h.isNull()) return Acad::eInvalidInput;
  auto it = impl_->byHandle.find(h.value());
  AcDbStub* s;
  if (it != impl_->byHandle.end()) {
    // A record made earlier for a reference to this handle can take the
    // object; one that has an object already cannot.
    if (it->second->object) return Acad::eHandleInUse;
    s = it->second;
  } else {
    s = newStub(h);
  }
  s->object = obj;
  s->erased = false;
  obj->stub_ = s;
  obj->mode_ = AcDbObject::Mode::Write;
  obj->isNew_ = true;
  if (h.value() >= handseed_.value()) handseed_ = AcDbHandle(h.value() + 1);
  if (impl_->openMarks > 0 && !impl_->marks.empty()) impl_->marks.back().added.push_back(s);
  id = AcDbObjectId(s);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound, const AcDbHandle& h) {
  id.setNull();
  if (h.isNull()) return Acad::eInvalidInput;
  auto it = impl_->byHandle.find(h.value());
  if (it != impl_->byHandle.end()) {
    id = AcDbObjectId(it->second);
    return Acad::eOk;
  }
  if (!createIfNotFound) return Acad::eKeyNotFound;
  // A reference to an object not read yet: the record waits for it.
  id = AcDbObjectId(newStub(h));
  if (h.value() >= handseed_.value()) handseed_ = AcDbHandle(h.value() + 1);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabaseAccess::moveContents(AcDbDatabase* from, AcDbDatabase* to) {
  if (!from || !to) return Acad::eNullObjectPointer;
  if (from == to) return Acad::eSelfReference;
  if (!to->impl_->stubs.empty()) return Acad::eAlreadyInDb;
  // Objects refer to their stubs and stubs to their database: the stubs
  // move as they are (a deque's elements keep their addresses) and are
  // told their new database.
  to->impl_->stubs = std::move(from->impl_->stubs);
  to->impl_->byHandle = std::move(from->impl_->byHandle);
  to->impl_->header = std::move(from->impl_->header);
  from->impl_->stubs.clear();
  from->impl_->byHandle.clear();
  from->impl_->header.clear();
  for (AcDbStub& s : to->impl_->stubs) s.db = to;
  to->handseed_ = from->handseed_;
  from->handseed_ = AcDbHandle(1);
  for (int i = 0; i < AcDbDatabase::kRootCount; ++i) {
    to->roots_[i] = from->roots_[i];
    from->roots_[i].setNull();
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::setHandseed(const AcDbHandle& h) {
  for (const auto& [v, s] : impl_->byHandle)
    if (v >= h.value()) return Acad::eInvalidInput;
  handseed_ = h;
  return Acad::eOk;
}

AcDbObjectIdArray AcDbDatabase::allObjects() const {
  // The records in the order they were made (mostly handle order already
  // for a drawing read from a file), sorted by handles held beside them:
  // the sort never reaches into the records.
  std::vector<std::pair<uint64_t, AcDbStub*>> stubs;
  stubs.reserve(impl_->stubs.size());
  for (AcDbStub& s : impl_->stubs)
    if (s.object) stubs.emplace_back(s.handle.value(), &s);
  if (!std::is_sorted(stubs.begin(), stubs.end()))
    std::sort(stubs.begin(), stubs.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  AcDbObjectIdArray out;
  out.reserve(stubs.size());
  for (const auto& [h, s] : stubs) out.emplace_back(s);
  return out;
}

void AcDbDatabaseAccess::reserveObjects(AcDbDatabase* db, size_t count) {
  if (db) db->impl_->byHandle.reserve(db->impl_->byHandle.size() + count);
}

void AcDbDatabase::addReactor(AcDbDatabaseReactor* r) const {
  if (r && std::find(impl_->reactors.begin(), impl_->reactors.end(), r) == impl_->reactors.end())
    impl_->reactors.push_back(r);
}

void AcDbDatabase::removeReactor(AcDbDatabaseReactor* r) const {
  auto& v = impl_->reactors;
  v.erase(std::remove(v.begin(), v.end(), r), v.end());
}

// ---------------------------------------------------------------- undo

void AcDbDatabase::beginUndoMark() {
  if (impl_->openMarks++ == 0) {
    impl_->marks.emplace_back();
    impl_->redo.clear();
  }
}

void AcDbDatabase::endUndoMark() {
  if (impl_->openMarks > 0) --impl_->openMarks;
}

int AcDbDatabase::undoMarkCount() const { return static_cast<int>(impl_->marks.size()); }

bool AcDbDatabase::undoBack() {
  if (impl_->marks.empty() || impl_->openMarks > 0) return false;
  Impl::Redo redo;
  redo.mark = std::move(impl_->marks.back());
  impl_->marks.pop_back();
  const zepk::db::UndoMark& mark = redo.mark;
  // What the objects are now, to come back to on redo.
  for (const zepk::db::UndoRecord& r : mark.records) {
    if (!r.stub->object) continue;
    zepk::db::UndoRecord now;
    now.stub = r.stub;
    now.erased = r.stub->erased;
    now.state = std::make_shared<zepk::db::MemoryDwgFiler>(AcDb::kUndoFiler, this);
    r.stub->object->dwgOutFields(now.state.get());
    redo.after.push_back(std::move(now));
  }
  // Objects added under the mark are taken back: erased, silently.
  for (auto it = mark.added.rbegin(); it != mark.added.rend(); ++it) (*it)->erased = true;
  // Exchanged ids go back before the recorded states, which were taken
  // with each object at its first id.
  for (auto it = mark.swaps.rbegin(); it != mark.swaps.rend(); ++it) zepk::db::swapStubObjects(it->first, it->second);
  for (auto it = mark.records.rbegin(); it != mark.records.rend(); ++it) zepk::db::restoreRecord(*it);
  impl_->redo.push_back(std::move(redo));
  return true;
}

bool AcDbDatabase::redoForward() {
  if (impl_->redo.empty() || impl_->openMarks > 0) return false;
  Impl::Redo redo = std::move(impl_->redo.back());
  impl_->redo.pop_back();
  for (AcDbStub* s : redo.mark.added) s->erased = false;
  for (const auto& [a, b] : redo.mark.swaps) zepk::db::swapStubObjects(a, b);
  for (const zepk::db::UndoRecord& r : redo.after) zepk::db::restoreRecord(r);
  // Undone again by the same mark.
  impl_->marks.push_back(std::move(redo.mark));
  return true;
}

int AcDbDatabase::redoCount() const { return static_cast<int>(impl_->redo.size()); }

namespace zepk::db {

void dbNotify(AcDbDatabase* db, const std::function<void(AcDbDatabaseReactor*)>& f) {
  if (!db) return;
  for (AcDbDatabaseReactor* r : std::vector<AcDbDatabaseReactor*>(AcDbObjectAccess::impl(db)->reactors)) f(r);
}

std::vector<HeaderVar>& headerVars(AcDbDatabase* db) { return AcDbObjectAccess::impl(db)->header; }

Overlay& overlayOf(AcDbDatabase* db) { return AcDbObjectAccess::impl(db)->overlay; }

UndoMark* openUndoMark(AcDbDatabase* db) {
  if (!db) return nullptr;
  auto* impl = AcDbObjectAccess::impl(db);
  if (impl->openMarks == 0 || impl->marks.empty()) return nullptr;
  return &impl->marks.back();
}

}  // namespace zepk::db

// ---------------------------------------------------------------- drawing files

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* fileName) {
  impl_->fileError.clear();
  if (!fileName) return Acad::eNullObjectPointer;
  if (!impl_->stubs.empty()) {
    impl_->fileError = "the drawing is not empty";
    return Acad::eAlreadyInDb;
  }
  std::string path = zepk::sys::toUtf8(fileName);
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    impl_->fileError = "cannot open \"" + path + "\"";
    return Acad::eFileNotFound;
  }
  char head[6] = {};
  in.read(head, sizeof head);
  in.close();
  // A binary drawing starts with its release ("AC1032"); this host reads
  // drawings as DXF only.
  if (std::string_view(head, 4) == "AC10" || std::string_view(head, 4) == "AC24") {
    impl_->fileError = "\"" + path + "\" is a binary drawing; this host reads drawings as DXF";
    return Acad::eInvalidDwgVersion;
  }
  std::unique_ptr<AcDbDatabase> read;
  std::string error;
  if (!zepk::db::readDxf(path, &read, &error)) {
    impl_->fileError = error;
    return Acad::eBadDxfSequence;
  }
  Acad::ErrorStatus es = AcDbDatabaseAccess::moveContents(read.get(), this);
  if (es != Acad::eOk) return es;
  zepk::db::dxfFileData(this) = std::move(zepk::db::dxfFileData(read.get()));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR* fileName) {
  impl_->fileError.clear();
  if (!fileName) return Acad::eNullObjectPointer;
  std::string error;
  if (!zepk::db::writeDxf(this, zepk::sys::toUtf8(fileName), &error)) {
    impl_->fileError = error;
    return Acad::eFileAccessErr;
  }
  return Acad::eOk;
}

const std::string& AcDbDatabase::lastFileError() const { return impl_->fileError; }
