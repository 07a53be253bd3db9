// Files and folders under their Windows names, by the host's path rules.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "host/system/paths.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

namespace {

std::string native(LPCWSTR p) { return p ? zepk::sys::toNativePath(p) : std::string(); }

void setErrorFromErrno() {
  switch (errno) {
    case ENOENT: SetLastError(ERROR_FILE_NOT_FOUND); break;
    case ENOTDIR: SetLastError(ERROR_PATH_NOT_FOUND); break;
    case EEXIST: SetLastError(ERROR_ALREADY_EXISTS); break;
    case ENOTEMPTY: SetLastError(ERROR_DIR_NOT_EMPTY); break;
    case EACCES: case EPERM: case EROFS: SetLastError(ERROR_ACCESS_DENIED); break;
    default: SetLastError(ERROR_CAN_NOT_COMPLETE); break;
  }
}

char16_t fold(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

// Windows wildcard matching without regard to case; "*.*" matches all.
bool matches(std::u16string_view pat, std::u16string_view name) {
  if (pat == u"*.*" || pat == u"*") return true;
  size_t p = 0, n = 0, starP = std::u16string_view::npos, starN = 0;
  while (n < name.size()) {
    if (p < pat.size() && (pat[p] == u'?' || fold(pat[p]) == fold(name[n]))) {
      ++p, ++n;
    } else if (p < pat.size() && pat[p] == u'*') {
      starP = p++, starN = n;
    } else if (starP != std::u16string_view::npos) {
      p = starP + 1, n = ++starN;
    } else {
      return false;
    }
  }
  while (p < pat.size() && (pat[p] == u'*' || (pat[p] == u'.' && p + 1 == pat.size()))) ++p;
  return p == pat.size();
}

struct Finder {
  std::vector<WIN32_FIND_DATAW> found;
  size_t next = 0;
};

void fill(WIN32_FIND_DATAW* d, const std::u16string& name, const struct stat& st) {
  std::memset(d, 0, sizeof *d);
  d->dwFileAttributes = S_ISDIR(st.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_NORMAL;
  if (!S_ISDIR(st.st_mode) && !(st.st_mode & S_IWUSR)) d->dwFileAttributes |= FILE_ATTRIBUTE_READONLY;
  if (!name.empty() && name[0] == u'.' && name != u"." && name != u"..") d->dwFileAttributes |= FILE_ATTRIBUTE_HIDDEN;
  uint64_t size = S_ISDIR(st.st_mode) ? 0 : static_cast<uint64_t>(st.st_size);
  d->nFileSizeHigh = static_cast<DWORD>(size >> 32);
  d->nFileSizeLow = static_cast<DWORD>(size);
  // 100 ns ticks since 1601.
  uint64_t ticks = (static_cast<uint64_t>(st.st_mtime) + 11644473600ull) * 10000000ull;
  d->ftLastWriteTime = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
  d->ftCreationTime = d->ftLastAccessTime = d->ftLastWriteTime;
  size_t n = std::min(name.size(), static_cast<size_t>(MAX_PATH - 1));
  std::copy(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(n), d->cFileName);
}

// Copies src to dst through a temporary file beside dst.
bool copyInto(const std::string& src, const std::string& dst) {
  int in = ::open(src.c_str(), O_RDONLY | O_CLOEXEC);
  if (in < 0) return false;
  struct stat st {};
  if (::fstat(in, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(in);
    errno = EISDIR;
    return false;
  }
  std::string tmp = dst + ".XXXXXX";
  int out = ::mkstemp(tmp.data());
  if (out < 0) {
    ::close(in);
    return false;
  }
  bool ok = true;
  char buf[1 << 16];
  for (;;) {
    ssize_t got = ::read(in, buf, sizeof buf);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) {
      ok = got == 0;
      break;
    }
    for (ssize_t done = 0; ok && done < got;) {
      ssize_t put = ::write(out, buf + done, static_cast<size_t>(got - done));
      if (put < 0 && errno == EINTR) continue;
      if (put <= 0) ok = false;
      else done += put;
    }
    if (!ok) break;
  }
  ::close(in);
  ok = ok && ::fchmod(out, st.st_mode & 07777) == 0;
  ok = ::close(out) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), dst.c_str()) != 0) {
    int saved = errno;
    ::unlink(tmp.c_str());
    errno = saved;
    return false;
  }
  return true;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR lpFileName, WIN32_FIND_DATAW* data) {
  std::u16string full = lpFileName ? lpFileName : u"";
  size_t cut = full.find_last_of(u"\\/");
  std::u16string folder = cut == std::u16string::npos ? u"." : full.substr(0, cut + 1);
  std::u16string pattern = cut == std::u16string::npos ? full : full.substr(cut + 1);
  std::string dirPath = zepk::sys::toNativePath(folder);
  DIR* dir = ::opendir(dirPath.empty() ? "." : dirPath.c_str());
  if (!dir) {
    SetLastError(ERROR_PATH_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  auto finder = std::make_unique<Finder>();
  std::vector<std::pair<std::u16string, struct stat>> entries;
  while (dirent* e = ::readdir(dir)) {
    std::u16string name = zepk::sys::fromNativePath(e->d_name);
    if (!matches(pattern, name)) continue;
    struct stat st {};
    std::string path = dirPath + (dirPath.empty() || dirPath.back() == '/' ? "" : "/") + e->d_name;
    if (::stat(path.c_str(), &st) != 0) continue;
    entries.emplace_back(name, st);
  }
  ::closedir(dir);
  // The order a listing gives is the file system's; sorted by name here so
  // that results do not depend on it.
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  for (const auto& [name, st] : entries) {
    finder->found.emplace_back();
    fill(&finder->found.back(), name, st);
  }
  if (finder->found.empty()) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  *data = finder->found[0];
  finder->next = 1;
  return finder.release();
}

BOOL FindNextFileW(HANDLE h, WIN32_FIND_DATAW* data) {
  if (!h || h == INVALID_HANDLE_VALUE) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  auto* f = static_cast<Finder*>(h);
  if (f->next >= f->found.size()) {
    SetLastError(ERROR_NO_MORE_FILES);
    return FALSE;
  }
  *data = f->found[f->next++];
  return TRUE;
}

BOOL FindClose(HANDLE h) {
  if (!h || h == INVALID_HANDLE_VALUE) return FALSE;
  delete static_cast<Finder*>(h);
  return TRUE;
}

DWORD GetFileAttributesW(LPCWSTR name) {
  struct stat st {};
  std::string p = native(name);
  if (p.empty() || ::stat(p.c_str(), &st) != 0) {
    setErrorFromErrno();
    return INVALID_FILE_ATTRIBUTES;
  }
  DWORD a = S_ISDIR(st.st_mode) ? DWORD(FILE_ATTRIBUTE_DIRECTORY) : DWORD(0);
  if (!S_ISDIR(st.st_mode) && !(st.st_mode & S_IWUSR)) a |= FILE_ATTRIBUTE_READONLY;
  return a ? a : FILE_ATTRIBUTE_NORMAL;
}

BOOL CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists) {
  std::string src = native(from), dst = native(to);
  struct stat s {}, d {};
  if (src.empty() || dst.empty() || ::stat(src.c_str(), &s) != 0) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
  }
  if (::stat(dst.c_str(), &d) == 0) {
    if (failIfExists) {
      SetLastError(ERROR_FILE_EXISTS);
      return FALSE;
    }
    if (s.st_dev == d.st_dev && s.st_ino == d.st_ino) {  // onto itself
      SetLastError(ERROR_ACCESS_DENIED);
      return FALSE;
    }
  }
  if (!copyInto(src, dst)) {
    setErrorFromErrno();
    return FALSE;
  }
  return TRUE;
}

