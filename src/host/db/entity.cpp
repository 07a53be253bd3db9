// Entities: colours, the properties every entity shares, the parts of an
// entity's state with the groups its class does not model, and the
// sub-entities (vertices, attributes) that some entities own.
#include <algorithm>
#include <cmath>
#include <map>

#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/db/overlay.h"
#include "host/dbheader.h"
#include "host/dbelipse.h"
#include "host/dbents.h"
#include "host/dbhatch.h"
#include "host/dbmtext.h"
#include "host/dbpl.h"
#include "host/dbray.h"
#include "host/dbregion.h"
#include "host/dbspline.h"
#include "host/dbsymtb.h"
#include "host/dbxline.h"
#include "host/imgent.h"
#include "host/gemat3d.h"

// ---------------------------------------------------------------- colours

namespace {

// The palette of colour indices. 1 to 9 are fixed; 10 to 249 run through
// 24 hues in steps of 15 degrees, each in five shades (value 255, 165,
// 127, 76, 38), each shade full and half saturated; 250 to 255 are greys.
Adesk::UInt32 paletteRgb(int i) {
  static const Adesk::UInt32 kFirst[10] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                           0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
  static const Adesk::UInt32 kGreys[6] = {0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF};
  if (i < 10) return kFirst[i < 0 ? 0 : i];
  if (i >= 250) return kGreys[std::min(i, 255) - 250];
  static const double kValues[5] = {255, 165, 127, 76, 38};
  int hueStep = i / 10 - 1;  // 0..23
  int shade = (i % 10) / 2;
  bool half = (i % 2) == 1;
  double v = kValues[shade];
  double h = hueStep * 15.0 / 60.0;  // sector and fraction
  int sector = static_cast<int>(h);
  double frac = h - sector;
  double rgb[3];
  // Full saturation in HSV.
  double rising = v * frac, falling = v * (1 - frac);
  switch (sector) {
    case 0: rgb[0] = v, rgb[1] = rising, rgb[2] = 0; break;
    case 1: rgb[0] = falling, rgb[1] = v, rgb[2] = 0; break;
    case 2: rgb[0] = 0, rgb[1] = v, rgb[2] = rising; break;
    case 3: rgb[0] = 0, rgb[1] = falling, rgb[2] = v; break;
    case 4: rgb[0] = rising, rgb[1] = 0, rgb[2] = v; break;
    default: rgb[0] = v, rgb[1] = 0, rgb[2] = falling; break;
  }
  Adesk::UInt32 out = 0;
  for (double c : rgb) {
    if (half) c += (v - c) * 0.5;
    out = (out << 8) | static_cast<Adesk::UInt32>(c);
  }
  return out;
}


}  // namespace

Adesk::UInt32 AcCmEntityColor::lookUpRGB(Adesk::UInt8 colorIndex) { return paletteRgb(colorIndex); }

Adesk::UInt8 AcCmEntityColor::lookUpACI(Adesk::UInt8 red, Adesk::UInt8 green, Adesk::UInt8 blue) {
  int best = 1;
  long bestDist = -1;
  for (int i = 1; i <= 255; ++i) {
    Adesk::UInt32 c = paletteRgb(i);
    long dr = long(c >> 16 & 0xFF) - red, dg = long(c >> 8 & 0xFF) - green, db = long(c & 0xFF) - blue;
    long d = dr * dr + dg * dg + db * db;
    if (bestDist < 0 || d < bestDist) {
      best = i;
      bestDist = d;
    }
  }
  return static_cast<Adesk::UInt8>(best);
}

Acad::ErrorStatus AcCmEntityColor::setColorMethod(ColorMethod method) {
  switch (method) {
    case kByLayer: value_ = kACIbyLayer; break;
    case kByBlock: value_ = kACIbyBlock; break;
    case kForeground: value_ = kACIforeground; break;
    case kNone: value_ = kACInone; break;
    case kByACI:
      if (method_ == kByColor) value_ = lookUpACI(red(), green(), blue());
      else if (method_ != kByACI && method_ != kByPen) value_ = kACIforeground;
      break;
    case kByColor:
      if (method_ != kByColor) value_ = rgb();
      break;
    case kByPen:
    case kLayerOff:
    case kLayerFrozen: break;
    default: return Acad::eInvalidInput;
  }
  method_ = method;
  return Acad::eOk;
}

Adesk::UInt16 AcCmEntityColor::colorIndex() const {
  switch (method_) {
    case kByLayer: return kACIbyLayer;
    case kByBlock: return kACIbyBlock;
    case kForeground: return kACIforeground;
    case kNone: return kACInone;
    case kByColor: return lookUpACI(red(), green(), blue());
    default: return static_cast<Adesk::UInt16>(value_);
  }
}

