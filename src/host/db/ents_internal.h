// What the entity classes share inside the database, and what the DXF file
// reader and writer need of them beyond the filers: which class a POLYLINE,
// VERTEX or INSERT is, and the sub-entities (vertices, attributes) that an
// entity owns up to its SEQEND.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/db/memfiler.h"
#include "host/db/schema.h"
#include "host/dbents.h"

namespace zepk::db {

// Registers the entity classes, parents first (with the host's classes).
void registerEntityClasses();

// ---------------------------------------------------------------- parts

// One group of a part that the class does not model, kept with the entity
// and written back after the group it followed: the anchorOccurrence-th
// group of code anchorCode that the class wrote (code 100 and occurrence 0:
// right after the marker). When that group is not written, it goes at the
// end of the part.
struct ExtraGroup {
  int anchorCode = 100;
  int anchorOccurrence = 0;
  DxfItem item;
};

// What an entity keeps of a part as a file gave it: the groups its class
// does not model, and which of its fields the file held. A field the file
// held with its default value is written again; one the file did not hold
// is left out while it has its default value. (Without this state a part
// is written as the schema says: optional fields only when not default.)
struct PartState {
  enum Presence : signed char { kUnknown = 0, kInFile = 1, kNotInFile = -1 };
  const ClassSchema* schema = nullptr;
  std::vector<ExtraGroup> extras;
  std::vector<signed char> presence;  // by field of the schema, or empty
  bool empty() const { return extras.empty() && presence.empty(); }
};

struct EntityExtras {
  std::vector<PartState> parts;
  PartState* find(const ClassSchema* s);
};

// A class's part through its schema, keeping the groups it does not model
// and the fields the file held.
// Reading: with the class's marker next, the part runs to the next marker
// (100), extended data (1001) or the end; a group the schema does not take
// is kept as an extra group. Without a marker (files of release 12, lists
// given to entmake) the part takes the groups of the codes its schema
// knows from the rest of the object, in their order, and leaves the others
// for the parts after it. Another class's marker gives eBadDxfSequence. An
// entity with more than kMaxExtraGroups unknown groups in one part gives
// eMakeMeProxy, so that the reader keeps it whole as a proxy.
constexpr size_t kMaxExtraGroups = 256;
Acad::ErrorStatus dxfOutPart(const ClassSchema& s, const AcDbEntity* e, AcDbDxfFiler* f);
Acad::ErrorStatus dxfInPart(const ClassSchema& s, AcDbEntity* e, AcDbDxfFiler* f);
Acad::ErrorStatus dwgOutPart(const ClassSchema& s, const AcDbEntity* e, AcDbDwgFiler* f);
Acad::ErrorStatus dwgInPart(const ClassSchema& s, AcDbEntity* e, AcDbDwgFiler* f);

// A custom part with a reset of its own state, called before each read.
Field customPart(std::vector<int> codes, Acad::ErrorStatus (*dxfOut)(const AcDbObject*, AcDbDxfFiler*),
                 Acad::ErrorStatus (*dxfIn)(AcDbObject*, MemoryDxfFiler*),
                 Acad::ErrorStatus (*dwgOut)(const AcDbObject*, AcDbDwgFiler*),
                 Acad::ErrorStatus (*dwgIn)(AcDbObject*, AcDbDwgFiler*), void (*reset)(AcDbObject*));

// Writes one group by its kind.
Acad::ErrorStatus writeItem(AcDbDxfFiler* f, const DxfItem& it);
// The next group if it has this code, consumed; null otherwise.
const DxfItem* take(MemoryDxfFiler* f, int code);
// Reading helpers for custom parts: the value of the next group, which must
// have this code and a value of that kind (eBadDxfSequence otherwise).
Acad::ErrorStatus readInt(MemoryDxfFiler* f, int code, int64_t& out);
Acad::ErrorStatus readReal(MemoryDxfFiler* f, int code, double& out);
Acad::ErrorStatus readPoint2d(MemoryDxfFiler* f, int code, AcGePoint2d& out);
// The database a filer works for, or else the object's.
AcDbDatabase* filerDatabase(const AcDbObject* o, AcDbDxfFiler* f);

// A point of the coordinate system of a normal (the arbitrary axis rule) in
// world coordinates.
AcGePoint3d ecsToWcs(const AcGeVector3d& normal, const AcGePoint3d& p);

// A record of a symbol table by name (case-insensitive), null when the
// database or the table has none.
AcDbObjectId textStyleIdByName(AcDbDatabase* db, const std::u16string& name);
AcDbObjectId blockIdByName(AcDbDatabase* db, const std::u16string& name);

// ---- custom parts that many classes use

// The name of a referenced record: the record's own name, or the kept name
// when the record has none or the two differ only in case (as a file
// spelled it).
std::u16string recordNameOr(AcDbObjectId id, const std::u16string& kept);

// What a record reference holds when the file names none, and whether a
// file then leaves it out.
enum class RefDefault { Layer0, ByLayer, None, Standard };
inline const char16_t* refDefaultName(RefDefault d) {
  switch (d) {
    case RefDefault::Layer0: return u"0";
    case RefDefault::ByLayer: return u"ByLayer";
    case RefDefault::Standard: return u"Standard";
    default: return u"";
  }
}

// A reference to a symbol table record (layer 8, linetype 6, block 2, text
// style 7): an id in memory, the record's name in a file. The name read is
// kept, so that a record not in the database yet is found later. Files
// leave out a ByLayer linetype and the Standard style.
template <auto Id, auto Name, int Code, AcDbObjectId (*Lookup)(AcDbDatabase*, const std::u16string&),
          RefDefault Default>
Field recordRefPart() {
  using C = typename zepk::db::MemberOf<Id>::Class;
  constexpr bool omitDefault = Default == RefDefault::ByLayer || Default == RefDefault::Standard;
  Field f = customPart(
      {Code},
      [](const AcDbObject* o, AcDbDxfFiler* fl) {
        auto* e = static_cast<const C*>(o);
        std::u16string name = recordNameOr(e->*Id, e->*Name);
        if (omitDefault && !fl->includesDefaultValues() && sameName(name, refDefaultName(Default)))
          return fl->filerStatus();
        return fl->writeString(Code, name);
      },
      [](AcDbObject* o, MemoryDxfFiler* fl) {
        auto* e = static_cast<C*>(o);
        const DxfItem* it = fl->next();
        if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
        e->*Name = it->s;
        AcDbDatabase* db = filerDatabase(o, fl);
        e->*Id = db ? Lookup(db, it->s) : AcDbObjectId();
        return Acad::eOk;
      },
      [](const AcDbObject* o, AcDbDwgFiler* fl) {
        auto* e = static_cast<const C*>(o);
        fl->writeHardPointerId(e->*Id);
        return fl->writeString(e->*Name);
      },
      [](AcDbObject* o, AcDbDwgFiler* fl) {
        auto* e = static_cast<C*>(o);
        fl->readHardPointerId(&(e->*Id));
        return fl->readString(&(e->*Name));
      },
      [](AcDbObject* o) {
        auto* e = static_cast<C*>(o);
        (e->*Id).setNull();
        e->*Name = refDefaultName(Default);
      });
  return f;
}

// A run of groups of one code, each a value of the vector (knots, weights,
// control points...): one group a value, read while the code lasts.
template <auto Member, int Code>
Field repeatedReals(const char* name) {
  using C = typename MemberOf<Member>::Class;
  Field f = customPart(
      {Code},
      [](const AcDbObject* o, AcDbDxfFiler* fl) {
        for (double x : static_cast<const C*>(o)->*Member) fl->writeDouble(Code, x);
        return fl->filerStatus();
      },
      [](AcDbObject* o, MemoryDxfFiler* fl) {
        auto& v = static_cast<C*>(o)->*Member;
        v.clear();
        while (const DxfItem* it = take(fl, Code)) {
          if (it->kind == DxfItem::Real) v.push_back(it->p[0]);
          else if (it->kind == DxfItem::Int) v.push_back(static_cast<double>(it->i));
          else return Acad::eInvalidResBuf;
        }
        return Acad::eOk;
      },
      [](const AcDbObject* o, AcDbDwgFiler* fl) {
        const auto& v = static_cast<const C*>(o)->*Member;
        fl->writeInt32(static_cast<Adesk::Int32>(v.size()));
        for (double x : v) fl->writeDouble(x);
        return fl->filerStatus();
      },
      [](AcDbObject* o, AcDbDwgFiler* fl) {
        auto& v = static_cast<C*>(o)->*Member;
        Adesk::Int32 n = 0;
        fl->readInt32(&n);
        if (n < 0) return Acad::eFilerError;
        v.assign(static_cast<size_t>(n), 0.0);
        for (double& x : v) fl->readDouble(&x);
        return fl->filerStatus();
      },
      [](AcDbObject* o) { (static_cast<C*>(o)->*Member).clear(); });
  f.name = name;
  return f;
}

// The same for points, 3D (AcGePoint3d) or 2D (AcGePoint2d).
template <auto Member, int Code>
Field repeatedPoints(const char* name) {
  using C = typename MemberOf<Member>::Class;
  using P = typename MemberOf<Member>::Type::value_type;
  Field f = customPart(
      {Code},
      [](const AcDbObject* o, AcDbDxfFiler* fl) {
        for (const P& p : static_cast<const C*>(o)->*Member) {
          if constexpr (std::is_same_v<P, AcGePoint2d>) fl->writePoint2d(Code, p);
          else fl->writePoint3d(Code, p);
        }
        return fl->filerStatus();
      },
      [](AcDbObject* o, MemoryDxfFiler* fl) {
        auto& v = static_cast<C*>(o)->*Member;
        v.clear();
        while (const DxfItem* it = take(fl, Code)) {
          if (it->kind != DxfItem::Point) return Acad::eInvalidResBuf;
          if constexpr (std::is_same_v<P, AcGePoint2d>) v.emplace_back(it->p[0], it->p[1]);
          else v.emplace_back(it->p[0], it->p[1], it->p[2]);
        }
        return Acad::eOk;
      },
      [](const AcDbObject* o, AcDbDwgFiler* fl) {
        const auto& v = static_cast<const C*>(o)->*Member;
        fl->writeInt32(static_cast<Adesk::Int32>(v.size()));
        for (const P& p : v) {
          if constexpr (std::is_same_v<P, AcGePoint2d>) fl->writePoint2d(p);
          else fl->writePoint3d(p);
        }
        return fl->filerStatus();
      },
      [](AcDbObject* o, AcDbDwgFiler* fl) {
        auto& v = static_cast<C*>(o)->*Member;
        Adesk::Int32 n = 0;
        fl->readInt32(&n);
        if (n < 0) return Acad::eFilerError;
        v.assign(static_cast<size_t>(n), P());
        for (P& p : v) {
          if constexpr (std::is_same_v<P, AcGePoint2d>) fl->readPoint2d(&p);
          else fl->readPoint3d(&p);
        }
        return fl->filerStatus();
      },
      [](AcDbObject* o) { (static_cast<C*>(o)->*Member).clear(); });
  f.name = name;
  return f;
}

// The sub-entities an entity owns (vertices, attributes) and its SEQEND, in
// the DWG-style stream only: in DXF they are entities of their own.
Field sequencePart();

// The group that announces the sub-entities after an entity (66 "entities
// follow"): written as 1 when When holds (with default values, as 0
// otherwise), and read over.
template <bool (*When)(const AcDbObject*)>
Field followsFlagPart() {
  Field f = customPart(
      {66},
      [](const AcDbObject* o, AcDbDxfFiler* fl) {
        bool on = When(o);
        if (on || fl->includesDefaultValues()) fl->writeInt16(66, on ? 1 : 0);
        return fl->filerStatus();
      },
      [](AcDbObject*, MemoryDxfFiler* fl) {
        fl->next();
        return Acad::eOk;
      },
      [](const AcDbObject*, AcDbDwgFiler* fl) { return fl->filerStatus(); },
      [](AcDbObject*, AcDbDwgFiler* fl) { return fl->filerStatus(); }, nullptr);
  f.name = "EntitiesFollow";
  return f;
}

// The class record of an entity class that can be made by name.
#define ZEPK_DEFINE_ENTITY_CLASS(CLASS, PARENT, DXF_NAME) \
  ACRX_DEFINE_HOST_CLASS(CLASS, PARENT, DXF_NAME, ([]() -> AcRxObject* { return new CLASS; }))

// Defines the four filers of a class that writes its parent's part, then its
// schema's.
#define ZEPK_DEFINE_ENTITY_FILERS(CLASS, PARENT)                                        \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler* f) const {                       \
    Acad::ErrorStatus es = PARENT::dwgOutFields(f);                                     \
    return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);              \
  }                                                                                     \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler* f) {                               \
    Acad::ErrorStatus es = PARENT::dwgInFields(f);                                      \
    return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);               \
  }                                                                                     \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler* f) const {                       \
    Acad::ErrorStatus es = PARENT::dxfOutFields(f);                                     \
    return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);              \
  }                                                                                     \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler* f) {                               \
    Acad::ErrorStatus es = PARENT::dxfInFields(f);                                      \
    return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);               \
  }

