// Whole-file reads and atomic whole-file writes by the host's path rules.
#include "host/hostfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/system/paths.h"

bool acutReadWholeFile(std::u16string_view path, std::string* bytes) {
  bytes->clear();
  std::string native = zepk::sys::toNativePath(path);
  int fd = ::open(native.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    ::close(fd);
    return false;
  }
  std::string data;
  data.reserve(static_cast<size_t>(st.st_size));
  char buf[1 << 16];
  for (;;) {
    ssize_t got = ::read(fd, buf, sizeof buf);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) {
      ::close(fd);
      return false;
    }
    if (got == 0) break;
    data.append(buf, static_cast<size_t>(got));
  }
  ::close(fd);
  *bytes = std::move(data);
  return true;
}

bool acutWriteWholeFile(std::u16string_view path, std::string_view bytes) {
  std::string native = zepk::sys::toNativePath(path);
  if (native.empty()) return false;
  std::string tmp = native + ".XXXXXX";
  int fd = ::mkstemp(tmp.data());
  if (fd < 0) return false;
  bool ok = true;
  for (size_t done = 0; ok && done < bytes.size();) {
    ssize_t put = ::write(fd, bytes.data() + done, bytes.size() - done);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) ok = false;
    else done += static_cast<size_t>(put);
  }
  // A new file gets the usual permissions; one replaced keeps its own.
  struct stat st {};
  mode_t mode = 0666;
  if (::stat(native.c_str(), &st) == 0) mode = st.st_mode & 07777;
  else {
    mode_t mask = ::umask(0);
    ::umask(mask);
    mode &= ~mask;
  }
  ok = ok && ::fchmod(fd, mode) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), native.c_str()) != 0) {
    ::unlink(tmp.c_str());
    return false;
  }
  return true;
}