Acad::ErrorStatus AcCmEntityColor::setColorIndex(Adesk::UInt16 colorIndex) {
  if (colorIndex == kACIbyLayer) return setColorMethod(kByLayer);
  if (colorIndex == kACIbyBlock) return setColorMethod(kByBlock);
  if (colorIndex == kACInone) return setColorMethod(kNone);
  if (colorIndex > 255) return Acad::eInvalidInput;
  method_ = kByACI;
  value_ = colorIndex;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmEntityColor::setRGB(Adesk::UInt8 r, Adesk::UInt8 g, Adesk::UInt8 b) {
  method_ = kByColor;
  value_ = (Adesk::UInt32(r) << 16) | (Adesk::UInt32(g) << 8) | b;
  return Acad::eOk;
}

Adesk::UInt32 AcCmEntityColor::rgb() const {
  if (method_ == kByColor) return value_ & 0xFFFFFF;
  if (method_ == kByACI || method_ == kForeground) return paletteRgb(static_cast<int>(value_));
  return 0;
}

Adesk::UInt8 AcCmEntityColor::red() const { return static_cast<Adesk::UInt8>(rgb() >> 16); }
Adesk::UInt8 AcCmEntityColor::green() const { return static_cast<Adesk::UInt8>(rgb() >> 8); }
Adesk::UInt8 AcCmEntityColor::blue() const { return static_cast<Adesk::UInt8>(rgb()); }

Acad::ErrorStatus AcCmEntityColor::setColor(Adesk::UInt32 color) {
  auto method = static_cast<ColorMethod>(color >> 24);
  if (method < kByLayer || method > kNone) return Acad::eInvalidInput;
  method_ = method;
  value_ = color & 0xFFFFFF;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setColorMethod(ColorMethod method) {
  colorName_.clear();
  bookName_.clear();
  return AcCmEntityColor::setColorMethod(method);
}

Acad::ErrorStatus AcCmColor::setColorIndex(Adesk::UInt16 colorIndex) {
  Acad::ErrorStatus es = AcCmEntityColor::setColorIndex(colorIndex);
  if (es == Acad::eOk) colorName_.clear(), bookName_.clear();
  return es;
}

Acad::ErrorStatus AcCmColor::setRGB(Adesk::UInt8 r, Adesk::UInt8 g, Adesk::UInt8 b) {
  colorName_.clear();
  bookName_.clear();
  return AcCmEntityColor::setRGB(r, g, b);
}

Acad::ErrorStatus AcCmColor::setColor(Adesk::UInt32 color) {
  Acad::ErrorStatus es = AcCmEntityColor::setColor(color);
  if (es == Acad::eOk) colorName_.clear(), bookName_.clear();
  return es;
}

Acad::ErrorStatus AcCmColor::setNames(const ACHAR* colorName, const ACHAR* bookName) {
  colorName_ = colorName ? colorName : u"";
  bookName_ = bookName ? bookName : u"";
  return Acad::eOk;
}

std::u16string AcCmColor::getDictionaryKey() const {
  if (colorName_.empty() && bookName_.empty()) return u"";
  return bookName_ + u"$" + colorName_;
}

Acad::ErrorStatus AcCmColor::setNamesFromDictionaryKey(const ACHAR* key) {
  std::u16string k = key ? key : u"";
  size_t dollar = k.find(u'$');
  if (dollar == std::u16string::npos) return setNames(k.c_str(), u"");
  return setNames(k.substr(dollar + 1).c_str(), k.substr(0, dollar).c_str());
}

void AcCmTransparency::setAlphaPercent(double fraction) {
  fraction = std::clamp(fraction, 0.0, 1.0);
  setAlpha(static_cast<Adesk::UInt8>(std::lround(fraction * 255.0)));
}

Adesk::UInt32 AcCmTransparency::serializeOut() const {
  switch (method_) {
    case kByLayer: return kTransparencyByLayer;
    case kByBlock: return kTransparencyByBlock;
    case kByAlpha: return kTransparencyByAlpha | alpha_;
    default: return 0xFFFFFFFFu;
  }
}

void AcCmTransparency::serializeIn(Adesk::UInt32 value) {
  switch (value >> 24) {
    case 0:
      method_ = kByLayer;
      break;
    case 1:
      method_ = kByBlock;
      break;
    case 2:
      method_ = kByAlpha;
      alpha_ = static_cast<Adesk::UInt8>(value & 0xFF);
      break;
    default: method_ = kErrorValue; break;
  }
}

// ---------------------------------------------------------------- helpers

namespace zepk::db {

PartState* EntityExtras::find(const ClassSchema* s) {
  for (PartState& p : parts)
    if (p.schema == s) return &p;
  return nullptr;
}

Field customPart(std::vector<int> codes, Acad::ErrorStatus (*dxfOut)(const AcDbObject*, AcDbDxfFiler*),
                 Acad::ErrorStatus (*dxfIn)(AcDbObject*, MemoryDxfFiler*),
                 Acad::ErrorStatus (*dwgOut)(const AcDbObject*, AcDbDwgFiler*),
                 Acad::ErrorStatus (*dwgIn)(AcDbObject*, AcDbDwgFiler*), void (*reset)(AcDbObject*)) {
  Field f = custom(std::move(codes), dxfOut, dxfIn, dwgOut, dwgIn);
  f.reset = reset;
  return f;
}

Acad::ErrorStatus writeItem(AcDbDxfFiler* f, const DxfItem& it) {
  switch (it.kind) {
    case DxfItem::String: return f->writeString(it.code, it.s);
    case DxfItem::Int: return f->writeInt64(it.code, it.i);
    case DxfItem::Real: return f->writeDouble(it.code, it.p[0]);
    case DxfItem::Point:
      if (it.dims == 2) return f->writePoint2d(it.code, AcGePoint2d(it.p[0], it.p[1]));
      return f->writePoint3d(it.code, AcGePoint3d(it.p[0], it.p[1], it.p[2]));
    case DxfItem::Id: return f->writeObjectId(it.code, it.id);
    case DxfItem::Handle: return f->writeHandle(it.code, it.handle);
    case DxfItem::Binary: return f->writeBinaryChunk(it.code, it.b);
  }
  return Acad::eInvalidResBuf;
}

const DxfItem* take(MemoryDxfFiler* f, int code) {
  if (f->atEOF() || f->peekCode() != code) return nullptr;
  return f->next();
}

Acad::ErrorStatus readInt(MemoryDxfFiler* f, int code, int64_t& out) {
  const DxfItem* it = take(f, code);
  if (!it || it->kind != DxfItem::Int) return Acad::eBadDxfSequence;
  out = it->i;
  return Acad::eOk;
}

Acad::ErrorStatus readReal(MemoryDxfFiler* f, int code, double& out) {
  const DxfItem* it = take(f, code);
  if (!it) return Acad::eBadDxfSequence;
  if (it->kind == DxfItem::Real) out = it->p[0];
  else if (it->kind == DxfItem::Int) out = static_cast<double>(it->i);
  else return Acad::eBadDxfSequence;
  return Acad::eOk;
}

Acad::ErrorStatus readPoint2d(MemoryDxfFiler* f, int code, AcGePoint2d& out) {
  const DxfItem* it = take(f, code);
  if (!it || it->kind != DxfItem::Point) return Acad::eBadDxfSequence;
  out = AcGePoint2d(it->p[0], it->p[1]);
  return Acad::eOk;
}

AcDbDatabase* filerDatabase(const AcDbObject* o, AcDbDxfFiler* f) {
  AcDbDatabase* db = f ? f->database() : nullptr;
  return db ? db : o->database();
}

AcGePoint3d ecsToWcs(const AcGeVector3d& normal, const AcGePoint3d& p) {
  if (normal.x == 0 && normal.y == 0 && normal.z > 0) return p;
  AcGePoint3d q = p;
  q.transformBy(AcGeMatrix3d::planeToWorld(normal));
  return q;
}

namespace {

// Looks in a table without opening it, so that a table open for write (a
// file being read into it) still answers.
AcDbObjectId recordIn(AcDbObjectId tableId, const std::u16string& name) {
  AcDbObjectId id;
  if (tableId.isNull() || name.empty()) return id;
  if (const AcDbSymbolTable* table = AcDbSymbolTable::cast(tableId.stub()->object)) table->getAt(name.c_str(), id);
  return id;
}

}  // namespace

AcDbObjectId textStyleIdByName(AcDbDatabase* db, const std::u16string& name) {
  return db ? recordIn(db->textStyleTableId(), name) : AcDbObjectId();
}

AcDbObjectId blockIdByName(AcDbDatabase* db, const std::u16string& name) {
  return db ? recordIn(db->blockTableId(), name) : AcDbObjectId();
}

Field sequencePart() {
  return customPart(
      {},
      [](const AcDbObject*, AcDbDxfFiler* f) { return f->filerStatus(); },
      [](AcDbObject*, MemoryDxfFiler* f) { return f->filerStatus(); },
      [](const AcDbObject* o, AcDbDwgFiler* f) {
        OwnedSequence* seq = EntityAccess::sequence(static_cast<const AcDbEntity*>(o));
        f->writeInt32(static_cast<Adesk::Int32>(seq->items.size()));
        for (const auto& slot : seq->items) {
          f->writeBool(slot.pending != nullptr);
          if (slot.pending) {
            f->writeString(slot.pending->isA()->name());
            slot.pending->dwgOutFields(f);
          } else {
            f->writeHardOwnershipId(slot.id);
          }
        }
        return f->writeHardOwnershipId(seq->seqEnd);
      },
      [](AcDbObject* o, AcDbDwgFiler* f) {
        OwnedSequence* seq = EntityAccess::sequence(static_cast<AcDbEntity*>(o));
        seq->items.clear();
        Adesk::Int32 n = 0;
        f->readInt32(&n);
        for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
          OwnedSequence::Slot slot;
          bool pending = false;
          f->readBool(&pending);
          if (pending) {
            std::u16string name;
            f->readString(&name);
            AcRxClass* c = acrxFindClass(name.c_str());
            AcDbEntity* sub = c ? AcDbEntity::cast(c->create()) : nullptr;
            if (!sub) return Acad::eFilerError;
            slot.pending.reset(sub);
            sub->dwgInFields(f);
          } else {
            f->readHardOwnershipId(&slot.id);
          }
          seq->items.push_back(std::move(slot));
        }
        return f->readHardOwnershipId(&seq->seqEnd);
      },
      nullptr);
}

// ---------------------------------------------------------------- parts

namespace {

// Counts by group code: a part has a few codes, so a short list beats a
// map; the list lives on the stack until a part has more codes than it holds.
class CodeCounts {
 public:
  int& operator[](int code) {
    for (size_t i = 0; i < n_; ++i)
      if (local_[i].first == code) return local_[i].second;
    for (auto& [c, n] : more_)
      if (c == code) return n;
    if (n_ < kLocal) {
      local_[n_] = {code, 0};
      return local_[n_++].second;
    }
    return more_.emplace_back(code, 0).second;
  }

 private:
  static constexpr size_t kLocal = 32;
  std::pair<int, int> local_[kLocal];
  size_t n_ = 0;
  std::vector<std::pair<int, int>> more_;
};

bool knows(const ClassSchema& s, int code) {
  for (const Field& fd : s.fields()) {
    if (fd.customDxfIn) {
      if (std::find(fd.customCodes.begin(), fd.customCodes.end(), code) != fd.customCodes.end()) return true;
    } else if (fd.code == code) {
      return true;
    }
  }
  return false;
}

void setState(AcDbEntity* e, PartState state) {
  // Kept for the life of the entity: no spare room.
  state.extras.shrink_to_fit();
  state.presence.shrink_to_fit();
  EntityExtras* x = EntityAccess::extras(e, !state.empty());
  if (!x) return;
  if (PartState* p = x->find(state.schema)) {
    *p = std::move(state);
  } else if (!state.empty()) {
    x->parts.push_back(std::move(state));
  }
}

const PartState* stateOf(const AcDbEntity* e, const ClassSchema* s) {
  EntityExtras* x = EntityAccess::extras(e, false);
  const PartState* p = x ? x->find(s) : nullptr;
  return p && !p->empty() ? p : nullptr;
}

// Which fields the groups held, when that changes what is written: a field
// with its default value that the file held (an optional one would be left
// out), or one the file did not hold (a required one would be written).
std::vector<signed char> presenceOf(const ClassSchema& s, const AcDbEntity* e, const DxfItem* span, size_t n,
                                    const char* isExtra) {
  // The groups of a code the part held.
  auto held = [&](int code) {
    int k = 0;
    for (size_t i = 0; i < n; ++i) k += span[i].code == code && (!isExtra || !isExtra[i]);
    return k;
  };
  const std::vector<Field>& fields = s.fields();
  std::vector<signed char> presence;
  // The fields with their defaults so far, by code.
  constexpr size_t kLocal = 64;
  int localCodes[kLocal];
  std::vector<int> moreCodes;
  size_t defaults = 0;
  for (size_t i = 0; i < fields.size(); ++i) {
    const Field& fd = fields[i];
    if (fd.customDxfOut || !fd.isDefault(e)) continue;
    // Fields of one code take its groups in turn: this one is the n-th of
    // its code among the fields with their defaults.
    int turn = 1;
    for (size_t j = 0; j < defaults; ++j) turn += (j < kLocal ? localCodes[j] : moreCodes[j - kLocal]) == fd.code;
    if (defaults < kLocal) localCodes[defaults] = fd.code;
    else moreCodes.push_back(fd.code);
    ++defaults;
    const bool inFile = turn <= held(fd.code);
    const bool optional = fd.flags & kOptional;
    signed char p = inFile && optional ? PartState::kInFile : !inFile && !optional ? PartState::kNotInFile
                                                                                  : PartState::kUnknown;
    if (p == PartState::kUnknown) continue;
    // Made only when it matters, at its final size.
    if (presence.empty()) presence.assign(fields.size(), PartState::kUnknown);
    presence[i] = p;
  }
  return presence;
}

// Reads a part whose groups [pos, end) of the filer start with its marker,
// where they stand. A group the schema stops at is not the class's: it is
// set aside (moved past the end the schema sees) and the part read again
// without it. Afterwards the groups are back in their order and the filer
// at `end`.
Acad::ErrorStatus readPartInPlace(const ClassSchema& s, AcDbEntity* e, MemoryDxfFiler* f, size_t pos, size_t end) {
  std::vector<DxfItem>& items = f->items();
  const size_t limit = f->readEnd();
  const size_t n = end - pos - 1;  // the groups after the marker
  size_t liveEnd = end;
  // Set up on the first group set aside: where each group the schema sees
  // stood, and which groups are set aside. The room comes from the last
  // part that needed it.
  static thread_local std::vector<size_t> spareLive;
  static thread_local std::vector<char> spareIsExtra;
  static thread_local std::vector<DxfItem> spareOrdered;
  std::vector<size_t> live;
  std::vector<char> isExtra;
  size_t extraCount = 0;
  struct GiveBack {
    std::vector<size_t>& live;
    std::vector<char>& isExtra;
    ~GiveBack() {
      live.clear();
      isExtra.clear();
      if (live.capacity() > spareLive.capacity()) live.swap(spareLive);
      if (isExtra.capacity() > spareIsExtra.capacity()) isExtra.swap(spareIsExtra);
    }
  } giveBack{live, isExtra};
  // The groups back in their order, the filer after them.
  auto finish = [&](Acad::ErrorStatus es) {
    if (extraCount > 0) {
      // The kept ones are in order before liveEnd, those set aside after it
      // in reverse order.
      std::vector<DxfItem> ordered;
      ordered.swap(spareOrdered);
      ordered.clear();
      ordered.reserve(n);
      size_t kept = pos + 1, aside = end;
      for (size_t i = 0; i < n; ++i) ordered.push_back(std::move(items[isExtra[i] ? --aside : kept++]));
      std::move(ordered.begin(), ordered.end(), items.begin() + static_cast<long>(pos + 1));
      ordered.clear();
      if (ordered.capacity() > spareOrdered.capacity()) ordered.swap(spareOrdered);
    }
    f->limitEnd(limit);
    f->resetFilerStatus();
    f->seek(end);
    return es;
  };
  for (;;) {
    f->seek(pos);
    f->limitEnd(liveEnd);
    Acad::ErrorStatus es = s.dxfIn(e, f);
    if (es != Acad::eOk) return finish(es);
    if (f->position() >= liveEnd) break;
    const size_t p = f->position() - pos;
    if (p == 0 || ++extraCount > kMaxExtraGroups) return finish(Acad::eMakeMeProxy);
    if (isExtra.empty()) {
      live.swap(spareLive);
      isExtra.swap(spareIsExtra);
      live.resize(n);
      for (size_t i = 0; i < n; ++i) live[i] = i;
      isExtra.assign(n, 0);
    }
    isExtra[live[p - 1]] = 1;
    live.erase(live.begin() + static_cast<long>(p - 1));
    std::rotate(items.begin() + static_cast<long>(pos + p), items.begin() + static_cast<long>(pos + p + 1),
                items.begin() + static_cast<long>(liveEnd));
    --liveEnd;
  }
  finish(Acad::eOk);

  const DxfItem* span = items.data() + pos + 1;
  PartState state;
  state.schema = &s;
  // Only a file says which groups a drawing holds; entmod's list has them
  // all, and leaves what the file held as it was.
  if (f->filerType() == AcDb::kFileFiler) {
    state.presence = presenceOf(s, e, span, n, extraCount > 0 ? isExtra.data() : nullptr);
  } else if (const PartState* before = stateOf(e, &s)) {
    state.presence = before->presence;
  }
  if (extraCount > 0) {
    state.extras.reserve(extraCount);
    CodeCounts seen;
    int lastCode = 100, lastOccurrence = 0;
    for (size_t i = 0; i < n; ++i) {
      if (!isExtra[i]) {
        lastCode = span[i].code;
        lastOccurrence = ++seen[lastCode];
      } else {
        state.extras.push_back({lastCode, lastOccurrence, span[i]});
      }
    }
  }
  setState(e, std::move(state));
  return f->filerStatus();
}

}  // namespace

// The part as the schema writes it, the fields' presence in the file taken
// into account.
static Acad::ErrorStatus writeFields(const ClassSchema& s, const AcDbEntity* e, const PartState* st,
                                     AcDbDxfFiler* f) {
  f->writeString(100, s.marker());
  bool all = f->includesDefaultValues();
  for (size_t i = 0; i < s.fields().size(); ++i) {
    const Field& fd = s.fields()[i];
    if (fd.customDxfOut) {
      Acad::ErrorStatus es = fd.customDxfOut(e, f);
      if (es != Acad::eOk) return es;
      continue;
    }
    if (all && (fd.flags & kOmittedWhenDefault) && fd.isDefault(e)) continue;
    if (!all && fd.isDefault(e)) {
      signed char p = st && i < st->presence.size() ? st->presence[i] : static_cast<signed char>(PartState::kUnknown);
      if (p == PartState::kNotInFile) continue;
      if (p != PartState::kInFile && (fd.flags & kOptional)) continue;
    }
    fd.writeDxf(e, fd, f);
  }
  return f->filerStatus();
}

namespace {
}  // namespace

Acad::ErrorStatus dxfInPart(const ClassSchema& s, AcDbEntity* e, AcDbDxfFiler* filer) {
  auto* f = dynamic_cast<MemoryDxfFiler*>(filer);
  if (!f) return Acad::eNotApplicable;
  if (f->filerStatus() != Acad::eOk) return f->filerStatus();
  std::vector<DxfItem>& items = f->items();
  const size_t count = f->readEnd();
  size_t pos = f->position();
  // A part that starts with its marker is read where it stands.
  if (pos < count && items[pos].code == 100) {
    if (items[pos].kind != DxfItem::String || items[pos].s != s.marker()) return Acad::eBadDxfSequence;
    size_t end = pos + 1;
    while (end < count && items[end].code != 100 && items[end].code != 1001) ++end;
    return readPartInPlace(s, e, f, pos, end);
  }
  // The two lists this needs are taken from the last call's, so that a
  // drawing's thousands of parts do not each allocate them anew (a call
  // within a call finds them taken and makes its own).
  static thread_local std::vector<DxfItem> spareSpan, spareItems;
  std::vector<DxfItem> span;
  span.swap(spareSpan);
  span.clear();
  struct GiveBack {
    std::vector<DxfItem>& list;
    std::vector<DxfItem>& to;
    ~GiveBack() {
      list.clear();
      if (list.capacity() > to.capacity()) list.swap(to);
    }
  } giveSpan{span, spareSpan};
  {
    // No marker (as in an old release's file): this part's groups from the
    // rest of the object.
    size_t end = pos;
    while (end < count && items[end].code != 100 && items[end].code != 1001) ++end;
    f->aboutToReorder();
    std::vector<DxfItem> rest;
    for (size_t i = pos; i < end; ++i) (knows(s, items[i].code) ? span : rest).push_back(std::move(items[i]));
    items.erase(items.begin() + static_cast<long>(pos), items.begin() + static_cast<long>(end));
    items.insert(items.begin() + static_cast<long>(pos), std::make_move_iterator(rest.begin()),
                 std::make_move_iterator(rest.end()));
  }

  // Read through the schema; a group it stops at is not the class's: keep
  // it aside and read again without it.
  MemoryDxfFiler t(f->filerType(), f->database());
  t.items().swap(spareItems);
  t.items().clear();
  GiveBack giveItems{t.items(), spareItems};
  t.items().reserve(span.size() + 1);
  t.writeString(100, s.marker());
  t.items().insert(t.items().end(), span.begin(), span.end());
  std::vector<size_t> live(span.size());
  for (size_t i = 0; i < live.size(); ++i) live[i] = i;
  std::vector<char> isExtra(span.size(), 0);
  size_t extraCount = 0;
  for (;;) {
    t.rewind();
    Acad::ErrorStatus es = s.dxfIn(e, &t);
    if (es != Acad::eOk) return es;
    if (t.atEOF()) break;
    size_t p = t.position();
    if (p == 0 || ++extraCount > kMaxExtraGroups) return Acad::eMakeMeProxy;
    isExtra[live[p - 1]] = 1;
    live.erase(live.begin() + static_cast<long>(p - 1));
    t.items().erase(t.items().begin() + static_cast<long>(p));
  }

  PartState state;
  state.schema = &s;
  // Only a file says which groups a drawing holds; entmod's list has them
  // all, and leaves what the file held as it was.
  if (f->filerType() == AcDb::kFileFiler) {
    state.presence = presenceOf(s, e, span.data(), span.size(), isExtra.data());
  } else if (const PartState* before = stateOf(e, &s)) {
    state.presence = before->presence;
  }
  CodeCounts seen;
  int lastCode = 100, lastOccurrence = 0;
  for (size_t i = 0; i < span.size(); ++i) {
    if (!isExtra[i]) {
      lastCode = span[i].code;
      lastOccurrence = ++seen[lastCode];
    } else {
      state.extras.push_back({lastCode, lastOccurrence, std::move(span[i])});
    }
  }
  setState(e, std::move(state));
  return f->filerStatus();
}

Acad::ErrorStatus dxfOutPart(const ClassSchema& s, const AcDbEntity* e, AcDbDxfFiler* f) {
  const PartState* st = stateOf(e, &s);
  if (!st) return s.dxfOut(e, f);
  if (st->extras.empty()) return writeFields(s, e, st, f);
  MemoryDxfFiler t(f->filerType(), f->database());
  Acad::ErrorStatus es = writeFields(s, e, st, &t);
  if (es != Acad::eOk) return es;
  std::vector<DxfItem> out = t.items();
  std::vector<char> inserted(out.size(), 0);
  for (const ExtraGroup& x : st->extras) {
    size_t at = out.size();
    if (x.anchorCode == 100 && x.anchorOccurrence == 0) {
      at = 1;
    } else {
      int n = 0;
      for (size_t k = 1; k < out.size(); ++k) {
        if (!inserted[k] && out[k].code == x.anchorCode && ++n == x.anchorOccurrence) {
          at = k + 1;
          break;
        }
      }
    }
    while (at < out.size() && inserted[at]) ++at;
    out.insert(out.begin() + static_cast<long>(at), x.item);
    inserted.insert(inserted.begin() + static_cast<long>(at), 1);
  }
  for (const DxfItem& it : out) {
    es = writeItem(f, it);
    if (es != Acad::eOk) return es;
  }
  return f->filerStatus();
}

Acad::ErrorStatus dwgOutPart(const ClassSchema& s, const AcDbEntity* e, AcDbDwgFiler* f) {
  Acad::ErrorStatus es = s.dwgOut(e, f);
  if (es != Acad::eOk) return es;
  const PartState* st = stateOf(e, &s);
  f->writeInt32(st ? static_cast<Adesk::Int32>(st->presence.size()) : 0);
  if (st)
    for (signed char p : st->presence) f->writeInt8(p);
  f->writeInt32(st ? static_cast<Adesk::Int32>(st->extras.size()) : 0);
  if (!st) return f->filerStatus();
  for (const ExtraGroup& x : st->extras) {
    f->writeInt32(x.anchorCode);
    f->writeInt32(x.anchorOccurrence);
    f->writeInt32(x.item.code);
    f->writeInt32(x.item.kind);
    switch (x.item.kind) {
      case DxfItem::String: f->writeString(x.item.s); break;
      case DxfItem::Int: f->writeInt64(x.item.i); break;
      case DxfItem::Real: f->writeDouble(x.item.p[0]); break;
      case DxfItem::Point:
        f->writePoint3d(AcGePoint3d(x.item.p[0], x.item.p[1], x.item.p[2]));
        f->writeInt32(x.item.dims);
        break;
      case DxfItem::Id: f->writeSoftPointerId(x.item.id); break;
      case DxfItem::Handle: f->writeHandle(x.item.handle); break;
      case DxfItem::Binary:
        f->writeInt32(static_cast<Adesk::Int32>(x.item.b.size()));
        f->writeBytes(x.item.b.data(), x.item.b.size());
        break;
    }
  }
  return f->filerStatus();
}

Acad::ErrorStatus dwgInPart(const ClassSchema& s, AcDbEntity* e, AcDbDwgFiler* f) {
  Acad::ErrorStatus es = s.dwgIn(e, f);
  if (es != Acad::eOk) return es;
  PartState state;
  state.schema = &s;
  Adesk::Int32 n = 0;
  f->readInt32(&n);
  if (n < 0 || static_cast<size_t>(n) > s.fields().size()) return Acad::eFilerError;
  for (Adesk::Int32 i = 0; i < n; ++i) {
    Adesk::Int8 p = 0;
    f->readInt8(&p);
    state.presence.push_back(p);
  }
  f->readInt32(&n);
  for (Adesk::Int32 i = 0; i < n && f->filerStatus() == Acad::eOk; ++i) {
    ExtraGroup x;
    Adesk::Int32 code = 0, kind = 0;
    f->readInt32(&x.anchorCode);
    f->readInt32(&x.anchorOccurrence);
    f->readInt32(&code);
    f->readInt32(&kind);
    x.item.code = code;
    x.item.kind = static_cast<DxfItem::Kind>(kind);
    switch (x.item.kind) {
      case DxfItem::String: f->readString(&x.item.s); break;
      case DxfItem::Int: f->readInt64(&x.item.i); break;
      case DxfItem::Real: f->readDouble(&x.item.p[0]); break;
      case DxfItem::Point: {
        AcGePoint3d p;
        f->readPoint3d(&p);
        x.item.p[0] = p.x, x.item.p[1] = p.y, x.item.p[2] = p.z;
        f->readInt32(&x.item.dims);
        break;
      }
      case DxfItem::Id: f->readSoftPointerId(&x.item.id); break;
      case DxfItem::Handle: f->readHandle(&x.item.handle); break;
      case DxfItem::Binary: {
        Adesk::Int32 len = 0;
        f->readInt32(&len);
        if (len < 0) return Acad::eFilerError;
        x.item.b.resize(static_cast<size_t>(len));
        if (len > 0) f->readBytes(x.item.b.data(), x.item.b.size());
        break;
      }
      default: return Acad::eFilerError;
    }
    state.extras.push_back(std::move(x));
  }
  if (f->filerStatus() != Acad::eOk) return f->filerStatus();
  setState(e, std::move(state));
  return Acad::eOk;
}

// ---------------------------------------------------------------- access

EntityExtras* EntityAccess::extras(const AcDbEntity* e, bool create) {
  auto& x = const_cast<AcDbEntity*>(e)->extras_;
  if (!x && create) x = std::make_unique<EntityExtras>();
  return x.get();
}

void EntityAccess::resolveNames(AcDbEntity* e) {
  AcDbDatabase* db = e->database();
  if (!db) return;
  if (e->layerId_.isNull() && !e->layerName_.empty()) e->layerId_ = layerIdByName(db, e->layerName_);
  if (e->linetypeId_.isNull() && !e->linetypeName_.empty()) e->linetypeId_ = linetypeIdByName(db, e->linetypeName_);
  if (auto* t = AcDbText::cast(e); t && t->styleId_.isNull()) t->styleId_ = textStyleIdByName(db, t->styleName_);
  if (auto* m = AcDbMText::cast(e); m && m->styleId_.isNull()) m->styleId_ = textStyleIdByName(db, m->styleName_);
  if (auto* r = AcDbBlockReference::cast(e); r && r->blockId_.isNull()) r->blockId_ = blockIdByName(db, r->blockName_);
}

}  // namespace zepk::db

// ---------------------------------------------------------------- entity

using zepk::db::ClassSchema;
using zepk::db::customPart;
using zepk::db::DxfItem;
using zepk::db::field;
using zepk::db::kOptional;
using zepk::db::MemoryDxfFiler;

namespace zepk::db {

std::u16string recordNameOr(AcDbObjectId id, const std::u16string& kept) {
  if (!id.isNull()) {
    std::u16string n = recordName(id);
    if (!n.empty() && !sameName(n, kept)) return n;
  }
  return kept;
}

}  // namespace zepk::db

ACRX_DEFINE_HOST_CLASS(AcDbEntity, AcDbObject, nullptr, nullptr)
ACRX_DEFINE_HOST_CLASS(AcDbCurve, AcDbEntity, nullptr, nullptr)

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;

const ClassSchema& AcDbEntity::schema() {
  static const ClassSchema s{
      u"AcDbEntity",
      {
          field<&AcDbEntity::paperSpace_>(67, "PaperSpace", 0, kOptional),
          zepk::db::recordRefPart<&AcDbEntity::layerId_, &AcDbEntity::layerName_, 8, zepk::db::layerIdByName,
                                  zepk::db::RefDefault::Layer0>(),
          zepk::db::recordRefPart<&AcDbEntity::linetypeId_, &AcDbEntity::linetypeName_, 6,
                                  zepk::db::linetypeIdByName, zepk::db::RefDefault::ByLayer>(),
          // The colour: the index (of a true colour the nearest one) here,
          // the true colour and its book name further on.
          customPart(
              {62},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* e = static_cast<const AcDbEntity*>(o);
                bool all = f->includesDefaultValues();
                if (e->color_.isByLayer() && !all) return Acad::eOk;
                if (e->color_.isByColor() && e->fileColorIndex_ >= 0) return f->writeInt16(62, e->fileColorIndex_);
                if (e->color_.isByColor() && !all) return Acad::eOk;
                return f->writeInt16(62, static_cast<Adesk::Int16>(e->color_.colorIndex()));
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* e = static_cast<AcDbEntity*>(o);
                const DxfItem* it = f->next();
                if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                auto index = static_cast<Adesk::UInt16>(std::abs(it->i));
                // A true colour read before it stands.
                if (!e->color_.isByColor()) e->color_.setColorIndex(index);
                e->fileColorIndex_ = static_cast<int16_t>(index);
                return Acad::eOk;
              },
              [](const AcDbObject* o, AcDbDwgFiler* f) {
                auto* e = static_cast<const AcDbEntity*>(o);
                f->writeUInt32(e->color_.color());
                f->writeString(e->color_.colorName());
                f->writeString(e->color_.bookName());
                return f->writeInt16(e->fileColorIndex_);
              },
              [](AcDbObject* o, AcDbDwgFiler* f) {
                auto* e = static_cast<AcDbEntity*>(o);
                Adesk::UInt32 c = 0;
                std::u16string name, book;
                f->readUInt32(&c);
                f->readString(&name);
                f->readString(&book);
                f->readInt16(&e->fileColorIndex_);
                e->color_.setColor(c);
                e->color_.setNames(name.c_str(), book.c_str());
                return f->filerStatus();
              },
              [](AcDbObject* o) {
                auto* e = static_cast<AcDbEntity*>(o);
                e->color_ = AcCmColor();
                e->fileColorIndex_ = -1;
              }),
          field<&AcDbEntity::lineWeight_>(370, "LineWeight", AcDb::kLnWtByLayer, kOptional),
          field<&AcDbEntity::linetypeScale_>(48, "LinetypeScale", 1.0, kOptional),
          field<&AcDbEntity::visibility_>(60, "Visibility", 0, kOptional),
          customPart(
              {420, 430},
              [](const AcDbObject* o, AcDbDxfFiler* f) {
                auto* e = static_cast<const AcDbEntity*>(o);
                if (e->color_.isByColor()) f->writeInt32(420, static_cast<Adesk::Int32>(e->color_.rgb()));
                std::u16string key = e->color_.getDictionaryKey();
                if (!key.empty()) f->writeString(430, key);
                return f->filerStatus();
              },
              [](AcDbObject* o, MemoryDxfFiler* f) {
                auto* e = static_cast<AcDbEntity*>(o);
                if (const DxfItem* it = zepk::db::take(f, 420)) {
                  if (it->kind != DxfItem::Int) return Acad::eInvalidResBuf;
                  e->color_.setRGB(static_cast<Adesk::UInt32>(it->i) & 0xFFFFFF);
                }
                if (const DxfItem* it = zepk::db::take(f, 430)) {
                  if (it->kind != DxfItem::String) return Acad::eInvalidResBuf;
                  e->color_.setNamesFromDictionaryKey(it->s.c_str());
                }
                return Acad::eOk;
              },
              [](const AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); },
              [](AcDbObject*, AcDbDwgFiler* f) { return f->filerStatus(); }, nullptr),
          field<&AcDbEntity::transparency_>(440, "Transparency", 0, kOptional),
      }};
  return s;
}

