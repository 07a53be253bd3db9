// Proxies: records of classes the host does not know, kept as read.
#include "host/dbproxy.h"

#include "host/db/dbobjects.h"
#include "host/db/dxffile.h"
#include "host/db/dxfinternal.h"
#include "host/db/internal.h"

namespace zepk::db {

namespace {

AcRxObject* makeProxyObject() { return new AcDbProxyObject; }
AcRxObject* makeProxyEntity() { return new AcDbProxyEntity; }

}  // namespace

struct ProxyAccess {
  static ProxyData& data(AcDbProxyObject* o) { return *o->data_; }
  static ProxyData& data(AcDbProxyEntity* o) { return *o->data_; }
  static const ProxyData& data(const AcDbProxyObject* o) { return *o->data_; }
  static const ProxyData& data(const AcDbProxyEntity* o) { return *o->data_; }
};

ProxyData* proxyData(AcDbObject* obj) {
  if (auto* p = AcDbProxyObject::cast(obj)) return &ProxyAccess::data(p);
  if (auto* p = AcDbProxyEntity::cast(obj)) return &ProxyAccess::data(p);
  return nullptr;
}

const ProxyData* proxyData(const AcDbObject* obj) { return proxyData(const_cast<AcDbObject*>(obj)); }

Acad::ErrorStatus ProxyData::dwgOut(AcDbDwgFiler* f) const {
  f->writeString(dxfName);
  f->writeString(className);
  f->writeString(appName);
  f->writeInt32(proxyFlags);
  return writeDwgItems(f, items);
}

Acad::ErrorStatus ProxyData::dwgIn(AcDbDwgFiler* f) {
  f->readString(&dxfName);
  f->readString(&className);
  f->readString(&appName);
  Adesk::Int32 flags = 0;
  f->readInt32(&flags);
  proxyFlags = flags;
  return readDwgItems(f, &items);
}

Acad::ErrorStatus ProxyData::dxfOut(AcDbDxfFiler* f) const { return writeDxfItems(f, items); }

Acad::ErrorStatus ProxyData::dxfIn(AcDbDxfFiler* f) {
  auto* mf = dynamic_cast<MemoryDxfFiler*>(f);
  if (!mf) return Acad::eNotApplicable;
  items.clear();
  while (!mf->atExtendedData()) {
    const DxfItem* it = mf->next();
    if (!it) break;
    items.push_back(*it);
  }
  return mf->filerStatus();
}

void ProxyData::references(AcDbObjectIdArray& ids) const {
  for (const DxfItem& it : items)
    if (it.kind == DxfItem::Id && !it.id.isNull()) ids.push_back(it.id);
}

AcDbObject* makeProxy(bool entity, const std::u16string& dxfName, const std::u16string& className,
                      const std::u16string& appName, int proxyFlags) {
  ProxyData* d;
  AcDbObject* obj;
  if (entity) {
    auto* p = new AcDbProxyEntity;
    d = &ProxyAccess::data(p);
    obj = p;
  } else {
    auto* p = new AcDbProxyObject;
    d = &ProxyAccess::data(p);
    obj = p;
  }
  d->dxfName = dxfName;
  d->className = className.empty() ? dxfName : className;
  d->appName = appName;
  d->proxyFlags = proxyFlags;
  return obj;
}

}  // namespace zepk::db

using zepk::db::ProxyAccess;
using zepk::db::ProxyData;

// ---------------------------------------------------------------- proxy objects

ACRX_DEFINE_HOST_CLASS(AcDbProxyObject, AcDbObject, u"ACAD_PROXY_OBJECT", zepk::db::makeProxyObject)

AcDbProxyObject::AcDbProxyObject() : data_(std::make_unique<ProxyData>()) { data_->dxfName = u"ACAD_PROXY_OBJECT"; }
AcDbProxyObject::~AcDbProxyObject() = default;

const ACHAR* AcDbProxyObject::originalClassName() const { return data_->className.c_str(); }
const ACHAR* AcDbProxyObject::originalDxfName() const { return data_->dxfName.c_str(); }
const ACHAR* AcDbProxyObject::applicationDescription() const { return data_->appName.c_str(); }
int AcDbProxyObject::proxyFlags() const { return data_->proxyFlags; }

Acad::ErrorStatus AcDbProxyObject::getReferences(AcDbObjectIdArray& ids) const {
  data_->references(ids);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbProxyObject::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : data_->dwgOut(f);
}

Acad::ErrorStatus AcDbProxyObject::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : data_->dwgIn(f);
}

Acad::ErrorStatus AcDbProxyObject::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : data_->dxfOut(f);
}

Acad::ErrorStatus AcDbProxyObject::dxfInFields(AcDbDxfFiler* f) {
  assertWriteEnabled();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : data_->dxfIn(f);
}

// ---------------------------------------------------------------- proxy entities

ACRX_DEFINE_HOST_CLASS(AcDbProxyEntity, AcDbEntity, u"ACAD_PROXY_ENTITY", zepk::db::makeProxyEntity)

AcDbProxyEntity::AcDbProxyEntity() : data_(std::make_unique<ProxyData>()) { data_->dxfName = u"ACAD_PROXY_ENTITY"; }
AcDbProxyEntity::~AcDbProxyEntity() = default;

const ACHAR* AcDbProxyEntity::originalClassName() const { return data_->className.c_str(); }
const ACHAR* AcDbProxyEntity::originalDxfName() const { return data_->dxfName.c_str(); }
const ACHAR* AcDbProxyEntity::applicationDescription() const { return data_->appName.c_str(); }
int AcDbProxyEntity::proxyFlags() const { return data_->proxyFlags; }

Acad::ErrorStatus AcDbProxyEntity::getReferences(AcDbObjectIdArray& ids) const {
  data_->references(ids);
  return Acad::eOk;
}

// An entity whose common entity part could not be read keeps that part in
// its data too; it then writes only the object's common part before it.
Acad::ErrorStatus AcDbProxyEntity::dwgOutFields(AcDbDwgFiler* f) const {
  f->writeBool(data_->rawEntityPart);
  Acad::ErrorStatus es = data_->rawEntityPart ? AcDbObject::dwgOutFields(f) : AcDbEntity::dwgOutFields(f);
  return es != Acad::eOk ? es : data_->dwgOut(f);
}

Acad::ErrorStatus AcDbProxyEntity::dwgInFields(AcDbDwgFiler* f) {
  bool raw = false;
  f->readBool(&raw);
  data_->rawEntityPart = raw;
  Acad::ErrorStatus es = raw ? AcDbObject::dwgInFields(f) : AcDbEntity::dwgInFields(f);
  return es != Acad::eOk ? es : data_->dwgIn(f);
}

Acad::ErrorStatus AcDbProxyEntity::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = data_->rawEntityPart ? AcDbObject::dxfOutFields(f) : AcDbEntity::dxfOutFields(f);
  return es != Acad::eOk ? es : data_->dxfOut(f);
}

Acad::ErrorStatus AcDbProxyEntity::dxfInFields(AcDbDxfFiler* f) {
  assertWriteEnabled();
  Acad::ErrorStatus es = data_->rawEntityPart ? AcDbObject::dxfInFields(f) : AcDbEntity::dxfInFields(f);
  return es != Acad::eOk ? es : data_->dxfIn(f);
}
