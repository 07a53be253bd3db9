// Paths at the operating-system boundary. The toolkit speaks Windows paths
// ("D:\\data\\site.dat"); Linux users type POSIX ones. Both reach the file
// system through toNativePath.
#pragma once

#include <string>
#include <string_view>

namespace zepk::sys {

// Maps a Windows or POSIX path to the native path, as UTF-8 bytes.
//  - "C:" is the folder named by $ZEPK_DRIVE_C, or "/" when that is unset or
//    empty; any other drive "X:" is $ZEPK_DRIVE_X (upper-case letter in the
//    variable name), or "/mnt/x" (lower-case) when unset or empty. The drive
//    letter may be written in either case.
//  - A drive-relative path ("D:data\\a.txt") is taken from the drive's root.
//  - "\\" and "/" are both separators; runs of separators collapse to one,
//    so a network path "\\\\server\\share" becomes "/server/share".
//  - A POSIX path passes through; a relative path stays relative.
//  - "." and ".." are kept for the file system to resolve (symbolic links
//    make resolving them here wrong).
std::string toNativePath(std::u16string_view path);

// A native path (UTF-8 bytes) as a host string. It keeps its "/" separators
// and gets no drive letter: toNativePath accepts it unchanged, and every
// Windows API the toolkit imitates accepts "/" too. Bytes that are not UTF-8
// become U+FFFD.
std::u16string fromNativePath(std::string_view nativePath);

// True for "X:..." (any drive letter: the host resolves drive-relative paths
// from the drive's root) and for paths that start with a separator.
bool isAbsolutePath(std::u16string_view path);

}  // namespace zepk::sys
