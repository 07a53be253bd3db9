// The toolkit's two command tables.
#pragma once

#include <cstdint>
#include <span>

#include "host/aced.h"

namespace zepk::frame {

struct CommandRow {
  const char16_t* group;
  const char16_t* global;
  const char16_t* local;  // what users type
  int32_t flags;
  AcRxFunctionPtr fn;  // null while the command is not built: not registered
  const char* family;  // for the reference
  const char* what;    // what it does, in one line
};

// Group "ZEPKAPI", added and removed by the frame row by row.
std::span<const CommandRow> commandTable1();
// Groups "ZEPK_ADDENTITY_COMMANDS" and "ZEPK_CITORS_COMMANDS", added in
// this order and removed by group name.
std::span<const CommandRow> commandTable2();

inline constexpr const char16_t* kGroupApi = u"ZEPKAPI";
inline constexpr const char16_t* kGroupAddEntity = u"ZEPK_ADDENTITY_COMMANDS";
inline constexpr const char16_t* kGroupCitors = u"ZEPK_CITORS_COMMANDS";

}  // namespace zepk::frame
