// The toolkit's version: one string resource, shown in the load banner, in
// the application's registered description and by ZEPK-GetVerSion.
#pragma once

namespace zepk::frame {

inline constexpr int kVersionResource = 102;
inline constexpr char16_t kVersion[] = u"2018.01.02";

}  // namespace zepk::frame
