// Objects: the open and close protocol, notifications, extended data,
// extension dictionaries and the persistent state every object shares.
#include <algorithm>
#include <cstring>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dxf/group.h"
#include "host/dbdict.h"
#include "host/dbmain.h"

using zepk::db::MemoryDwgFiler;

namespace {

constexpr int kMaxReaders = 256;
constexpr int kMaxXDataBytes = 16383;

AcRxObject* makeObject() { return new AcDbObject; }

// Calls f on each object that holds o as a persistent reactor, opened for
// notify, while o refuses to be opened for write.
template <class F>
void notifyPersistent(AcDbObject* o, bool& notifying, const AcDbObjectIdArray& ids, F f) {
  if (ids.empty()) return;
  bool was = notifying;
  notifying = true;
  for (AcDbObjectId id : AcDbObjectIdArray(ids)) {
    AcDbObject* r = nullptr;
    if (acdbOpenAcDbObject(r, id, AcDb::kForNotify) != Acad::eOk) continue;
    f(r);
    r->close();
  }
  notifying = was;
}

// Copies a chain of result buffers (strings and binary chunks included).
resbuf* copyChain(const resbuf* rb) {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (const resbuf* p = rb; p; p = p->rbnext) {
    resbuf* n = acutNewRb(p->restype);
    if (!n) break;
    n->resval = p->resval;
    if (p->restype == 1004 || (p->restype >= 310 && p->restype <= 319)) {
      n->resval.rbinary.buf = nullptr;
      if (p->resval.rbinary.buf && p->resval.rbinary.clen > 0) {
        n->resval.rbinary.buf = static_cast<char*>(std::malloc(p->resval.rbinary.clen));
        std::memcpy(n->resval.rbinary.buf, p->resval.rbinary.buf, p->resval.rbinary.clen);
      }
    } else if ((p->restype >= 1000 && p->restype <= 1003) || (p->restype >= 1005 && p->restype <= 1009)) {
      size_t len = 0;
      const ACHAR* s = p->resval.rstring ? p->resval.rstring : u"";
      while (s[len]) ++len;
      n->resval.rstring = static_cast<ACHAR*>(std::malloc((len + 1) * sizeof(ACHAR)));
      std::memcpy(n->resval.rstring, s, (len + 1) * sizeof(ACHAR));
    }
    *tail = n;
    tail = &n->rbnext;
  }
  return head;
}

// A copy of one group as a DXF filer gives it, with its text or bytes
// copied; null for a group whose kind of value is not known.
resbuf* copyGroup(const resbuf& rb) {
  const int code = rb.restype;
  using zepk::dxf::GroupType;
  const GroupType type = zepk::dxf::groupType(code);
  if (type == GroupType::Unknown) return nullptr;
  resbuf* n = acutNewRb(code);
  if (!n) return nullptr;
  n->resval = rb.resval;
  const bool text = type == GroupType::String || code == 5 || code == 105 || code == 1005;
  if (text) {
    const ACHAR* s = rb.resval.rstring ? rb.resval.rstring : u"";
    size_t len = 0;
    while (s[len]) ++len;
    n->resval.rstring = static_cast<ACHAR*>(std::malloc((len + 1) * sizeof(ACHAR)));
    std::memcpy(n->resval.rstring, s, (len + 1) * sizeof(ACHAR));
  } else if (type == GroupType::Binary) {
    n->resval.rbinary.buf = nullptr;
    if (rb.resval.rbinary.buf && rb.resval.rbinary.clen > 0) {
      n->resval.rbinary.buf = static_cast<char*>(std::malloc(rb.resval.rbinary.clen));
      std::memcpy(n->resval.rbinary.buf, rb.resval.rbinary.buf, rb.resval.rbinary.clen);
    }
  }
  return n;
}

bool sameApp(const resbuf* rb, const ACHAR* app) {
  if (!rb || rb->restype != 1001 || !rb->resval.rstring || !app) return false;
  const ACHAR* a = rb->resval.rstring;
  const ACHAR* b = app;
  for (; *a && *b; ++a, ++b) {
    ACHAR x = (*a >= u'a' && *a <= u'z') ? ACHAR(*a - 32) : *a;
    ACHAR y = (*b >= u'a' && *b <= u'z') ? ACHAR(*b - 32) : *b;
    if (x != y) return false;
  }
  return *a == *b;
}

// Bytes a group of extended data takes, as the host counts toward its limit.
int xdItemSize(const resbuf* p) {
  int code = p->restype;
  if (code == 1001 || (code >= 1000 && code <= 1003) || (code >= 1005 && code <= 1009)) {
    int len = 0;
    if (p->resval.rstring)
      for (const ACHAR* s = p->resval.rstring; *s; ++s) ++len;
    return 2 + len;
  }
  if (code == 1004) return 3 + p->resval.rbinary.clen;
  if (code >= 1010 && code <= 1039) return 2 + 24;
  if (code >= 1040 && code <= 1042) return 2 + 8;
  if (code == 1070) return 2 + 2;
  if (code == 1071) return 2 + 4;
  return 2;
}

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbObject, AcRxObject, nullptr, makeObject)

