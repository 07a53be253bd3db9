#include "host/dxf/writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace zepk::dxf {

// ---------------------------------------------------------------- groups

bool GroupWriter::refuse(int code, const std::string& why) {
  if (error_.empty()) error_ = "group " + std::to_string(code) + ": " + why;
  return false;
}

bool GroupWriter::flush() {
  if (!sink_ || sinkFailed_) return !sinkFailed_;
  if (!out_.empty() && !sink_(out_)) {
    sinkFailed_ = true;
    refuse(0, "the file could not be written");
  }
  out_.clear();
  return !sinkFailed_;
}

bool GroupWriter::checkCode(int code) {
  if (!ok()) return false;
  if (code < 0) return refuse(code, "a negative code belongs to entity lists, not to files");
  return true;
}

// The code right-aligned in three columns and its line end, at `p`; the end.
char* GroupWriter::codeLine(char* p, int code) const {
  if (code < 10) *p++ = ' ';
  if (code < 100) *p++ = ' ';
  p = std::to_chars(p, p + 11, code).ptr;
  for (const char* e = eol_; *e != '\0'; ++e) *p++ = *e;
  return p;
}

void GroupWriter::putCode(int code) {
  char buf[16];
  out_.append(buf, codeLine(buf, code));
}

bool GroupWriter::text(int code, std::string_view value) {
  if (!checkCode(code)) return false;
  const ValueKind kind = valueKind(code);
  if (kind != ValueKind::Text && groupType(code) != GroupType::Unknown)
    return refuse(code, std::string("text cannot be written where ") + describe(groupType(code)) + " belongs");
  for (const char c : value)
    if (c == '\r' || c == '\n') return refuse(code, "a line break cannot be written in a text value");
  putCode(code);
  out_ += value;
  putEol();
  done();
  return true;
}

bool GroupWriter::real(int code, double value) {
  if (!checkCode(code)) return false;
  const GroupType type = groupType(code);
  if (type != GroupType::Real && type != GroupType::Unknown)
    return refuse(code, std::string("a real number cannot be written where ") + describe(type) + " belongs");
  if (!std::isfinite(value)) return refuse(code, "a real number that is not finite cannot be written");
  // The code line and the value line in one piece.
  char buf[80];
  char* const number = codeLine(buf, code);
  char* p = std::to_chars(number, buf + 64, value).ptr;
  // A whole number gets ".0" so that it reads as a real everywhere.
  bool whole = true;
  for (const char* q = number; q < p && whole; ++q) whole = *q != '.' && *q != 'e';
  if (whole) {
    *p++ = '.';
    *p++ = '0';
  }
  for (const char* e = eol_; *e != '\0'; ++e) *p++ = *e;
  out_.append(buf, p);
  done();
  return true;
}

bool GroupWriter::integer(int code, std::int64_t value) {
  if (!checkCode(code)) return false;
  const GroupType type = groupType(code);
  if (type == GroupType::Real) return real(code, static_cast<double>(value));
  bool fits = true;
  switch (type) {
    case GroupType::Int16: fits = value >= -32768 && value <= 32767; break;
    case GroupType::Int32: fits = value >= INT32_MIN && value <= INT32_MAX; break;
    case GroupType::Bool: fits = value == 0 || value == 1; break;
    case GroupType::Int64:
    case GroupType::Unknown: break;
    default:
      return refuse(code, std::string("an integer cannot be written where ") + describe(type) + " belongs");
  }
  if (!fits) return refuse(code, std::to_string(value) + " is out of range for " + describe(type));
  char buf[64];
  char* p = std::to_chars(codeLine(buf, code), buf + 48, value).ptr;
  for (const char* e = eol_; *e != '\0'; ++e) *p++ = *e;
  out_.append(buf, p);
  done();
  return true;
}

bool GroupWriter::boolean(int code, bool value) { return integer(code, value ? 1 : 0); }

bool GroupWriter::point(int code, double x, double y, double z) {
  return real(code, x) && real(code + 10, y) && real(code + 20, z);
}

bool GroupWriter::point(int code, double x, double y) { return real(code, x) && real(code + 10, y); }