// ---------------------------------------------------------------- sequences

// The sub-entities an entity owns, in order, and the SEQEND that closes
// them. An owner in a database holds them as ids of objects of that
// database; one that is not holds them itself until it is added and first
// closed there.
struct OwnedSequence {
  struct Slot {
    AcDbObjectId id;
    std::unique_ptr<AcDbEntity> pending;
  };
  std::vector<Slot> items;
  AcDbObjectId seqEnd;
};

// Access to the entity classes' private state for the database's own code.
struct EntityAccess {
  static OwnedSequence* sequence(const AcDbEntity* e) { return e->ownedSequence(); }
  static EntityExtras* extras(const AcDbEntity* e, bool create);
  // Resolves names kept while the entity had no database (layer,
  // linetype, text style, block).
  static void resolveNames(AcDbEntity* e);
  // Marks the entity as one of paper space (group 67) or not.
  static void setPaperSpace(AcDbEntity* e, bool on) { e->paperSpace_ = on ? 1 : 0; }
};

// Appends (index -1) or inserts a sub-entity; in a database the sub-entity
// is added, given the owner, and closed, and a SEQEND is made when there is
// none.
Acad::ErrorStatus appendSubentity(AcDbEntity* owner, AcDbEntity* sub, AcDbObjectId* outId, long index = -1);
// Moves sub-entities kept in memory into the owner's database (done when
// the owner is closed there).
void flushSubentities(AcDbEntity* owner);
AcDbObjectIterator* newSubentityIterator(const AcDbEntity* owner);
Acad::ErrorStatus openSequenceEnd(AcDbEntity* owner, AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode);