AcDbObject::AcDbObject() = default;

AcDbObject::~AcDbObject() {
  for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->goodbye(this);
  acutRelRb(xdata_);
  acutRelRb(appData_);
  if (stub_ && stub_->object == this) stub_->object = nullptr;
}

AcDbObjectId AcDbObject::objectId() const { return AcDbObjectId(stub_); }
AcDbDatabase* AcDbObject::database() const { return stub_ ? stub_->db : nullptr; }
bool AcDbObject::isErased() const { return stub_ && stub_->erased; }

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
  assertWriteEnabled();
  owner_ = owner;
  return Acad::eOk;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& pObj, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
  pObj = nullptr;
  if (id.isNull()) return Acad::eNullObjectId;
  AcDbStub* s = id.stub();
  if (!s->object) return Acad::eNotInDatabase;
  if (s->erased && !openErased) return Acad::eWasErased;
  AcDbObject* o = s->object;
  Acad::ErrorStatus es = AcDbObjectAccess::open(o, mode);
  if (es == Acad::eOk) pObj = o;
  return es;
}

Acad::ErrorStatus AcDbObjectAccess::open(AcDbObject* o, AcDb::OpenMode mode) {
  using Mode = AcDbObject::Mode;
  switch (mode) {
    case AcDb::kForRead:
      if (o->mode_ == Mode::Write) return Acad::eWasOpenForWrite;
      if (o->readers_ >= kMaxReaders) return Acad::eAtMaxReaders;
      if (o->mode_ == Mode::Closed) o->mode_ = Mode::Read;
      ++o->readers_;
      break;
    case AcDb::kForWrite: {
      if (o->notifying_) return Acad::eWasNotifying;
      if (o->mode_ == Mode::Write) return Acad::eWasOpenForWrite;
      if (o->mode_ == Mode::Read) return Acad::eWasOpenForRead;
      if (o->mode_ == Mode::Notify) return Acad::eWasOpenForNotify;
      Acad::ErrorStatus es = o->checkWriteOpen();
      if (es != Acad::eOk) return es;
      o->mode_ = Mode::Write;
      break;
    }
    case AcDb::kForNotify:
      if (o->mode_ == Mode::Write) return Acad::eWasOpenForWrite;
      if (o->mode_ == Mode::Closed) o->mode_ = Mode::Notify;
      ++o->readers_;
      break;
  }
  Acad::ErrorStatus es = o->subOpen(mode);
  if (es != Acad::eOk) {
    // Take the open back.
    if (mode == AcDb::kForWrite) {
      o->mode_ = Mode::Closed;
    } else if (--o->readers_ == 0) {
      o->mode_ = Mode::Closed;
    }
  }
  return es;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (mode_ == Mode::Write) return Acad::eWasOpenForWrite;
  if (mode_ != Mode::Read) return Acad::eNotOpenForRead;
  if (readers_ > 1) return Acad::eWasOpenForRead;
  if (notifying_) return Acad::eWasNotifying;
  Acad::ErrorStatus es = checkWriteOpen();
  if (es != Acad::eOk) return es;
  readers_ = 0;
  mode_ = Mode::Write;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (mode_ != Mode::Write) return Acad::eNotOpenForWrite;
  // The changes so far are announced as on a close.
  Acad::ErrorStatus es = close();
  if (es != Acad::eOk) return es;
  mode_ = Mode::Read;
  readers_ = 1;
  return Acad::eOk;
}