bool GroupWriter::append(std::string_view groups) {
  if (!ok()) return false;
  out_ += groups;
  done();
  return ok();
}

bool GroupWriter::group(const Group& g) {
  if (const auto* s = std::get_if<std::string>(&g.value)) return text(g.code, *s);
  if (const auto* d = std::get_if<double>(&g.value)) return real(g.code, *d);
  return integer(g.code, std::get<std::int64_t>(g.value));
}

// ---------------------------------------------------------------- files

namespace {

std::string failure(const std::string& path, const std::string& why) { return "cannot write \"" + path + "\": " + why; }

// A name for the new file, beside the target and hidden, that no other
// writer in this or another process picks at the same time.
std::string temporaryName(const std::string& dir, const std::string& base) {
  static std::atomic<unsigned> counter{0};
  const auto now = static_cast<unsigned long long>(std::chrono::steady_clock::now().time_since_epoch().count());
  const unsigned long long mix = now ^ (static_cast<unsigned long long>(::getpid()) << 32) ^ (counter++ * 0x9E3779B97F4A7C15ULL);
  char hex[17];
  std::snprintf(hex, sizeof hex, "%016llx", mix);
  // Cut a long name so that the temporary one stays within the 255 bytes a
  // name may have.
  return dir + "." + base.substr(0, 200) + "." + hex + ".tmp";
}

bool writeAll(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

// Writes pieces to a file in the order given, from a second thread once the
// pieces are large: making the next piece and writing the last one then go
// on at once. Each piece is copied into one of a few buffers that go round,
// so that the maker never runs far ahead of the disk.
class PieceWriter {
 public:
  explicit PieceWriter(int fd) : fd_(fd) {}
  ~PieceWriter() { finish(); }

  // False once writing has failed.
  bool append(std::string_view piece) {
    if (!started_ && !stopped_ && piece.size() >= kBackground) start();
    if (!started_) return writeNow(piece);
    std::unique_lock<std::mutex> lock(mutex_);
    room_.wait(lock, [&] { return queue_.size() < kBuffers || errno_ != 0; });
    if (errno_ != 0) return false;
    std::string buffer;
    if (!spare_.empty()) {
      buffer = std::move(spare_.back());
      spare_.pop_back();
    }
    lock.unlock();
    buffer.assign(piece);
    lock.lock();
    queue_.push_back(std::move(buffer));
    ready_.notify_one();
    return true;
  }
  // Waits for every piece to be written; the errno of the first failure, or 0.
  int finish() {
    if (started_) {
      {
        std::lock_guard<std::mutex> lock(mutex_);
        done_ = true;
      }
      ready_.notify_one();
      thread_.join();
      started_ = false;
      stopped_ = true;
    }
    return errno_;
  }

 private:
  static constexpr std::size_t kBackground = std::size_t{256} << 10;
  static constexpr std::size_t kBuffers = 4;

  void start() {
    try {
      thread_ = std::thread([this] { run(); });
      started_ = true;
    } catch (const std::exception&) {
      stopped_ = true;  // no thread to be had: written as they come
    }
  }
  bool writeNow(std::string_view piece) {
    if (errno_ != 0) return false;
    if (!writeAll(fd_, piece)) {
      errno_ = errno != 0 ? errno : EIO;
      return false;
    }
    // The disk starts on each piece at once, so that the flush at the end
    // waits for little more than the last one. Only a hint: its failure
    // is not the file's.
    (void)::sync_file_range(fd_, written_, static_cast<off_t>(piece.size()), SYNC_FILE_RANGE_WRITE);
    written_ += static_cast<off_t>(piece.size());
    return true;
  }
  void run() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
      ready_.wait(lock, [&] { return !queue_.empty() || done_; });
      if (queue_.empty()) return;
      std::string piece = std::move(queue_.front());
      queue_.pop_front();
      lock.unlock();
      const bool ok = errno_ == 0 && writeNow(piece);
      lock.lock();
      if (ok) spare_.push_back(std::move(piece));
      room_.notify_one();
    }
  }

