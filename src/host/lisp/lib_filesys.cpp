// The file system: the vl-file- and vl-filename- functions, vl-mkdir and
// vl-directory-files. Names may be Windows- or POSIX-style; they are mapped
// to native paths only where the system is called, and names handed back
// keep the style they were given in.
//
// Every function answers nil when the system refuses, as the host's do;
// none raises an error except for arguments of the wrong type.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>

#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/paths.h"
#include "host/system/utf.h"

namespace zepk::lisp {

namespace {

namespace fs = std::filesystem;

std::string native(const std::u16string& name) { return sys::toNativePath(name); }

bool statOf(const std::string& path, struct stat* st) { return !path.empty() && ::stat(path.c_str(), st) == 0; }

// Sizes past the 32-bit integers of the language come back as reals.
Value sizeValue(uint64_t n) {
  if (n <= static_cast<uint64_t>(INT32_MAX)) return Value::integer(static_cast<int32_t>(n));
  return Value::real(static_cast<double>(n));
}

// An optional string argument: nullopt when absent or nil.
std::optional<std::u16string> optStr(Interp& in, ArgSpan a, size_t i) {
  if (a.size <= i || a[i].isNil()) return std::nullopt;
  return argStr(in, a[i]);
}

// ---------------------------------------------------------------- copy, delete, rename

bool appendFileTo(int out, const std::string& from) {
  int fd = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  char buf[1 << 16];
  bool ok = true;
  for (;;) {
    ssize_t n = ::read(fd, buf, sizeof buf);
    if (n == 0) break;
    if (n < 0) {
      if (errno == EINTR) continue;
      ok = false;
      break;
    }
    for (ssize_t done = 0; done < n;) {
      ssize_t w = ::write(out, buf + done, static_cast<size_t>(n - done));
      if (w < 0 && errno == EINTR) continue;
      if (w <= 0) {
        ok = false;
        break;
      }
      done += w;
    }
    if (!ok) break;
  }
  ::close(fd);
  return ok;
}

// (vl-file-copy source destination [append]): the size of the destination
// afterwards, or nil. An existing destination is only appended to, never
// replaced. The new content is built under a temporary name beside the
// destination and renamed into place, so a failure leaves the destination
// as it was.
Value fnFileCopy(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 3);
  std::string src = native(argStr(in, a[0]));
  std::string dst = native(argStr(in, a[1]));
  bool append = a.size > 2 && a[2].truthy();
  struct stat s, d;
  if (!statOf(src, &s) || !S_ISREG(s.st_mode)) return Value();
  bool dstExists = statOf(dst, &d);
  if (dstExists && (!append || !S_ISREG(d.st_mode))) return Value();
  if (dstExists && s.st_dev == d.st_dev && s.st_ino == d.st_ino) return Value();
  if (dst.empty() || dst.back() == '/') return Value();

  size_t slash = dst.rfind('/');
  std::string tmp = (slash == std::string::npos ? std::string() : dst.substr(0, slash + 1)) + ".zepk-copy-XXXXXX";
  int out = ::mkstemp(tmp.data());
  if (out < 0) return Value();
  bool ok = (!dstExists || appendFileTo(out, dst)) && appendFileTo(out, src);
  // Give the copy the permissions of what it replaces or copies, as far as
  // the umask allows, instead of the temporary file's private ones.
  mode_t mask = ::umask(0);
  ::umask(mask);
  ok = ok && ::fchmod(out, (dstExists ? d.st_mode : s.st_mode) & 0777 & ~mask) == 0;
  struct stat t;
  ok = ok && ::fstat(out, &t) == 0;
  ok = ::close(out) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), dst.c_str()) != 0) {
    ::unlink(tmp.c_str());
    return Value();
  }
  return sizeValue(static_cast<uint64_t>(t.st_size));
}

Value fnFileDelete(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::string path = native(argStr(in, a[0]));
  struct stat st;
  if (::lstat(path.c_str(), &st) != 0 || S_ISDIR(st.st_mode)) return Value();
  return boolean(::unlink(path.c_str()) == 0);
}

// Renaming never replaces a file that exists under the new name.
Value fnFileRename(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  std::string from = native(argStr(in, a[0]));
  std::string to = native(argStr(in, a[1]));
  struct stat st;
  if (::lstat(from.c_str(), &st) != 0 || ::lstat(to.c_str(), &st) == 0) return Value();
  return boolean(::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0 ||
                 (errno == EINVAL && ::link(from.c_str(), to.c_str()) == 0 && ::unlink(from.c_str()) == 0));
}

// ---------------------------------------------------------------- facts about files

// A folder's size is 0.
Value fnFileSize(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  struct stat st;
  if (!statOf(native(argStr(in, a[0])), &st)) return Value();
  return sizeValue(S_ISDIR(st.st_mode) ? 0 : static_cast<uint64_t>(st.st_size));
}

