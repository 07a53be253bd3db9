// Whole files by the host's path rules: drive letters mapped to folders, "\"
// and "/" both separators (see host/system/paths.h). Reads take the file
// into memory in one piece; writes go to a temporary file beside the target
// that is renamed over it, so a failure leaves what was there before.
#pragma once

#include <string>
#include <string_view>

// False, with *bytes left empty, when the file cannot be read (missing,
// a folder, no permission).
bool acutReadWholeFile(std::u16string_view path, std::string* bytes);
// False when the file cannot be written; the target is then unchanged.
bool acutWriteWholeFile(std::u16string_view path, std::string_view bytes);