  int fd_;
  std::thread thread_;
  bool started_ = false;
  bool stopped_ = false;  // pieces are written as they come from now on
  std::mutex mutex_;
  std::condition_variable ready_, room_;
  std::deque<std::string> queue_;
  std::vector<std::string> spare_;
  bool done_ = false;
  std::atomic<int> errno_{0};
  off_t written_ = 0;
};

}  // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes, std::string* error) {
  return writeFileAtomically(path, Producer([bytes](const std::function<bool(std::string_view)>& append) { return append(bytes); }),
                             error);
}

bool writeFileAtomically(const std::string& path, const Producer& produce, std::string* error) {
  // A fault of the path is told after the bytes are made: when they cannot
  // be made, that is what the caller hears, as when they were made first.
  std::string pathFault;
  auto fail = [&](const std::string& why) {
    if (error != nullptr) *error = failure(path, why);
    return false;
  };
  // Makes the bytes with nowhere to put them; then tells the path's fault.
  auto failAfterProducing = [&](const std::string& why) {
    if (!produce([](std::string_view) { return true; })) return false;
    return fail(why);
  };
  if (path.empty()) return failAfterProducing("no file name");

  // Replace what a symbolic link names, not the link.
  std::string target = path;
  struct stat st {};
  if (::lstat(path.c_str(), &st) == 0 && S_ISLNK(st.st_mode)) {
    if (char* real = ::realpath(path.c_str(), nullptr)) {
      target = real;
      std::free(real);
    } else {
      // A link to a file that does not exist yet: create that file.
      std::string link(4096, '\0');
      const ssize_t n = ::readlink(path.c_str(), link.data(), link.size());
      if (n > 0 && static_cast<size_t>(n) < link.size()) {
        link.resize(static_cast<size_t>(n));
        const size_t slash = path.rfind('/');
        target = link.front() == '/' || slash == std::string::npos ? link : path.substr(0, slash + 1) + link;
      }
    }
  }
  const bool exists = ::stat(target.c_str(), &st) == 0;
  if (exists && S_ISDIR(st.st_mode)) return failAfterProducing("it is a folder");
  if (!target.empty() && target.back() == '/') return failAfterProducing("it names a folder");

  const size_t slash = target.rfind('/');
  const std::string dir = slash == std::string::npos ? std::string() : target.substr(0, slash + 1);
  const std::string base = slash == std::string::npos ? target : target.substr(slash + 1);

  std::string tmp;
  int fd = -1;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    tmp = temporaryName(dir, base);
    fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);  // the umask applies
    if (fd < 0 && errno != EEXIST) return failAfterProducing(std::strerror(errno));
  }
  if (fd < 0) return failAfterProducing("no free temporary name in its folder");

  PieceWriter pieces(fd);
  const bool produced = produce([&](std::string_view piece) { return pieces.append(piece); });
  const int writeErrno = pieces.finish();
  bool ok = produced && writeErrno == 0;
  if (!ok && writeErrno == 0) {
    // The bytes could not be made: the caller's error says why.
    ::close(fd);
    ::unlink(tmp.c_str());
    return false;
  }
  int saved = writeErrno;
  if (ok && exists) {
    // Keep the old file's permissions and, where allowed, its owner.
    ok = ::fchmod(fd, st.st_mode & 07777) == 0;
    if (!ok) saved = errno;
    if (ok && (st.st_uid != ::geteuid() || st.st_gid != ::getegid())) (void)!::fchown(fd, st.st_uid, st.st_gid);
  }
  if (ok && ::fsync(fd) != 0) {
    ok = false;
    saved = errno;
  }
  if (::close(fd) != 0 && ok) {
    ok = false;
    saved = errno;
  }
  if (ok && ::rename(tmp.c_str(), target.c_str()) != 0) {
    ok = false;
    saved = errno;
  }
  if (!ok) {
    ::unlink(tmp.c_str());
    return fail(std::strerror(saved));
  }
  // Make the rename itself durable. The file is in place already, so a
  // folder that cannot be synced is not a failure.
  const int dfd = ::open(dir.empty() ? "." : dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dfd >= 0) {
    ::fsync(dfd);
    ::close(dfd);
  }
  return true;
}

}  // namespace zepk::dxf
