// The road every LISP function of the toolkit travels: the walkers that
// read its arguments, the builders of its results, and the message styles
// in which it reports too few, too many or bad arguments.
//
// A walker takes a cursor (the address of a resbuf pointer) into the
// argument list and, on success, moves it one argument on. It answers
// RTNORM; RTNONE when the cursor stands at the end of the list; RTERROR when
// the argument's type does not fit, with the cursor left where it was. The
// three string walkers answer RTNONE, not RTERROR, for a wrong type: a
// caller cannot tell a wrong-typed string from a missing one, and reports it
// with whichever text it tests first.
//
// A builder returns a new chain of plain members (no list marks) or null for
// an empty input; acedRetList makes one LISP list of it. retList sets the
// result and releases the chain.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/ads.h"
#include "host/cstring.h"
#include "host/dbid.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"

class AcDbObject;

// ---------------------------------------------------------------- walkers

int RbGetPoint3d(resbuf** cursor, AcGePoint3d& pt);
int RbGetPoint3d(resbuf** cursor, ads_point pt);
int RbGetPoint2d(resbuf** cursor, AcGePoint2d& pt);
int RbGetShort(resbuf** cursor, int32_t& value);
int RbGetLong(resbuf** cursor, int32_t& value);
int RbGetReal(resbuf** cursor, double& value);
int RbGetEntName(resbuf** cursor, ads_name name);
int RbGetObjectId(resbuf** cursor, AcDbObjectId& id);
int RbGetPickSet(resbuf** cursor, ads_name ss);
int RbGetCString(resbuf** cursor, CString& s);
int RbGetCString(resbuf** cursor, std::u16string& s);
// The pointer into the host's node, valid while the call runs.
int RbGetStrPtr(resbuf** cursor, const ACHAR*& s);
// A new buffer (new[]) that the caller deletes.
int RbGetStrCopy(resbuf** cursor, ACHAR*& s);
// Appends to out: a list of strings (any other member, or an empty list,
// gives RTNONE with the cursor back at the list's start), or a string and
// the strings directly after it. Any other first type gives RTNONE.
int RbGetStringArray(resbuf** cursor, std::vector<std::u16string>& out);
// A list of four lists of four numbers (reals or shorts), row by row, into
// m; places not reached keep what the caller put there.
int RbGetMatrix(resbuf** cursor, ads_matrix m);
// The members of a list argument, cut out of the host's list in place (the
// last member's next is set to null). The chain stays the host's.
int RbGetSubList(resbuf** cursor, resbuf*& members);

// ---------------------------------------------------------------- builders

resbuf* RbFromMatrix(const ads_matrix m);
resbuf* RbFromPoints3d(const std::vector<AcGePoint3d>& pts);
resbuf* RbFromPoints2d(const std::vector<AcGePoint2d>& pts);
resbuf* RbFromObjectIds(const std::vector<AcDbObjectId>& ids);
resbuf* RbFromObjects(const std::vector<AcDbObject*>& objs);
// One entity name a member; null for an empty or invalid set.
resbuf* RbFromPickSet(const ads_name ss);
resbuf* RbFromReals(const double* values, int count);
// Values are cut to 16 bits, as RTSHORT nodes hold them.
resbuf* RbFromInts(const int32_t* values, int count);
resbuf* RbFromStrings(const std::vector<std::u16string>& strings);

namespace zepk::frame {

// A chain that releases itself.
struct RbDeleter {
  void operator()(resbuf* rb) const { acutRelRb(rb); }
};
using RbChain = std::unique_ptr<resbuf, RbDeleter>;

// Appends chains and nodes in order.
class RbBuilder {
 public:
  RbBuilder& add(resbuf* chain);
  resbuf* release();
  resbuf* head() const { return head_; }
  ~RbBuilder();

 private:
  resbuf* head_ = nullptr;
  resbuf** tail_ = &head_;
};

// acedRetList of the chain (nil for null), then releases it. Returns RSRSLT.
int retList(resbuf* chain);

// ---------------------------------------------------------------- messages

// The six ways the families word their argument failures. Each function
// keeps its own style; the texts are part of what users see.
enum class MsgStyle {
  Colon,     // "错误:参数太少\n"
  LineBang,  // "\n参数太少!"
  Plain,     // "参数太少"
  LineEnd,   // "参数太少\n"
  Bang,      // "参数太少!"
  LineDot,   // "\n参数太少."
};

std::u16string tooFewText(MsgStyle s);
std::u16string tooManyText(MsgStyle s);
// The bad argument text: numbered from 1, or the plain form for n 0.
std::u16string badArgText(MsgStyle s, int n = 0);

// Each prints its text through acdbFail and returns RTERROR.
int failTooFew(MsgStyle s);
int failTooMany(MsgStyle s);
int failBadArg(MsgStyle s, int n = 0);
// Prints any fixed text as the failure and returns RTERROR.
int fail(const ACHAR* text);

// The texts of failures on objects.
inline constexpr const ACHAR* kObjIdError = u"参数对象Id错误\n";
inline constexpr const ACHAR* kObjOpenError = u"参数对象打开错误\n";
inline constexpr const ACHAR* kObj1IdError = u"参数1对象Id错误\n";
inline constexpr const ACHAR* kObj1OpenError = u"参数1对象打开错误\n";

// Walks the arguments of one call in the standard order: too few, wrong
// type, value, and after the last argument nothing more. Each read returns
// false after printing the style's text; the caller returns RTERROR.
class ArgReader {
 public:
  explicit ArgReader(MsgStyle style) : style_(style), cur_(acedGetArgs()) {}
  ArgReader(MsgStyle style, resbuf* args) : style_(style), cur_(args) {}

  bool atEnd() const { return cur_ == nullptr; }
  int type() const { return cur_ ? static_cast<int>(cur_->restype) : static_cast<int>(RTNONE); }
  resbuf** cursor() { return &cur_; }
  MsgStyle style() const { return style_; }

  // Required arguments, numbered from 1 in the messages.
  bool real(double& v, int n) { return take(RbGetReal(&cur_, v), n); }
  bool longInt(int32_t& v, int n) { return take(RbGetLong(&cur_, v), n); }
  bool point3d(AcGePoint3d& p, int n) { return take(RbGetPoint3d(&cur_, p), n); }
  bool point2d(AcGePoint2d& p, int n) { return take(RbGetPoint2d(&cur_, p), n); }
  bool string(std::u16string& s, int n) { return take(RbGetCString(&cur_, s), n); }
  bool entName(ads_name e, int n) { return take(RbGetEntName(&cur_, e), n); }
  bool objectId(AcDbObjectId& id, int n) { return take(RbGetObjectId(&cur_, id), n); }
  // Nothing may follow.
  bool end() {
    if (!cur_) return true;
    failTooMany(style_);
    return false;
  }

 private:
  bool take(int st, int n) {
    if (st == RTNORM) return true;
    if (!cur_) {
      failTooFew(style_);
    } else {
      failBadArg(style_, n);
    }
    return false;
  }
  MsgStyle style_;
  resbuf* cur_;
};

}  // namespace zepk::frame
