// Objects and entities of classes this host does not know. A drawing may
// hold records of classes that some application defined (the CLASSES
// section names them) or that the host does not model; reading keeps each
// such record as a proxy: its DXF name, the application's class name, and
// every group of its class data exactly as read. Saving writes it back
// unchanged, so that nothing in a drawing is lost by opening and saving it.
//
// A proxy shares what every object has (owner, reactors, extension
// dictionary, extended data) and, for an entity, what every entity has
// (layer, colour, linetype ...): those the host reads and writes as for any
// object. The rest is the proxy's data, which the host does not interpret
// beyond following the references in it.
#pragma once

#include <memory>

#include "host/dbents.h"
#include "host/dbmain.h"

namespace zepk::db {
struct ProxyData;
struct ProxyAccess;
}  // namespace zepk::db

class AcDbProxyObject : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbProxyObject);
  AcDbProxyObject();
  ~AcDbProxyObject() override;

  // The class the record belongs to: its C++ name ("ZepkCustomObject"),
  // its DXF name ("ZEPK_CUSTOM_OBJECT") and the application that defines it
  // ("ZEPK corpus"), as the CLASSES section gave them.
  const ACHAR* originalClassName() const;
  const ACHAR* originalDxfName() const;
  const ACHAR* applicationDescription() const;
  // The class's proxy flags (what the host may do to the proxy).
  int proxyFlags() const;
  // The objects the data refers to, in the order they stand.
  Acad::ErrorStatus getReferences(AcDbObjectIdArray& ids) const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct zepk::db::ProxyAccess;
  std::unique_ptr<zepk::db::ProxyData> data_;
};

class AcDbProxyEntity : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
  AcDbProxyEntity();
  ~AcDbProxyEntity() override;

  const ACHAR* originalClassName() const;
  const ACHAR* originalDxfName() const;
  const ACHAR* applicationDescription() const;
  int proxyFlags() const;
  Acad::ErrorStatus getReferences(AcDbObjectIdArray& ids) const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct zepk::db::ProxyAccess;
  std::unique_ptr<zepk::db::ProxyData> data_;
};