void AcDbObject::assertWriteEnabled(bool autoUndo, bool recordModified) {
  if (mode_ != Mode::Write) return;  // a change outside a write open is the caller's fault; ignored
  if (!undoRecorded_ && !isNew_ && autoUndo && stub_) {
    undoRecorded_ = true;
    if (zepk::db::UndoMark* mark = zepk::db::openUndoMark(stub_->db)) {
      bool seen = std::any_of(mark->records.begin(), mark->records.end(),
                              [this](const zepk::db::UndoRecord& r) { return r.stub == stub_; });
      if (!seen) {
        zepk::db::UndoRecord rec;
        rec.stub = stub_;
        rec.erased = stub_->erased;
        rec.state = std::make_shared<MemoryDwgFiler>(AcDb::kUndoFiler, stub_->db);
        dwgOutFields(rec.state.get());
        mark->records.push_back(std::move(rec));
      }
    }
  }
  if (!openedForModifySent_ && !isNew_) {
    openedForModifySent_ = true;
    for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->openedForModify(this);
    notifyPersistent(this, notifying_, persistentReactors_, [this](AcDbObject* r) { r->openedForModify(this); });
    zepk::db::dbNotify(database(), [this](AcDbDatabaseReactor* r) { r->objectOpenedForModify(database(), this); });
  }
  if (recordModified) modified_ = true;
}

Acad::ErrorStatus AcDbObject::close() {
  switch (mode_) {
    case Mode::Closed: return Acad::eNotOpenForRead;
    case Mode::Read:
    case Mode::Notify:
      if (--readers_ <= 0) {
        readers_ = 0;
        mode_ = Mode::Closed;
        subClose();
      }
      return Acad::eOk;
    case Mode::Write: break;
  }
  subClose();
  bool wasNew = isNew_;
  bool changed = modified_;
  bool xdChanged = xdataModified_;
  mode_ = Mode::Closed;
  isNew_ = false;
  modified_ = false;
  xdataModified_ = false;
  openedForModifySent_ = false;
  undoRecorded_ = false;
  AcDbDatabase* db = database();
  // While it tells others of its change, the object can be read but not
  // opened for write.
  struct Notifying {
    bool& flag;
    bool was;
    explicit Notifying(bool& f) : flag(f), was(f) { flag = true; }
    ~Notifying() { flag = was; }
  } notifying(notifying_);
  if (wasNew) {
    zepk::db::dbNotify(db, [&](AcDbDatabaseReactor* r) { r->objectAppended(db, this); });
  } else if (changed) {
    // The order a CAD host keeps: the object's transient reactors, the
    // objects that hold it as a persistent reactor, then the database.
    if (xdChanged) {
      for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->modifiedXData(this);
      notifyPersistent(this, notifying_, persistentReactors_, [this](AcDbObject* r) { r->modifiedXData(this); });
    }
    for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->modified(this);
    notifyPersistent(this, notifying_, persistentReactors_, [this](AcDbObject* r) { r->modified(this); });
    zepk::db::dbNotify(db, [&](AcDbDatabaseReactor* r) { r->objectModified(db, this); });
  }
  for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->objectClosed(objectId());
  return Acad::eOk;
}

void AcDbObjectAccess::sendCopied(AcDbObject* original, AcDbObject* copy) {
  for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(original->reactors_)) r->copied(original, copy);
  notifyPersistent(original, original->notifying_, original->persistentReactors_,
                   [&](AcDbObject* r) { r->copied(original, copy); });
}