// (year month day-of-week day hours minutes seconds 0), local time of the
// last change; day-of-week 0 is Sunday.
Value fnFileSystime(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  struct stat st;
  if (!statOf(native(argStr(in, a[0])), &st)) return Value();
  std::tm tm{};
  time_t t = st.st_mtime;
  if (!::localtime_r(&t, &tm)) return Value();
  return list({Value::integer(tm.tm_year + 1900), Value::integer(tm.tm_mon + 1), Value::integer(tm.tm_wday),
               Value::integer(tm.tm_mday), Value::integer(tm.tm_hour), Value::integer(tm.tm_min),
               Value::integer(tm.tm_sec), Value::integer(0)});
}

Value fnDirectoryP(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  struct stat st;
  return boolean(statOf(native(argStr(in, a[0])), &st) && S_ISDIR(st.st_mode));
}

// One level only; nil when the folder exists already.
Value fnMkdir(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::string path = native(argStr(in, a[0]));
  return boolean(!path.empty() && ::mkdir(path.c_str(), 0777) == 0);
}

// ---------------------------------------------------------------- listing folders

char16_t upper(char16_t c) { return sys::asciiUpper(c); }

// File-name patterns as the system matches them: '*' any run, '?' any one
// character, letters in either case; everything else stands for itself. A
// pattern ending in ".*" also matches names without an extension ("*.*"
// matches every name), and one ending in a bare "." matches only those. Backtracking only to the last '*' keeps it linear in
// practice and never worse than the product of the lengths.
bool globMatch(std::u16string_view s, std::u16string_view p) {
  size_t i = 0, j = 0, star = std::u16string_view::npos, mark = 0;
  while (i < s.size()) {
    if (j < p.size() && (p[j] == u'?' || (p[j] != u'*' && upper(p[j]) == upper(s[i])))) {
      ++i;
      ++j;
    } else if (j < p.size() && p[j] == u'*') {
      star = j++;
      mark = i;
    } else if (star != std::u16string_view::npos) {
      j = star + 1;
      i = ++mark;
    } else {
      return false;
    }
  }
  while (j < p.size() && p[j] == u'*') ++j;
  return j == p.size();
}

bool nameMatches(std::u16string_view name, std::u16string_view pattern) {
  if (globMatch(name, pattern)) return true;
  bool noExtension = name.find(u'.') == std::u16string_view::npos;
  if (pattern.size() >= 2 && pattern.substr(pattern.size() - 2) == u".*")
    return noExtension && globMatch(name, pattern.substr(0, pattern.size() - 2));
  if (!pattern.empty() && pattern.back() == u'.') return noExtension && globMatch(name, pattern.substr(0, pattern.size() - 1));
  return false;
}

bool lessFolded(const std::u16string& x, const std::u16string& y) {
  size_t n = std::min(x.size(), y.size());
  for (size_t k = 0; k < n; ++k)
    if (upper(x[k]) != upper(y[k])) return upper(x[k]) < upper(y[k]);
  if (x.size() != y.size()) return x.size() < y.size();
  return x < y;
}

// (vl-directory-files [folder pattern which]): names in the folder (the
// current one by default) matching the pattern ("*.*" by default); which is
// -1 for folders only, 1 for files only, else both. Folders include "." and
// "..". Sorted by name, letters in either case together; nil when the folder
// is missing or nothing matches.
Value fnDirectoryFiles(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 3);
  std::optional<std::u16string> dir = optStr(in, a, 0);
  std::u16string pattern = optStr(in, a, 1).value_or(u"*.*");
  int32_t which = a.size > 2 && !a[2].isNil() ? argInt(in, a[2]) : 0;
  std::string path = dir && !dir->empty() ? native(*dir) : std::string(".");
  struct stat st;
  if (!statOf(path, &st) || !S_ISDIR(st.st_mode)) return Value();
  std::vector<std::u16string> dirs, files;
  if (which != 1) dirs = {u".", u".."};
  std::error_code ec;
  fs::directory_iterator it(path, ec), end;
  for (; !ec && it != end; it.increment(ec)) {
    std::error_code ec2;
    bool isDir = it->is_directory(ec2);
    if (isDir ? which == 1 : which == -1) continue;
    (isDir ? dirs : files).push_back(sys::fromNativePath(it->path().filename().string()));
  }
  std::vector<std::u16string> names;
  for (auto* group : {&dirs, &files})
    for (auto& n : *group)
      if (nameMatches(n, pattern)) names.push_back(std::move(n));
  auto dots = std::partition(names.begin(), names.end(), [](const std::u16string& n) { return n == u"." || n == u".."; });
  std::sort(names.begin(), dots);
  std::sort(dots, names.end(), lessFolded);
  std::vector<Value> out;
  for (auto& n : names) out.push_back(str(std::move(n)));
  return listFrom(std::move(out));
}