// ---- For the DXF file reader and writer.

// The class of an entity by its DXF name and groups: POLYLINE, VERTEX and
// INSERT name several classes, told apart by their subclass markers, or in
// files without markers by their flags (70) and, for INSERT, by a column or
// row count (70, 71) above 1. Other names go by the class dictionary.
AcRxClass* entityClassFor(const std::u16string& dxfName, const std::vector<DxfItem>& groups);
// Whether the entity owns a sequence that the file holds after it (a
// polyline always, a block reference when it has attributes).
bool hasSubentities(const AcDbEntity* e);
// The sub-entities in order and the SEQEND. For an owner with
// sub-entities and no SEQEND (made before one was needed), ensureSequenceEnd
// makes it.
AcDbObjectIdArray subentityIds(const AcDbEntity* e);
AcDbObjectId sequenceEndId(const AcDbEntity* e);
AcDbObjectId ensureSequenceEnd(AcDbEntity* e);
// Hands over a sub-entity that the reader has added to the owner's
// database (with its handle): appended in order and given the owner. A
// sub-entity of the wrong kind for the owner gives eWrongObjectType.
Acad::ErrorStatus adoptSubentity(AcDbEntity* owner, AcDbObjectId sub);
Acad::ErrorStatus adoptSequenceEnd(AcDbEntity* owner, AcDbObjectId seqEnd);

}  // namespace zepk::db