Acad::ErrorStatus AcDbObject::cancel() {
  if (mode_ != Mode::Write) return close();
  // Without an undo record of this open there is nothing to go back to
  // beyond the state as it stands.
  mode_ = Mode::Closed;
  modified_ = false;
  openedForModifySent_ = false;
  undoRecorded_ = false;
  for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->cancelled(this);
  notifyPersistent(this, notifying_, persistentReactors_, [this](AcDbObject* r) { r->cancelled(this); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
  if (mode_ != Mode::Write) return Acad::eNotOpenForWrite;
  if (!stub_) return Acad::eNotInDatabase;
  if (stub_->erased == erasing) return erasing ? Acad::eWasErased : Acad::eWasNotErased;
  Acad::ErrorStatus es = subErase(erasing);
  if (es != Acad::eOk) return es;
  assertWriteEnabled();
  stub_->erased = erasing;
  AcDbDatabase* db = database();
  for (AcDbObjectReactor* r : std::vector<AcDbObjectReactor*>(reactors_)) r->erased(this, erasing);
  notifyPersistent(this, notifying_, persistentReactors_, [&](AcDbObject* r) { r->erased(this, erasing); });
  zepk::db::dbNotify(db, [&](AcDbDatabaseReactor* r) { r->objectErased(db, this, erasing); });
  return Acad::eOk;
}

// ---------------------------------------------------------------- extended data

resbuf* AcDbObject::xData(const ACHAR* regappName) const {
  if (!regappName) return copyChain(xdata_);
  for (const resbuf* p = xdata_; p; p = p->rbnext) {
    if (!sameApp(p, regappName)) continue;
    // The application's part: its name and groups up to the next name.
    const resbuf* end = p->rbnext;
    while (end && end->restype != 1001) end = end->rbnext;
    resbuf* head = nullptr;
    resbuf** tail = &head;
    for (const resbuf* q = p; q != end; q = q->rbnext) {
      resbuf one = *q;
      one.rbnext = nullptr;
      *tail = copyChain(&one);
      tail = &(*tail)->rbnext;
    }
    return head;
  }
  return nullptr;
}

int AcDbObject::xDataSize() const {
  int n = 0;
  for (const resbuf* p = xdata_; p; p = p->rbnext) n += xdItemSize(p);
  return n;
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf* xdata) {
  if (mode_ != Mode::Write) return Acad::eNotOpenForWrite;
  // Split the new data into parts by application.
  std::vector<std::pair<const resbuf*, const resbuf*>> parts;  // [first, end)
  for (const resbuf* p = xdata; p;) {
    if (p->restype == -3) {
      p = p->rbnext;
      continue;
    }
    if (p->restype != 1001 || !p->resval.rstring || !*p->resval.rstring) return Acad::eInvalidXDataAppName;
    const resbuf* end = p->rbnext;
    while (end && end->restype != 1001) {
      if (end->restype < 1000 || end->restype > 1071) return Acad::eInvalidResBuf;
      end = end->rbnext;
    }
    parts.emplace_back(p, end);
    p = end;
  }
  // Build the new whole: the old parts not named, then the named ones that
  // have groups, each in its place of the new data.
  resbuf* out = nullptr;
  resbuf** tail = &out;
  for (resbuf* p = xdata_; p;) {
    resbuf* end = p->rbnext;
    while (end && end->restype != 1001) end = end->rbnext;
    bool replaced = std::any_of(parts.begin(), parts.end(),
                                [&](auto& part) { return sameApp(p, part.first->resval.rstring); });
    if (!replaced) {
      for (resbuf* q = p; q != end; q = q->rbnext) {
        resbuf one = *q;
        one.rbnext = nullptr;
        *tail = copyChain(&one);
        tail = &(*tail)->rbnext;
      }
    }
    p = end;
  }
  for (auto& [first, end] : parts) {
    if (first->rbnext == end) continue;  // the name alone removes the part
    for (const resbuf* q = first; q != end; q = q->rbnext) {
      resbuf one = *q;
      one.rbnext = nullptr;
      *tail = copyChain(&one);
      tail = &(*tail)->rbnext;
    }
  }
  int size = 0;
  for (const resbuf* p = out; p; p = p->rbnext) size += xdItemSize(p);
  if (size > kMaxXDataBytes) {
    acutRelRb(out);
    return Acad::eXdataSizeExceeded;
  }
  assertWriteEnabled();
  acutRelRb(xdata_);
  xdata_ = out;
  xdataModified_ = true;
  return Acad::eOk;
}

// ---------------------------------------------------------------- reactors

void AcDbObject::addReactor(AcDbObjectReactor* reactor) const {
  if (reactor && std::find(reactors_.begin(), reactors_.end(), reactor) == reactors_.end())
    reactors_.push_back(reactor);
}

void AcDbObject::removeReactor(AcDbObjectReactor* reactor) const {
  reactors_.erase(std::remove(reactors_.begin(), reactors_.end(), reactor), reactors_.end());
}

void AcDbObject::addPersistentReactor(AcDbObjectId id) {
  if (id.isNull() || hasPersistentReactor(id)) return;
  assertWriteEnabled(true, false);
  persistentReactors_.push_back(id);
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId id) {
  auto it = std::find(persistentReactors_.begin(), persistentReactors_.end(), id);
  if (it == persistentReactors_.end()) return Acad::eKeyNotFound;
  assertWriteEnabled(true, false);
  persistentReactors_.erase(it);
  return Acad::eOk;
}

bool AcDbObject::hasPersistentReactor(AcDbObjectId id) const {
  return std::find(persistentReactors_.begin(), persistentReactors_.end(), id) != persistentReactors_.end();
}

// The extension dictionary is the object's own: a dictionary that owns
// its entries hard, owned by the object and watching it, as drawings keep
// them. An object that has one keeps it.
Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  if (!extDict_.isNull() && !extDict_.isErased()) return Acad::eOk;
  if (!stub_ || !stub_->db) return Acad::eNotInDatabase;
  if (mode_ != Mode::Write) return Acad::eNotOpenForWrite;
  auto* dict = new AcDbDictionary;
  dict->setTreatElementsAsHard(true);
  AcDbObjectId id;
  Acad::ErrorStatus es = stub_->db->addAcDbObject(id, dict);
  if (es != Acad::eOk) {
    delete dict;
    return es;
  }
  dict->setOwnerId(objectId());
  dict->addPersistentReactor(objectId());
  dict->close();
  assertWriteEnabled();
  extDict_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
  if (extDict_.isNull()) return Acad::eKeyNotFound;
  assertWriteEnabled();
  extDict_.setNull();
  return Acad::eOk;
}

// ---------------------------------------------------------------- persistence

// The state every object carries: owner, extension dictionary, persistent
// reactors and extended data. Classes write theirs after it.
Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* f) const {
  f->writeSoftPointerId(owner_);
  f->writeHardOwnershipId(extDict_);
  f->writeInt32(static_cast<Adesk::Int32>(persistentReactors_.size()));
  for (const AcDbObjectId& id : persistentReactors_) f->writeSoftPointerId(id);
  int n = 0;
  for (const resbuf* p = xdata_; p; p = p->rbnext) ++n;
  f->writeInt32(n);
  for (const resbuf* p = xdata_; p; p = p->rbnext) {
    f->writeInt16(p->restype);
    int code = p->restype;
    if (code == 1001 || (code >= 1000 && code <= 1003) || (code >= 1005 && code <= 1009)) {
      f->writeString(p->resval.rstring ? p->resval.rstring : u"");
    } else if (code == 1004) {
      f->writeInt16(p->resval.rbinary.clen);
      f->writeBytes(p->resval.rbinary.buf, p->resval.rbinary.clen);
    } else if (code >= 1010 && code <= 1039) {
      f->writePoint3d(AcGePoint3d(p->resval.rpoint[0], p->resval.rpoint[1], p->resval.rpoint[2]));
    } else if (code >= 1040 && code <= 1042) {
      f->writeDouble(p->resval.rreal);
    } else if (code == 1070) {
      f->writeInt16(p->resval.rint);
    } else {
      f->writeInt32(p->resval.rlong);
    }
  }
  // Application data: its groups as the memory DXF filer holds them.
  zepk::db::MemoryDxfFiler appData;
  for (const resbuf* p = appData_; p; p = p->rbnext) appData.writeItem(*p);
  zepk::db::writeDwgItems(f, appData.items());
  return f->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* f) {
  f->readSoftPointerId(&owner_);
  f->readHardOwnershipId(&extDict_);
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  persistentReactors_.clear();
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    AcDbObjectId id;
    f->readSoftPointerId(&id);
    persistentReactors_.push_back(id);
  }
  acutRelRb(xdata_);
  xdata_ = nullptr;
  resbuf** tail = &xdata_;
  Adesk::Int32 count = 0;
  f->readInt32(&count);
  for (Adesk::Int32 i = 0; i < count && f->filerStatus() == Acad::eOk; ++i) {
    Adesk::Int16 code = 0;
    f->readInt16(&code);
    resbuf* rb = acutNewRb(code);
    if (code == 1001 || (code >= 1000 && code <= 1003) || (code >= 1005 && code <= 1009)) {
      std::u16string s;
      f->readString(&s);
      rb->resval.rstring = static_cast<ACHAR*>(std::malloc((s.size() + 1) * sizeof(ACHAR)));
      std::memcpy(rb->resval.rstring, s.c_str(), (s.size() + 1) * sizeof(ACHAR));
    } else if (code == 1004) {
      Adesk::Int16 len = 0;
      f->readInt16(&len);
      rb->resval.rbinary.clen = len;
      rb->resval.rbinary.buf = len > 0 ? static_cast<char*>(std::malloc(len)) : nullptr;
      if (len > 0) f->readBytes(rb->resval.rbinary.buf, len);
    } else if (code >= 1010 && code <= 1039) {
      AcGePoint3d pt;
      f->readPoint3d(&pt);
      rb->resval.rpoint[0] = pt.x, rb->resval.rpoint[1] = pt.y, rb->resval.rpoint[2] = pt.z;
    } else if (code >= 1040 && code <= 1042) {
      f->readDouble(&rb->resval.rreal);
    } else if (code == 1070) {
      f->readInt16(&rb->resval.rint);
    } else {
      Adesk::Int32 v = 0;
      f->readInt32(&v);
      rb->resval.rlong = v;
    }
    *tail = rb;
    tail = &rb->rbnext;
  }
  acutRelRb(appData_);
  appData_ = nullptr;
  zepk::db::MemoryDxfFiler appData;
  if (zepk::db::readDwgItems(f, &appData.items()) != Acad::eOk) return f->filerStatus();
  resbuf** appTail = &appData_;
  resbuf rbItem;
  while (appData.readItem(&rbItem) == Acad::eOk) {
    if (resbuf* n = copyGroup(rbItem)) {
      *appTail = n;
      appTail = &n->rbnext;
    }
  }
  return f->filerStatus();
}

