// The host's settings, as LISP's getenv and setenv and compiled code's
// acedGetEnv and acedSetEnv reach them: text values of the current
// profile's General key, <product key>\Profiles\<<Unnamed Profile>>\General
// in the user's hive of the registry store, so that they last from one
// session to the next. A name with no setting there is looked up in the
// process environment. The support path is the setting ACAD: folders
// separated by ";".
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zepk::sys {

// The profile's key under HKEY_CURRENT_USER.
std::u16string profileKey();
std::optional<std::u16string> hostSetting(std::u16string_view name);
// Sets the value in the store; false when it could not be kept on disk
// (the session still sees it).
bool setHostSetting(std::u16string_view name, std::u16string_view value);
// The folders of the ACAD setting, in order, empty parts left out.
std::vector<std::u16string> supportFolders();

}  // namespace zepk::sys
