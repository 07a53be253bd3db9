// Drawings as DXF files: the entry points, and what a database keeps from
// its file beyond its objects (class records, sections the host does not
// read).
#include "host/db/dxffile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <malloc.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <map>
#include <mutex>
#include <thread>

#include "host/db/dxfinternal.h"
#include "host/dxf/memory.h"
#include "host/dxf/writer.h"

namespace zepk::db {

namespace {

// The file data of each database, dropped when the database goes.
class FileDataStore : public AcDbDatabaseReactor {
 public:
  static DxfFileData& of(AcDbDatabase* db) {
    std::lock_guard<std::mutex> lock(mutex());
    auto& all = map();
    auto it = all.find(db);
    if (it != all.end()) return it->second->data;
    auto* store = new FileDataStore;
    all.emplace(db, store);
    db->addReactor(store);
    return store->data;
  }
  void goodbye(const AcDbDatabase* db) override {
    {
      std::lock_guard<std::mutex> lock(mutex());
      map().erase(db);
    }
    delete this;
  }
  DxfFileData data;

 private:
  static std::mutex& mutex() {
    static std::mutex m;
    return m;
  }
  static std::map<const AcDbDatabase*, FileDataStore*>& map() {
    static auto* m = new std::map<const AcDbDatabase*, FileDataStore*>;
    return *m;
  }
};

}  // namespace

DxfFileData& dxfFileData(AcDbDatabase* db) { return FileDataStore::of(db); }

std::optional<uint64_t> parseHandle(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  if (text.empty() || text.size() > 16) return std::nullopt;
  uint64_t v = 0;
  for (char c : text) {
    int d = (c >= '0' && c <= '9') ? c - '0' : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : (c >= 'A' && c <= 'F') ? c - 'A' + 10 : -1;
    if (d < 0) return std::nullopt;
    v = (v << 4) | static_cast<uint64_t>(d);
  }
  return v;
}

std::string handleText(uint64_t value) {
  static const char* digits = "0123456789ABCDEF";
  if (value == 0) return "0";
  std::string s;
  for (uint64_t v = value; v; v >>= 4) s.insert(s.begin(), digits[v & 0xF]);
  return s;
}

std::optional<std::string> hexToBytes(std::string_view text) {
  if (text.size() % 2) return std::nullopt;
  std::string out;
  out.reserve(text.size() / 2);
  auto digit = [](char c) {
    return (c >= '0' && c <= '9') ? c - '0' : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : (c >= 'A' && c <= 'F') ? c - 'A' + 10 : -1;
  };
  for (size_t i = 0; i < text.size(); i += 2) {
    int hi = digit(text[i]), lo = digit(text[i + 1]);
    if (hi < 0 || lo < 0) return std::nullopt;
    out.push_back(static_cast<char>((hi << 4) | lo));
  }
  return out;
}

std::string bytesToHex(std::string_view bytes) {
  static const char* digits = "0123456789ABCDEF";
  std::string s;
  s.reserve(bytes.size() * 2);
  for (unsigned char b : bytes) {
    s.push_back(digits[b >> 4]);
    s.push_back(digits[b & 0xF]);
  }
  return s;
}

std::vector<DxfClassRecord>& dxfClassRecords(AcDbDatabase* db) { return dxfFileData(db).classes; }

namespace {

// Reads `size` bytes from the start of the file into `to`, the second half
// in a second thread while the first thread reads the first: the copying
// and the faulting in of the buffer's pages go on twice as fast. The bytes
// read (all of them), or 0 with the file's offset at its start when either
// half falls short, and the file is read in one piece after all.
size_t readInHalves(int fd, char* to, size_t size) {
  auto readAt = [fd, to](size_t from, size_t n) {
    size_t done = 0;
    while (done < n) {
      const ssize_t k = ::pread(fd, to + from + done, n - done, static_cast<off_t>(from + done));
      if (k < 0 && errno == EINTR) continue;
      if (k <= 0) break;
      done += static_cast<size_t>(k);
    }
    return done == n;
  };
  const size_t half = size / 2;
  bool secondOk = false;
  try {
    std::thread second([&] { secondOk = readAt(half, size - half); });
    const bool firstOk = readAt(0, half);
    second.join();
    if (firstOk && secondOk && ::lseek(fd, static_cast<off_t>(size), SEEK_SET) == static_cast<off_t>(size)) return size;
  } catch (const std::exception&) {
    // No thread to be had.
  }
  ::lseek(fd, 0, SEEK_SET);
  return 0;
}

}  // namespace

bool readDxf(const std::string& path, std::unique_ptr<AcDbDatabase>* out, std::string* error,
             const DxfReadOptions& options) {
  // The whole file in one buffer, sized once: the reader's groups view it.
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    if (error) *error = "cannot read \"" + path + "\": " + std::strerror(errno);
    return false;
  }
  struct stat st {};
  size_t capacity = 1 << 20;
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) capacity = static_cast<size_t>(st.st_size) + 1;
  std::unique_ptr<char[]> buffer(new (std::nothrow) char[capacity]);
  // Backed by large pages where the system allows: fewer faults to fill it.
  if (buffer && capacity >= (size_t{8} << 20)) dxf::adviseLargePages(buffer.get(), capacity);
  size_t size = 0;
  bool readOk = buffer != nullptr;
  if (readOk && capacity >= (size_t{8} << 20)) size = readInHalves(fd, buffer.get(), capacity - 1);
  while (readOk) {
    if (size == capacity) {
      // A file that grew, or one whose size the system does not give.
      std::unique_ptr<char[]> bigger(new (std::nothrow) char[capacity * 2]);
      if (!bigger) {
        readOk = false;
        break;
      }
      std::memcpy(bigger.get(), buffer.get(), size);
      buffer = std::move(bigger);
      capacity *= 2;
    }
    const ssize_t n = ::read(fd, buffer.get() + size, capacity - size);
    if (n == 0) break;
    if (n < 0) {
      if (errno == EINTR) continue;
      // A folder reads as nothing: the reader says the file is empty.
      readOk = errno == EISDIR;
      break;
    }
    size += static_cast<size_t>(n);
  }
  ::close(fd);
  if (!readOk) {
    if (error) *error = "cannot read \"" + path + "\": a read error";
    return false;
  }
  std::string err;
  const bool ok = readDxfBytes(std::string_view(buffer.get(), size), out, &err, options, true);
  buffer.reset();
  // What reading used and gave back (the file, its groups, each record's
  // items) is returned to the system, so that the open drawing holds only
  // its objects.
  ::malloc_trim(0);
  if (!ok) {
    if (error) *error = path + ": " + err;
    return false;
  }
  return true;
}

bool writeDxf(AcDbDatabase* db, const std::string& path, std::string* error) {
  // Straight to the new file as the groups are made: the whole file is
  // never held in memory.
  return dxf::writeFileAtomically(
      path, [&](const std::function<bool(std::string_view)>& append) { return writeDxfPieces(db, append, error); },
      error);
}

}  // namespace zepk::db
