#include "host/dxf/group.h"

namespace zepk::dxf {

GroupType groupType(int code) {
  using T = GroupType;
  if (code < 0) return T::Unknown;
  if (code <= 9) return code == 5 ? T::Handle : T::String;
  if (code <= 59) return T::Real;
  if (code <= 79) return T::Int16;
  if (code <= 89) return T::Unknown;
  if (code <= 99) return T::Int32;
  if (code <= 102) return T::String;
  if (code == 105) return T::Handle;
  if (code <= 109) return T::Unknown;
  if (code <= 149) return T::Real;
  if (code <= 159) return T::Unknown;
  if (code <= 169) return T::Int64;
  if (code <= 179) return T::Int16;
  if (code <= 209) return T::Unknown;
  if (code <= 239) return T::Real;
  if (code <= 269) return T::Unknown;
  if (code <= 289) return T::Int16;
  if (code <= 299) return T::Bool;
  if (code <= 309) return T::String;
  if (code <= 319) return T::Binary;
  if (code <= 369) return T::Handle;
  if (code <= 389) return T::Int16;
  if (code <= 399) return T::Handle;
  if (code <= 409) return T::Int16;
  if (code <= 419) return T::String;
  if (code <= 429) return T::Int32;
  if (code <= 439) return T::String;
  if (code <= 459) return T::Int32;
  if (code <= 469) return T::Real;
  if (code <= 479) return T::String;
  if (code <= 481) return T::Handle;
  if (code == 999) return T::String;
  if (code < 1000) return T::Unknown;
  if (code == 1004) return T::Binary;
  if (code == 1005) return T::Handle;
  if (code <= 1009) return T::String;
  if (code <= 1059) return T::Real;
  if (code <= 1070) return T::Int16;
  if (code == 1071) return T::Int32;
  return T::Unknown;
}

ValueKind valueKind(GroupType type) {
  switch (type) {
    case GroupType::Real: return ValueKind::Real;
    case GroupType::Int16:
    case GroupType::Int32:
    case GroupType::Int64:
    case GroupType::Bool: return ValueKind::Integer;
    default: return ValueKind::Text;
  }
}

const char* describe(GroupType type) {
  switch (type) {
    case GroupType::String: return "a string";
    case GroupType::Handle: return "a handle";
    case GroupType::Binary: return "hexadecimal binary data";
    case GroupType::Real: return "a real number";
    case GroupType::Int16: return "a 16-bit integer";
    case GroupType::Int32: return "a 32-bit integer";
    case GroupType::Int64: return "a 64-bit integer";
    case GroupType::Bool: return "a boolean (0 or 1)";
    case GroupType::Unknown: break;
  }
  return "a value";
}

const std::string& Group::text() const {
  static const std::string kEmpty;
  const auto* s = std::get_if<std::string>(&value);
  return s != nullptr ? *s : kEmpty;
}

double Group::real() const {
  const auto* d = std::get_if<double>(&value);
  return d != nullptr ? *d : 0.0;
}

Group GroupRef::toGroup() const {
  Group g;
  g.code = code;
  g.line = line;
  if (isReal()) g.value = real_;
  else if (isInteger()) g.value = integer_;
  else g.value = std::string(text());
  return g;
}

std::int64_t Group::integer() const {
  const auto* i = std::get_if<std::int64_t>(&value);
  return i != nullptr ? *i : 0;
}

}  // namespace zepk::dxf
