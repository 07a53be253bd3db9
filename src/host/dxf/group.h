// DXF groups: the (code, value) pairs that every DXF file is a sequence of.
// This layer knows nothing of objects; it reads and writes groups and tells
// what type of value each group code carries.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace zepk::dxf {

// What a group code's value is, by the public table of code ranges.
enum class GroupType : std::uint8_t {
  Unknown,  // a code no range defines: kept as text, so nothing is lost
  String,   // text, UTF-8 once read
  Handle,   // an object handle or id, hexadecimal text ("1F")
  Binary,   // a chunk of binary data written as hexadecimal text
  Real,     // double
  Int16,
  Int32,
  Int64,
  Bool,     // 0 or 1 in the file
};

// How a value of that type is held in a Group.
enum class ValueKind : std::uint8_t { Text, Real, Integer };

// The type of group code `code`:
//
//   0-9        String  (5 Handle)           210-239    Real
//   10-59      Real                         270-289    Int16 (280-289 are one
//   60-79      Int16                                   byte in binary files)
//   90-99      Int32                        290-299    Bool
//   100-102    String  (subclass marker,    300-309    String
//              embedded object, control)    310-319    Binary
//   105        Handle                       320-369    Handle (soft/hard
//   110-149    Real                                    pointers and owners)
//   160-169    Int64                        370-389    Int16 (line weight,
//   170-179    Int16                                   plot style type)
//   390-399    Handle                       420-429    Int32 (true color)
//   400-409    Int16                        430-439    String (color name)
//   410-419    String                       440-459    Int32
//   460-469    Real                         470-479    String
//   480-481    Handle                       999        String (comment)
//   1000-1003  String (1001 application,    1004       Binary
//              1002 "{" "}", 1003 layer)    1005       Handle
//   1006-1009  String                       1010-1059  Real
//   1060-1070  Int16                        1071       Int32
//
// Every other code, negative ones included, is Unknown.
GroupType groupType(int code);

// Text for String, Handle, Binary and Unknown; Real; Integer for the rest.
ValueKind valueKind(GroupType type);
inline ValueKind valueKind(int code) { return valueKind(groupType(code)); }

// "a string", "a handle", "a real number", "a 16-bit integer"...
const char* describe(GroupType type);

using GroupValue = std::variant<std::string, double, std::int64_t>;

// One group. `line` is the 1-based line of the code line in the file it was
// read from (0 for groups made in memory); the value is on the line after.
struct Group {
  int code = 0;
  GroupValue value;
  int line = 0;

  bool isText() const { return std::holds_alternative<std::string>(value); }
  bool isReal() const { return std::holds_alternative<double>(value); }
  bool isInteger() const { return std::holds_alternative<std::int64_t>(value); }

  // The value, or an empty text / 0 when the group holds another kind.
  const std::string& text() const;
  double real() const;
  std::int64_t integer() const;

  // True for a text group with this code and exactly this value.
  bool is(int c, std::string_view s) const { return code == c && isText() && text() == s; }

  // Same code and value; where it was read from does not matter.
  friend bool operator==(const Group& a, const Group& b) { return a.code == b.code && a.value == b.value; }
};

// A group as the file reader keeps it for a whole drawing: 24 bytes, its
// text a view into the file's bytes (or into text the reader decoded),
// never a copy. It lives as long as what it views.
class GroupRef {
 public:
  int code = 0;
  int line = 0;  // as in Group

  static GroupRef ofText(int code, int line, std::string_view s) {
    GroupRef g(code, line, ValueKind::Text);
    g.text_ = s.data();
    g.size_ = static_cast<std::uint32_t>(s.size());
    return g;
  }
  static GroupRef ofReal(int code, int line, double v) {
    GroupRef g(code, line, ValueKind::Real);
    g.real_ = v;
    return g;
  }
  static GroupRef ofInteger(int code, int line, std::int64_t v) {
    GroupRef g(code, line, ValueKind::Integer);
    g.integer_ = v;
    return g;
  }
  GroupRef() : text_(nullptr) {}

  bool isText() const { return kind_ == ValueKind::Text; }
  bool isReal() const { return kind_ == ValueKind::Real; }
  bool isInteger() const { return kind_ == ValueKind::Integer; }
  std::string_view text() const { return isText() ? std::string_view(text_, size_) : std::string_view(); }
  double real() const { return isReal() ? real_ : 0.0; }
  std::int64_t integer() const { return isInteger() ? integer_ : 0; }
  bool is(int c, std::string_view s) const { return code == c && isText() && text() == s; }
  // Points the text at other bytes (decoded text the reader keeps).
  void setText(std::string_view s) {
    text_ = s.data();
    size_ = static_cast<std::uint32_t>(s.size());
  }
  // The same group with its own copy of the value.
  Group toGroup() const;

 private:
  GroupRef(int c, int l, ValueKind k) : code(c), line(l), text_(nullptr), kind_(k) {}
  union {
    const char* text_;
    double real_;
    std::int64_t integer_;
  };
  std::uint32_t size_ = 0;
  ValueKind kind_ = ValueKind::Text;
};

}  // namespace zepk::dxf