BOOL MoveFileW(LPCWSTR from, LPCWSTR to) {
  std::string src = native(from), dst = native(to);
  struct stat st {};
  if (src.empty() || dst.empty() || ::lstat(src.c_str(), &st) != 0) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
  }
  if (::lstat(dst.c_str(), &st) == 0) {
    SetLastError(ERROR_ALREADY_EXISTS);
    return FALSE;
  }
  if (::rename(src.c_str(), dst.c_str()) == 0) return TRUE;
  if (errno == EXDEV && copyInto(src, dst)) {
    if (::unlink(src.c_str()) == 0) return TRUE;
    ::unlink(dst.c_str());
  }
  setErrorFromErrno();
  return FALSE;
}

BOOL DeleteFileW(LPCWSTR name) {
  std::string p = native(name);
  struct stat st {};
  if (p.empty() || ::lstat(p.c_str(), &st) != 0) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return FALSE;
  }
  if (S_ISDIR(st.st_mode)) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
  }
  if (::unlink(p.c_str()) != 0) {
    setErrorFromErrno();
    return FALSE;
  }
  return TRUE;
}

BOOL CreateDirectoryW(LPCWSTR name, void*) {
  std::string p = native(name);
  while (p.size() > 1 && p.back() == '/') p.pop_back();
  if (p.empty() || ::mkdir(p.c_str(), 0777) != 0) {
    if (errno == ENOENT) SetLastError(ERROR_PATH_NOT_FOUND);
    else setErrorFromErrno();
    return FALSE;
  }
  return TRUE;
}

BOOL RemoveDirectoryW(LPCWSTR name) {
  std::string p = native(name);
  if (p.empty() || ::rmdir(p.c_str()) != 0) {
    setErrorFromErrno();
    return FALSE;
  }
  return TRUE;
}