Acad::ErrorStatus AcDbEntity::draw() {
  AcDbDatabase* db = database();
  if (!db || objectId().isNull()) return Acad::eNotInDatabase;
  std::vector<AcDbObjectId>& onTop = zepk::db::overlayOf(db).onTop;
  if (std::find(onTop.begin(), onTop.end(), objectId()) == onTop.end()) onTop.push_back(objectId());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : zepk::db::dwgInPart(schema(), this, f);
}

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfOutPart(schema(), this, f);
}

Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : zepk::db::dxfInPart(schema(), this, f);
}

template <class F>
void AcDbEntity::forSubents(bool doSubents, F f) {
  zepk::db::OwnedSequence* seq = doSubents ? ownedSequence() : nullptr;
  if (!seq) return;
  for (auto& slot : seq->items) {
    if (slot.pending) {
      f(slot.pending.get());
    } else {
      AcDbObjectPointer<AcDbEntity> sub(slot.id, AcDb::kForWrite);
      if (sub) f(sub.object());
    }
  }
  if (!seq->seqEnd.isNull()) {
    AcDbObjectPointer<AcDbEntity> end(seq->seqEnd, AcDb::kForWrite);
    if (end) f(end.object());
  }
}

// The record's name; the name as kept when it is the same but for case (as
// a file spelled it).
std::u16string AcDbEntity::layer() const { return zepk::db::recordNameOr(layerId_, layerName_); }

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* newVal, bool doSubents, bool allowHiddenLayer) {
  if (!newVal || !*newVal) return Acad::eInvalidInput;
  AcDbObjectId id;
  AcDbDatabase* db = database();
  // A database with layer records must have this one.
  if (db && !zepk::db::defaultLayerId(db).isNull()) {
    id = zepk::db::layerIdByName(db, newVal);
    if (id.isNull()) return Acad::eKeyNotFound;
  }
  assertWriteEnabled();
  layerId_ = id;
  layerName_ = id.isNull() ? std::u16string(newVal) : zepk::db::recordName(id);
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLayer(newVal, false, allowHiddenLayer); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId newVal, bool doSubents, bool allowHiddenLayer) {
  if (newVal.isNull()) return Acad::eNullObjectId;
  assertWriteEnabled();
  layerId_ = newVal;
  std::u16string name = zepk::db::recordName(newVal);
  if (!name.empty()) layerName_ = name;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLayer(newVal, false, allowHiddenLayer); });
  return Acad::eOk;
}

