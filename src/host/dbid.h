// Handles and object identifiers. A handle is the 64-bit number an object
// keeps in its drawing for ever (saved, printed in hex). An object id is the
// session's reference to an object: it stays valid while the drawing is
// open, also after the object is erased, and compares by identity.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/ads.h"

class AcDbDatabase;
class AcDbObject;
struct AcDbStub;

class AcDbHandle {
 public:
  AcDbHandle() = default;
  AcDbHandle(uint64_t v) : value_(v) {}
  // From hex text as drawings store it ("1F"); invalid text gives 0.
  explicit AcDbHandle(const ACHAR* hex);
  bool isNull() const { return value_ == 0; }
  uint64_t value() const { return value_; }
  void getIntoAsciiBuffer(ACHAR* buf, size_t bufSize = 17) const;
  std::u16string ascii() const;
  AcDbHandle& operator++() {
    ++value_;
    return *this;
  }
  bool operator==(const AcDbHandle& o) const { return value_ == o.value_; }
  bool operator!=(const AcDbHandle& o) const { return value_ != o.value_; }
  bool operator<(const AcDbHandle& o) const { return value_ < o.value_; }

 private:
  uint64_t value_ = 0;
};

class AcDbObjectId {
 public:
  AcDbObjectId() = default;
  static const AcDbObjectId kNull;
  bool isNull() const { return stub_ == nullptr; }
  void setNull() { stub_ = nullptr; }
  bool isValid() const;
  bool isErased() const;
  AcDbDatabase* database() const;
  AcDbHandle handle() const;
  // The id's number in this session: the address of its record, as the
  // host's entity names show it.
  intptr_t asOldId() const { return reinterpret_cast<intptr_t>(stub_); }
  AcDbObjectId& setFromOldId(intptr_t oldId) {
    stub_ = reinterpret_cast<AcDbStub*>(oldId);
    return *this;
  }
  bool operator==(const AcDbObjectId& o) const { return stub_ == o.stub_; }
  bool operator!=(const AcDbObjectId& o) const { return stub_ != o.stub_; }
  bool operator<(const AcDbObjectId& o) const { return stub_ < o.stub_; }
  explicit operator bool() const = delete;

  // Used by the database implementation.
  explicit AcDbObjectId(AcDbStub* s) : stub_(s) {}
  AcDbStub* stub() const { return stub_; }

 private:
  AcDbStub* stub_ = nullptr;
};

typedef std::vector<AcDbObjectId> AcDbObjectIdArray;

template <>
struct std::hash<AcDbObjectId> {
  size_t operator()(const AcDbObjectId& id) const noexcept { return std::hash<void*>()(id.stub()); }
};
