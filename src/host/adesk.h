// The host's fixed-size integer and truth types, under the names that code
// written for the host uses (Adesk::Int32, Adesk::Boolean, Adesk::kTrue).
#pragma once

#include <cstdint>

namespace Adesk {
typedef int8_t Int8;
typedef int16_t Int16;
typedef int32_t Int32;
typedef int64_t Int64;
typedef uint8_t UInt8;
typedef uint16_t UInt16;
typedef uint32_t UInt32;
typedef uint64_t UInt64;
typedef uint8_t Byte;
typedef int64_t LongPtr;
typedef uint64_t ULongPtr;
typedef int64_t IntPtr;
typedef uint64_t UIntPtr;
// A C++ bool: the host's truth values convert both ways without casts.
typedef bool Boolean;
constexpr Boolean kFalse = false;
constexpr Boolean kTrue = true;
}  // namespace Adesk