// The record's name; the name as kept when it is the same but for case (as
// a file spelled it).
std::u16string AcDbEntity::linetype() const { return zepk::db::recordNameOr(linetypeId_, linetypeName_); }

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* newVal, bool doSubents) {
  if (!newVal || !*newVal) return Acad::eInvalidInput;
  AcDbObjectId id;
  AcDbDatabase* db = database();
  if (db && !zepk::db::byLayerLinetypeId(db).isNull()) {
    id = zepk::db::linetypeIdByName(db, newVal);
    if (id.isNull()) return Acad::eKeyNotFound;
  }
  assertWriteEnabled();
  linetypeId_ = id;
  linetypeName_ = id.isNull() ? std::u16string(newVal) : zepk::db::recordName(id);
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLinetype(newVal, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId newVal, bool doSubents) {
  if (newVal.isNull()) return Acad::eNullObjectId;
  assertWriteEnabled();
  linetypeId_ = newVal;
  std::u16string name = zepk::db::recordName(newVal);
  if (!name.empty()) linetypeName_ = name;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLinetype(newVal, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double newVal, bool doSubents) {
  if (!(newVal > 0.0)) return Acad::eInvalidInput;
  assertWriteEnabled();
  linetypeScale_ = newVal;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLinetypeScale(newVal, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, bool doSubents) {
  assertWriteEnabled();
  color_ = color;
  fileColorIndex_ = color.isByColor() ? static_cast<int16_t>(color.colorIndex()) : -1;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setColor(color, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 color, bool doSubents) {
  AcCmColor c;
  Acad::ErrorStatus es = c.setColorIndex(color);
  if (es != Acad::eOk) return es;
  return setColor(c, doSubents);
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight newVal, bool doSubents) {
  static const int kValid[] = {0,  5,  9,  13,  15,  18,  20,  25,  30,  35,  40, 50, 53, 60,
                               70, 80, 90, 100, 106, 120, 140, 158, 200, 211, -1, -2, -3};
  if (std::find(std::begin(kValid), std::end(kValid), static_cast<int>(newVal)) == std::end(kValid))
    return Acad::eInvalidInput;
  assertWriteEnabled();
  lineWeight_ = static_cast<int16_t>(newVal);
  forSubents(doSubents, [&](AcDbEntity* e) { e->setLineWeight(newVal, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility newVal, bool doSubents) {
  assertWriteEnabled();
  visibility_ = newVal == AcDb::kInvisible ? 1 : 0;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setVisibility(newVal, false); });
  return Acad::eOk;
}

AcCmTransparency AcDbEntity::transparency() const {
  AcCmTransparency t;
  t.serializeIn(static_cast<Adesk::UInt32>(transparency_));
  return t;
}

Acad::ErrorStatus AcDbEntity::setTransparency(const AcCmTransparency& trans, bool doSubents) {
  if (trans.isInvalid()) return Acad::eInvalidInput;
  assertWriteEnabled();
  transparency_ = static_cast<int32_t>(trans.serializeOut());
  forSubents(doSubents, [&](AcDbEntity* e) { e->setTransparency(trans, false); });
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* pEntity, bool doSubents) {
  if (!pEntity) return Acad::eNullObjectPointer;
  assertWriteEnabled();
  layerId_ = pEntity->layerId_;
  layerName_ = pEntity->layerName_;
  linetypeId_ = pEntity->linetypeId_;
  linetypeName_ = pEntity->linetypeName_;
  linetypeScale_ = pEntity->linetypeScale_;
  color_ = pEntity->color_;
  fileColorIndex_ = pEntity->fileColorIndex_;
  lineWeight_ = pEntity->lineWeight_;
  visibility_ = pEntity->visibility_;
  transparency_ = pEntity->transparency_;
  forSubents(doSubents, [&](AcDbEntity* e) { e->setPropertiesFrom(pEntity, false); });
  return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults(bool doSubents) { setDatabaseDefaults(database(), doSubents); }

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* pDb, bool doSubents) {
  AcDbDatabase* db = pDb ? pDb : database();
  assertWriteEnabled();
  layerId_ = db ? zepk::db::defaultLayerId(db) : AcDbObjectId();
  layerName_ = u"0";
  linetypeId_ = db ? zepk::db::byLayerLinetypeId(db) : AcDbObjectId();
  linetypeName_ = u"ByLayer";
  color_ = AcCmColor();
  fileColorIndex_ = -1;
  linetypeScale_ = 1.0;
  lineWeight_ = AcDb::kLnWtByLayer;
  // The drawing's current layer, linetype, colour, linetype scale and
  // weight, where it has them.
  zepk::db::DxfItem v;
  if (db && zepk::db::getHeaderVar(db, u"$CLAYER", &v) && v.kind == zepk::db::DxfItem::String) {
    AcDbObjectId id = zepk::db::layerIdByName(db, v.s);
    if (!id.isNull()) {
      layerId_ = id;
      layerName_ = v.s;
    }
  }
  if (db && zepk::db::getHeaderVar(db, u"$CELTYPE", &v) && v.kind == zepk::db::DxfItem::String) {
    AcDbObjectId id = zepk::db::linetypeIdByName(db, v.s);
    if (!id.isNull()) {
      linetypeId_ = id;
      linetypeName_ = v.s;
    }
  }
  if (db && zepk::db::getHeaderVar(db, u"$CECOLOR", &v) && v.kind == zepk::db::DxfItem::Int) {
    if (v.i == 0) {
      color_.setByBlock();
    } else if (v.i >= 1 && v.i <= 255) {
      color_.setColorIndex(static_cast<Adesk::UInt16>(v.i));
    }
  }
  if (db && zepk::db::getHeaderVar(db, u"$CELTSCALE", &v) && v.kind == zepk::db::DxfItem::Real && v.p[0] > 0) {
    linetypeScale_ = v.p[0];
  }
  if (db && zepk::db::getHeaderVar(db, u"$CELWEIGHT", &v) && v.kind == zepk::db::DxfItem::Int) {
    lineWeight_ = static_cast<int16_t>(v.i);
  }
  visibility_ = 0;
  transparency_ = 0;
  subSetDatabaseDefaults(db);
  forSubents(doSubents, [&](AcDbEntity* e) { e->setDatabaseDefaults(db, false); });
}

Acad::ErrorStatus AcDbEntity::checkWriteOpen() const {
  if (!layerId_.isNull() && zepk::db::isLayerLocked(layerId_)) return Acad::eOnLockedLayer;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subClose() {
  zepk::db::EntityAccess::resolveNames(this);
  if (ownedSequence()) zepk::db::flushSubentities(this);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::subErase(bool erasing) {
  zepk::db::OwnedSequence* seq = ownedSequence();
  if (!seq || !database()) return Acad::eOk;
  auto eraseOne = [&](AcDbObjectId id) {
    AcDbObject* o = nullptr;
    if (acdbOpenAcDbObject(o, id, AcDb::kForWrite, true) != Acad::eOk) return;
    if (o->isErased() != erasing) o->erase(erasing);
    o->close();
  };
  for (auto& slot : seq->items)
    if (!slot.id.isNull()) eraseOne(slot.id);
  if (!seq->seqEnd.isNull()) eraseOne(seq->seqEnd);
  return Acad::eOk;
}

// ---------------------------------------------------------------- iterator

void AcDbObjectIterator::start(bool atEnd) {
  pos_ = atEnd ? static_cast<long>(items_.size()) - 1 : 0;
  skipErased(atEnd);
}

void AcDbObjectIterator::skipErased(bool backwards) {
  while (!done() && !items_[pos_].id.isNull() && items_[pos_].id.isErased()) pos_ += backwards ? -1 : 1;
}

void AcDbObjectIterator::step(bool backwards, bool skipDeleted) {
  if (done()) return;
  pos_ += backwards ? -1 : 1;
  if (skipDeleted) skipErased(backwards);
}

bool AcDbObjectIterator::setPosition(AcDbObjectId id) {
  for (size_t i = 0; i < items_.size(); ++i) {
    if (!id.isNull() && items_[i].id == id) {
      pos_ = static_cast<long>(i);
      return true;
    }
  }
  return false;
}

bool AcDbObjectIterator::setPosition(AcDbEntity* pEnt) {
  for (size_t i = 0; i < items_.size(); ++i) {
    if (pEnt && (items_[i].entity == pEnt || (!items_[i].id.isNull() && items_[i].id == pEnt->objectId()))) {
      pos_ = static_cast<long>(i);
      return true;
    }
  }
  return false;
}

AcDbEntity* AcDbObjectIterator::entity() const { return done() ? nullptr : items_[pos_].entity; }
AcDbObjectId AcDbObjectIterator::objectId() const { return done() ? AcDbObjectId() : items_[pos_].id; }

// ---------------------------------------------------------------- sequences

namespace zepk::db {

namespace {

void makeSequenceEnd(AcDbEntity* owner, OwnedSequence* seq) {
  AcDbDatabase* db = owner->database();
  if (!db || !seq->seqEnd.isNull()) return;
  auto* end = new AcDbSequenceEnd;
  end->setPropertiesFrom(owner, false);
  AcDbObjectId id;
  if (db->addAcDbObject(id, end) != Acad::eOk) {
    delete end;
    return;
  }
  end->setOwnerId(owner->objectId());
  end->close();
  seq->seqEnd = id;
}

// Whether sub is the kind of sub-entity that owner holds.
bool fits(const AcDbEntity* owner, const AcDbObject* sub) {
  if (AcDb2dPolyline::cast(owner)) return AcDb2dVertex::cast(sub) != nullptr;
  if (AcDb3dPolyline::cast(owner)) return AcDb3dPolylineVertex::cast(sub) != nullptr;
  if (AcDbPolygonMesh::cast(owner)) return AcDbPolygonMeshVertex::cast(sub) != nullptr;
  if (AcDbPolyFaceMesh::cast(owner)) return AcDbPolyFaceMeshVertex::cast(sub) || AcDbFaceRecord::cast(sub);
  if (AcDbBlockReference::cast(owner)) return AcDbAttribute::cast(sub) != nullptr;
  return false;
}

}  // namespace

Acad::ErrorStatus appendSubentity(AcDbEntity* owner, AcDbEntity* sub, AcDbObjectId* outId, long index) {
  if (!sub) return Acad::eNullObjectPointer;
  if (!sub->objectId().isNull()) return Acad::eAlreadyInDb;
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq || !fits(owner, sub)) return Acad::eWrongObjectType;
  AcDbDatabase* db = owner->database();
  if (db && !owner->isWriteEnabled()) return Acad::eNotOpenForWrite;
  flushSubentities(owner);
  size_t at = (index < 0 || static_cast<size_t>(index) > seq->items.size()) ? seq->items.size()
                                                                             : static_cast<size_t>(index);
  OwnedSequence::Slot slot;
  if (db) {
    AcDbObjectId id;
    Acad::ErrorStatus es = db->addAcDbObject(id, sub);
    if (es != Acad::eOk) return es;
    owner->assertWriteEnabled();
    sub->setOwnerId(owner->objectId());
    sub->close();
    slot.id = id;
    if (outId) *outId = id;
  } else {
    owner->assertWriteEnabled();
    slot.pending.reset(sub);
    if (outId) outId->setNull();
  }
  seq->items.insert(seq->items.begin() + static_cast<long>(at), std::move(slot));
  if (db) makeSequenceEnd(owner, seq);
  return Acad::eOk;
}

void flushSubentities(AcDbEntity* owner) {
  AcDbDatabase* db = owner->database();
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!db || !seq) return;
  bool moved = false;
  for (auto& slot : seq->items) {
    if (!slot.pending) continue;
    AcDbObjectId id;
    if (db->addAcDbObject(id, slot.pending.get()) != Acad::eOk) continue;
    AcDbEntity* sub = slot.pending.release();
    sub->setOwnerId(owner->objectId());
    sub->close();
    slot.id = id;
    moved = true;
  }
  if (moved) makeSequenceEnd(owner, seq);
}

AcDbObjectIterator* newSubentityIterator(const AcDbEntity* owner) {
  std::vector<AcDbObjectIterator::Item> items;
  if (OwnedSequence* seq = EntityAccess::sequence(owner))
    for (auto& slot : seq->items) items.push_back({slot.id, slot.pending.get()});
  return new AcDbObjectIterator(std::move(items));
}

Acad::ErrorStatus openSequenceEnd(AcDbEntity* owner, AcDbSequenceEnd*& pSeqEnd, AcDb::OpenMode mode) {
  pSeqEnd = nullptr;
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq || seq->seqEnd.isNull()) return Acad::eNullObjectId;
  return acdbOpenObject(pSeqEnd, seq->seqEnd, mode);
}

bool hasSubentities(const AcDbEntity* e) {
  OwnedSequence* seq = EntityAccess::sequence(e);
  if (!seq) return false;
  if (AcDbBlockReference::cast(e)) return !seq->items.empty();
  return true;
}

AcDbObjectIdArray subentityIds(const AcDbEntity* e) {
  AcDbObjectIdArray out;
  if (OwnedSequence* seq = EntityAccess::sequence(e))
    for (auto& slot : seq->items)
      if (!slot.id.isNull()) out.push_back(slot.id);
  return out;
}

AcDbObjectId sequenceEndId(const AcDbEntity* e) {
  OwnedSequence* seq = EntityAccess::sequence(e);
  return seq ? seq->seqEnd : AcDbObjectId();
}

AcDbObjectId ensureSequenceEnd(AcDbEntity* e) {
  OwnedSequence* seq = EntityAccess::sequence(e);
  if (!seq) return AcDbObjectId();
  makeSequenceEnd(e, seq);
  return seq->seqEnd;
}

Acad::ErrorStatus adoptSubentity(AcDbEntity* owner, AcDbObjectId sub) {
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq) return Acad::eWrongObjectType;
  if (sub.isNull() || !sub.stub()->object) return Acad::eNullObjectId;
  AcDbObject* o = sub.stub()->object;
  if (!fits(owner, o)) return Acad::eWrongObjectType;
  o->setOwnerId(owner->objectId());
  OwnedSequence::Slot slot;
  slot.id = sub;
  seq->items.push_back(std::move(slot));
  return Acad::eOk;
}

Acad::ErrorStatus adoptSequenceEnd(AcDbEntity* owner, AcDbObjectId seqEnd) {
  OwnedSequence* seq = EntityAccess::sequence(owner);
  if (!seq) return Acad::eWrongObjectType;
  if (seqEnd.isNull() || !seqEnd.stub()->object) return Acad::eNullObjectId;
  AcDbObject* o = seqEnd.stub()->object;
  if (!AcDbSequenceEnd::cast(o)) return Acad::eWrongObjectType;
  o->setOwnerId(owner->objectId());
  seq->seqEnd = seqEnd;
  return Acad::eOk;
}

AcRxClass* entityClassFor(const std::u16string& dxfName, const std::vector<DxfItem>& groups) {
  auto markerOneOf = [&](std::initializer_list<const char16_t*> names) -> AcRxClass* {
    for (const DxfItem& g : groups) {
      if (g.code != 100 || g.kind != DxfItem::String) continue;
      for (const char16_t* n : names)
        if (g.s == n) return acrxFindClass(n);
    }
    return nullptr;
  };
  auto intOf = [&](int code) -> int64_t {
    for (const DxfItem& g : groups)
      if (g.code == code && g.kind == DxfItem::Int) return g.i;
    return 0;
  };
  if (dxfName == u"POLYLINE") {
    if (AcRxClass* c = markerOneOf({u"AcDb2dPolyline", u"AcDb3dPolyline", u"AcDbPolygonMesh", u"AcDbPolyFaceMesh"}))
      return c;
    int64_t flags = intOf(70);
    if (flags & AcDbPolylineFlags::kPolyfaceMesh) return AcDbPolyFaceMesh::desc();
    if (flags & AcDbPolylineFlags::kPolygonMesh) return AcDbPolygonMesh::desc();
    if (flags & AcDbPolylineFlags::k3d) return AcDb3dPolyline::desc();
    return AcDb2dPolyline::desc();
  }
  if (dxfName == u"VERTEX") {
    if (AcRxClass* c = markerOneOf({u"AcDb2dVertex", u"AcDb3dPolylineVertex", u"AcDbPolygonMeshVertex",
                                    u"AcDbPolyFaceMeshVertex", u"AcDbFaceRecord"}))
      return c;
    int64_t flags = intOf(70);
    if ((flags & AcDbVertexFlags::kPolyfaceMesh) && !(flags & AcDbVertexFlags::kPolygonMesh))
      return AcDbFaceRecord::desc();
    if (flags & AcDbVertexFlags::kPolyfaceMesh) return AcDbPolyFaceMeshVertex::desc();
    if (flags & AcDbVertexFlags::kPolygonMesh) return AcDbPolygonMeshVertex::desc();
    if (flags & AcDbVertexFlags::k3dPolyline) return AcDb3dPolylineVertex::desc();
    return AcDb2dVertex::desc();
  }
  if (dxfName == u"INSERT") {
    if (AcRxClass* c = markerOneOf({u"AcDbMInsertBlock", u"AcDbBlockReference"})) return c;
    if (intOf(70) > 1 || intOf(71) > 1) return AcDbMInsertBlock::desc();
    return AcDbBlockReference::desc();
  }
  return acrxFindClassByDxfName(dxfName.c_str());
}

}  // namespace zepk::db

// ---------------------------------------------------------------- SEQEND

ZEPK_DEFINE_ENTITY_CLASS(AcDbSequenceEnd, AcDbEntity, u"SEQEND")

Acad::ErrorStatus AcDbSequenceEnd::dwgInFields(AcDbDwgFiler* f) { return AcDbEntity::dwgInFields(f); }
Acad::ErrorStatus AcDbSequenceEnd::dwgOutFields(AcDbDwgFiler* f) const { return AcDbEntity::dwgOutFields(f); }
Acad::ErrorStatus AcDbSequenceEnd::dxfInFields(AcDbDxfFiler* f) { return AcDbEntity::dxfInFields(f); }
Acad::ErrorStatus AcDbSequenceEnd::dxfOutFields(AcDbDxfFiler* f) const { return AcDbEntity::dxfOutFields(f); }

// ---------------------------------------------------------------- registration

void zepk::db::registerEntityClasses() {
  AcDbEntity::desc();
  AcDbCurve::desc();
  AcDbLine::desc();
  AcDbCircle::desc();
  AcDbArc::desc();
  AcDbEllipse::desc();
  AcDbRay::desc();
  AcDbXline::desc();
  AcDbPolyline::desc();
  AcDb2dPolyline::desc();
  AcDb3dPolyline::desc();
  AcDbSpline::desc();
  AcDbPoint::desc();
  AcDbFace::desc();
  AcDbSolid::desc();
  AcDbTrace::desc();
  AcDbText::desc();
  AcDbAttribute::desc();
  AcDbAttributeDefinition::desc();
  AcDbMText::desc();
  AcDbBlockReference::desc();
  AcDbMInsertBlock::desc();
  AcDbSequenceEnd::desc();
  AcDbVertex::desc();
  AcDb2dVertex::desc();
  AcDb3dPolylineVertex::desc();
  AcDbPolygonMeshVertex::desc();
  AcDbPolyFaceMeshVertex::desc();
  AcDbFaceRecord::desc();
  AcDbPolygonMesh::desc();
  AcDbPolyFaceMesh::desc();
  AcDbHatch::desc();
  AcDbRegion::desc();
  AcDbRasterImage::desc();
  AcDbWipeout::desc();
}