// ---------------------------------------------------------------- names

// Where the parts of a file name begin: the name proper after the last
// separator (or drive), the extension at the last dot of the name proper.
struct NameParts {
  size_t nameStart;
  size_t extStart;  // == size when there is none
};

NameParts splitName(std::u16string_view s) {
  size_t sep = s.find_last_of(u"/\\");
  size_t start = sep == std::u16string_view::npos ? 0 : sep + 1;
  if (start == 0 && s.size() >= 2 && s[1] == u':') start = 2;
  size_t dot = s.rfind(u'.');
  size_t ext = dot == std::u16string_view::npos || dot < start ? s.size() : dot;
  return {start, ext};
}

Value fnFilenameBase(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& s = argStr(in, a[0]);
  NameParts p = splitName(s);
  return str(s.substr(p.nameStart, p.extStart - p.nameStart));
}

// The folder without its last separator, except at a root ("c:\\", "/").
Value fnFilenameDirectory(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& s = argStr(in, a[0]);
  std::u16string dir = s.substr(0, splitName(s).nameStart);
  auto isSep = [](char16_t c) { return c == u'/' || c == u'\\'; };
  while (dir.size() > 1 && isSep(dir.back()) && !isSep(dir[dir.size() - 2]) && dir[dir.size() - 2] != u':') dir.pop_back();
  return str(std::move(dir));
}

Value fnFilenameExtension(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& s = argStr(in, a[0]);
  NameParts p = splitName(s);
  if (p.extStart == s.size()) return Value();
  return str(s.substr(p.extStart));
}

std::u16string temporaryFolder() {
  for (const char* var : {"TMP", "TEMP", "TMPDIR"}) {
    const char* v = std::getenv(var);
    if (v && *v) return sys::fromNativePath(v);
  }
  return u"/tmp";
}

// (vl-filename-mktemp [pattern folder extension]): a name for a temporary
// file that does not exist yet: folder + up to five characters of the
// pattern's name ("$VL~~" by default) + three hexadecimal digits + the
// extension. The folder is the argument, else the pattern's folder, else
// the system's temporary folder. The file is not made.
Value fnFilenameMktemp(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 3);
  std::u16string pattern = optStr(in, a, 0).value_or(u"$VL~~");
  std::optional<std::u16string> folderArg = optStr(in, a, 1);
  std::optional<std::u16string> extArg = optStr(in, a, 2);
  NameParts p = splitName(pattern);
  std::u16string folder = folderArg ? *folderArg : pattern.substr(0, p.nameStart);
  if (folder.empty()) folder = temporaryFolder();
  std::u16string base = pattern.substr(p.nameStart, std::min<size_t>(5, p.extStart - p.nameStart));
  std::u16string ext = extArg ? *extArg : pattern.substr(p.extStart);
  if (!ext.empty() && ext[0] != u'.') ext.insert(ext.begin(), u'.');
  char16_t last = folder.back();
  if (last != u'/' && last != u'\\' && last != u':') {
    bool windows = folder.find(u'\\') != std::u16string::npos && folder.find(u'/') == std::u16string::npos;
    folder.push_back(windows ? u'\\' : u'/');
  }
  // One counter for the session, as the names of one session never repeat.
  static int counter = 1;
  for (int tries = 0; tries < 0xFFF; ++tries) {
    int n = counter;
    counter = counter % 0xFFF + 1;
    char digits[8];
    std::snprintf(digits, sizeof digits, "%03X", n);
    std::u16string name = folder + base + sys::fromUtf8(digits) + ext;
    struct stat st;
    if (!statOf(native(name), &st)) return str(std::move(name));
  }
  return Value();
}

}  // namespace

void registerFileSystem(Interp& in) {
  in.defSubr("vl-file-copy", fnFileCopy);
  in.defSubr("vl-file-delete", fnFileDelete);
  in.defSubr("vl-file-rename", fnFileRename);
  in.defSubr("vl-file-size", fnFileSize);
  in.defSubr("vl-file-systime", fnFileSystime);
  in.defSubr("vl-file-directory-p", fnDirectoryP);
  in.defSubr("vl-mkdir", fnMkdir);
  in.defSubr("vl-directory-files", fnDirectoryFiles);
  in.defSubr("vl-filename-base", fnFilenameBase);
  in.defSubr("vl-filename-directory", fnFilenameDirectory);
  in.defSubr("vl-filename-extension", fnFilenameExtension);
  in.defSubr("vl-filename-mktemp", fnFilenameMktemp);
}

}  // namespace zepk::lisp