// DXF: the object's common groups stand before its classes' data: 102
// groups for persistent reactors and the extension dictionary, then 330
// the owner. The handle (5) and the type (0) are written by whoever writes
// the object as a whole (the file writer, entget); extended data (1001...)
// comes after all class data, written by the same.
Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler* f) const {
  for (const resbuf* p = appData_; p; p = p->rbnext) f->writeItem(*p);
  if (!persistentReactors_.empty()) {
    f->writeString(102, u"{ACAD_REACTORS");
    for (const AcDbObjectId& id : persistentReactors_) f->writeObjectId(330, id);
    f->writeString(102, u"}");
  }
  if (!extDict_.isNull()) {
    f->writeString(102, u"{ACAD_XDICTIONARY");
    f->writeObjectId(360, extDict_);
    f->writeString(102, u"}");
  }
  f->writeObjectId(330, owner_);
  return f->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler* f) {
  persistentReactors_.clear();
  acutRelRb(appData_);
  appData_ = nullptr;
  resbuf** appTail = &appData_;
  auto keep = [&appTail](const resbuf& g) {
    if (resbuf* n = copyGroup(g)) {
      *appTail = n;
      appTail = &n->rbnext;
    }
  };
  resbuf rb;
  for (;;) {
    Acad::ErrorStatus es = f->readItem(&rb);
    if (es == Acad::eEndOfFile) return Acad::eOk;
    if (es != Acad::eOk) return es;
    if (rb.restype == 102 && rb.resval.rstring) {
      std::u16string tag = rb.resval.rstring;
      // Groups up to the closing "}"; reactors and the dictionary are the
      // object's, any other group in braces is an application's data, kept
      // as it is.
      const bool appData = tag != u"{ACAD_REACTORS" && tag != u"{ACAD_XDICTIONARY";
      if (appData) keep(rb);
      for (;;) {
        es = f->readItem(&rb);
        if (es != Acad::eOk) return es == Acad::eEndOfFile ? Acad::eBadDxfSequence : es;
        if (appData) keep(rb);
        if (rb.restype == 102) break;
        AcDbObjectId id;
        id.setFromOldId(static_cast<intptr_t>(rb.resval.rlname[0]));
        if (tag == u"{ACAD_REACTORS" && rb.restype == 330 && !id.isNull()) persistentReactors_.push_back(id);
        if (tag == u"{ACAD_XDICTIONARY" && rb.restype == 360) extDict_ = id;
      }
    } else if (rb.restype == 330) {
      owner_.setFromOldId(static_cast<intptr_t>(rb.resval.rlname[0]));
    } else if (rb.restype == 5 || rb.restype == 0) {
      // The type and handle belong to the reader of the whole object.
    } else {
      f->pushBackItem();
      return f->filerStatus();
    }
  }
}

namespace zepk::db {

void restoreRecord(const UndoRecord& r) {
  AcDbObject* o = r.stub->object;
  if (!o) return;
  r.state->rewind();
  o->dwgInFields(r.state.get());
  r.stub->erased = r.erased;
}

}  // namespace zepk::db
