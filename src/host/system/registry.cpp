#include "host/system/registry.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "host/system/utf.h"
#include "host/wincompat.h"

namespace zepk::sys {

namespace {

const char16_t* kRootNames[RegistryStore::kRoots] = {u"HKEY_CLASSES_ROOT", u"HKEY_CURRENT_USER",
                                                      u"HKEY_LOCAL_MACHINE", u"HKEY_USERS",
                                                      u"HKEY_CURRENT_CONFIG"};

long gWriteFault = -1;

// ------------------------------------------------------------ quoting

void appendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

std::string quote(std::u16string_view s) {
  std::string out = "\"";
  for (size_t i = 0; i < s.size(); ++i) {
    char16_t c = s[i];
    switch (c) {
      case u'"': out += "\\\""; continue;
      case u'\\': out += "\\\\"; continue;
      case u'\n': out += "\\n"; continue;
      case u'\r': out += "\\r"; continue;
      case u'\t': out += "\\t"; continue;
      default: break;
    }
    bool high = c >= 0xD800 && c <= 0xDBFF, low = c >= 0xDC00 && c <= 0xDFFF;
    if (high && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] <= 0xDFFF) {
      appendUtf8(out, 0x10000 + ((static_cast<uint32_t>(c) - 0xD800) << 10) + (s[i + 1] - 0xDC00));
      ++i;
    } else if (c < 0x20 || high || low || c == 0x7F) {
      char buf[8];
      std::snprintf(buf, sizeof buf, "\\u%04X", static_cast<unsigned>(c));
      out += buf;
    } else {
      appendUtf8(out, c);
    }
  }
  out += '"';
  return out;
}

// Reads a quoted string at *pos; false if there is none.
bool unquote(std::string_view line, size_t* pos, std::u16string* out) {
  size_t i = *pos;
  while (i < line.size() && line[i] == ' ') ++i;
  if (i >= line.size() || line[i] != '"') return false;
  ++i;
  std::string raw;
  std::u16string result;
  auto flush = [&] {
    if (!raw.empty()) {
      result += fromUtf8(raw);
      raw.clear();
    }
  };
  while (i < line.size() && line[i] != '"') {
    char c = line[i];
    if (c != '\\') {
      raw += c;
      ++i;
      continue;
    }
    if (i + 1 >= line.size()) return false;
    char e = line[i + 1];
    i += 2;
    switch (e) {
      case '"': raw += '"'; break;
      case '\\': raw += '\\'; break;
      case 'n': raw += '\n'; break;
      case 'r': raw += '\r'; break;
      case 't': raw += '\t'; break;
      case 'u': {
        if (i + 4 > line.size()) return false;
        unsigned v = 0;
        for (int k = 0; k < 4; ++k) {
          char h = line[i + k];
          int d = h >= '0' && h <= '9' ? h - '0' : h >= 'A' && h <= 'F' ? h - 'A' + 10 : h >= 'a' && h <= 'f' ? h - 'a' + 10 : -1;
          if (d < 0) return false;
          v = v * 16 + static_cast<unsigned>(d);
        }
        i += 4;
        flush();
        result += static_cast<char16_t>(v);
        break;
      }
      default: return false;
    }
  }
  if (i >= line.size()) return false;
  flush();
  *pos = i + 1;
  *out = std::move(result);
  return true;
}

std::string hex(const std::vector<uint8_t>& data) {
  static const char* digits = "0123456789abcdef";
  std::string out;
  for (uint8_t b : data) {
    out += digits[b >> 4];
    out += digits[b & 15];
  }
  return out;
}

bool unhex(std::string_view s, std::vector<uint8_t>* out) {
  if (s.size() % 2) return false;
  out->clear();
  for (size_t i = 0; i < s.size(); i += 2) {
    auto d = [](char h) {
      return h >= '0' && h <= '9' ? h - '0' : h >= 'a' && h <= 'f' ? h - 'a' + 10 : h >= 'A' && h <= 'F' ? h - 'A' + 10 : -1;
    };
    int a = d(s[i]), b = d(s[i + 1]);
    if (a < 0 || b < 0) return false;
    out->push_back(static_cast<uint8_t>(a * 16 + b));
  }
  return true;
}

// A REG_SZ's bytes as text: UTF-16 with its ending zero. False when the
// bytes are not that (an odd count, no zero at the end, a zero inside),
// and the value is then kept as hex.
bool textOf(const std::vector<uint8_t>& data, std::u16string* out) {
  if (data.size() < 2 || data.size() % 2) return false;
  size_t n = data.size() / 2;
  std::u16string s(n, u'\0');
  std::memcpy(s.data(), data.data(), data.size());
  if (s.back() != 0) return false;
  s.pop_back();
  if (s.find(u'\0') != std::u16string::npos) return false;
  *out = std::move(s);
  return true;
}

std::vector<uint8_t> textBytes(std::u16string_view s) {
  std::vector<uint8_t> out((s.size() + 1) * 2, 0);
  std::memcpy(out.data(), s.data(), s.size() * 2);
  return out;
}

void serializeKey(const RegistryStore::Key& k, const std::string& path, std::string& out) {
  out += "K " + path + "\n";
  for (const RegistryStore::Value& v : k.values) {
    std::u16string text;
    if ((v.type == REG_SZ) && textOf(v.data, &text)) {
      out += "S " + quote(v.name) + " " + quote(text) + "\n";
    } else if (v.type == REG_DWORD && v.data.size() == 4) {
      uint32_t n;
      std::memcpy(&n, v.data.data(), 4);
      out += "D " + quote(v.name) + " " + std::to_string(n) + "\n";
    } else {
      out += "H " + quote(v.name) + " " + std::to_string(v.type) + " " + hex(v.data) + "\n";
    }
  }
  for (const auto& sub : RegistryStore::sortedSubkeys(k)) serializeKey(*sub, path + " " + quote(sub->name), out);
}

bool writeAll(int fd, const std::string& text) {
  size_t limit = gWriteFault >= 0 ? std::min(text.size(), static_cast<size_t>(gWriteFault)) : text.size();
  size_t done = 0;
  while (done < limit) {
    ssize_t n = ::write(fd, text.data() + done, limit - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    done += static_cast<size_t>(n);
  }
  return limit == text.size();
}

bool makePrivateFolders(const std::string& dir) {
  if (dir.empty()) return true;
  struct stat sb;
  if (::stat(dir.c_str(), &sb) == 0) return S_ISDIR(sb.st_mode);
  size_t slash = dir.find_last_of('/');
  if (slash != std::string::npos && slash > 0 && !makePrivateFolders(dir.substr(0, slash))) return false;
  return ::mkdir(dir.c_str(), 0700) == 0 || errno == EEXIST;
}

}  // namespace

bool sameName(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (asciiUpper(a[i]) != asciiUpper(b[i])) return false;
  }
  return true;
}

const char16_t* RegistryStore::rootName(int i) { return i >= 0 && i < kRoots ? kRootNames[i] : u""; }

int RegistryStore::rootIndex(std::u16string_view name) {
  for (int i = 0; i < kRoots; ++i) {
    if (sameName(name, kRootNames[i])) return i;
  }
  return -1;
}

RegistryStore::RegistryStore(std::string file) : file_(std::move(file)) {
  for (int i = 0; i < kRoots; ++i) {
    roots_[i] = std::make_shared<Key>();
    roots_[i]->name = kRootNames[i];
  }
  if (!file_.empty()) read();
}

RegistryStore::Stamp RegistryStore::stampOf(const std::string& file) {
  Stamp st;
  struct stat sb;
  if (::stat(file.c_str(), &sb) != 0) return st;
  st.exists = true;
  st.dev = sb.st_dev;
  st.ino = sb.st_ino;
  st.size = static_cast<unsigned long long>(sb.st_size);
  st.mtimeNs = static_cast<long long>(sb.st_mtim.tv_sec) * 1000000000LL + sb.st_mtim.tv_nsec;
  return st;
}

// Reads the file into the (empty) store and notes which file it was.
bool RegistryStore::read() {
  stamp_ = stampOf(file_);
  std::ifstream f(file_, std::ios::binary);
  if (!f) return true;
  std::stringstream ss;
  ss << f.rdbuf();
  if (parse(ss.str())) return true;
  damaged_ = true;
  return false;
}

bool RegistryStore::pathOf(const Key& k, int* root, std::vector<std::u16string>* path) const {
  std::vector<std::u16string> rev;
  const Key* p = &k;
  while (p->parent) {
    rev.push_back(p->name);
    p = p->parent;
  }
  for (int i = 0; i < kRoots; ++i) {
    if (roots_[i].get() == p) {
      *root = i;
      path->assign(rev.rbegin(), rev.rend());
      return true;
    }
  }
  return false;  // a deleted key, or one of another store
}

void RegistryStore::record(Change::Kind kind, const Key& k) { record(kind, k, Value{}); }

void RegistryStore::record(Change::Kind kind, const Key& k, Value v) {
  if (quiet_ || file_.empty()) return;
  Change c{kind, 0, {}, std::move(v)};
  if (pathOf(k, &c.root, &c.path)) journal_.push_back(std::move(c));
}

// Makes a change again on this store; a change whose key is gone is
// dropped (the other session removed it).
void RegistryStore::apply(const Change& c) {
  std::shared_ptr<Key> k = roots_[c.root];
  for (size_t i = 0; k && i < c.path.size(); ++i) {
    if (c.kind == Change::CreateKey) {
      bool created;
      k = create(k, c.path[i], &created);
    } else {
      k = find(k, c.path[i]);
    }
  }
  if (!k) return;
  switch (c.kind) {
    case Change::SetValue: setValue(*k, c.value.name, c.value.type, c.value.data); break;
    case Change::RemoveValue: removeValue(*k, c.value.name); break;
    case Change::RemoveKey: removeKey(k); break;
    case Change::CreateKey: break;
  }
}

namespace {

void markDeleted(RegistryStore::Key& k) {
  k.deleted = true;
  k.parent = nullptr;
  for (auto& s : k.subkeys) markDeleted(*s);
  k.subkeys.clear();
}

void mergeKey(RegistryStore::Key& ours, RegistryStore::Key& theirs) {
  ours.values = std::move(theirs.values);
  std::vector<std::shared_ptr<RegistryStore::Key>> subs;
  for (auto& t : theirs.subkeys) {
    std::shared_ptr<RegistryStore::Key> match;
    for (auto& o : ours.subkeys) {
      if (o && sameName(o->name, t->name)) {
        match = o;
        o = nullptr;
        break;
      }
    }
    if (match) {
      match->name = t->name;
      mergeKey(*match, *t);
    } else {
      match = t;
      match->parent = &ours;
    }
    subs.push_back(match);
  }
  for (auto& o : ours.subkeys) {
    if (o) markDeleted(*o);
  }
  ours.subkeys = std::move(subs);
}

}  // namespace

void RegistryStore::adopt(RegistryStore& other) {
  for (int i = 0; i < kRoots; ++i) mergeKey(*roots_[i], *other.roots_[i]);
}

std::shared_ptr<RegistryStore::Key> RegistryStore::find(const std::shared_ptr<Key>& from,
                                                        std::u16string_view path) const {
  std::shared_ptr<Key> k = from;
  size_t pos = 0;
  while (k && pos < path.size()) {
    size_t end = path.find(u'\\', pos);
    if (end == std::u16string_view::npos) end = path.size();
    std::u16string_view part = path.substr(pos, end - pos);
    pos = end + 1;
    if (part.empty()) {
      if (end == path.size() || pos >= path.size()) break;  // a trailing "\"
      return nullptr;
    }
    std::shared_ptr<Key> next;
    for (auto& s : k->subkeys) {
      if (sameName(s->name, part)) {
        next = s;
        break;
      }
    }
    k = next;
  }
  return k;
}

std::shared_ptr<RegistryStore::Key> RegistryStore::create(const std::shared_ptr<Key>& from, std::u16string_view path,
                                                          bool* created) {
  bool made = false;
  std::shared_ptr<Key> k = makePath(from, path, &made);
  if (created) *created = made;
  if (k && made) record(Change::CreateKey, *k);
  return k;
}

std::shared_ptr<RegistryStore::Key> RegistryStore::makePath(const std::shared_ptr<Key>& from, std::u16string_view path,
                                                            bool* created) {
  if (created) *created = false;
  if (!from || from->deleted) return nullptr;
  // Check the whole path before making any of it.
  {
    size_t pos = 0;
    while (pos < path.size()) {
      size_t end = path.find(u'\\', pos);
      if (end == std::u16string_view::npos) end = path.size();
      size_t len = end - pos;
      if (len == 0 && end != path.size() - 1 && end != path.size()) return nullptr;
      if (len > 255) return nullptr;
      pos = end + 1;
    }
  }
  std::shared_ptr<Key> k = from;
  size_t pos = 0;
  while (pos < path.size()) {
    size_t end = path.find(u'\\', pos);
    if (end == std::u16string_view::npos) end = path.size();
    std::u16string_view part = path.substr(pos, end - pos);
    pos = end + 1;
    if (part.empty()) break;
    std::shared_ptr<Key> next;
    for (auto& s : k->subkeys) {
      if (sameName(s->name, part)) {
        next = s;
        break;
      }
    }
    if (!next) {
      next = std::make_shared<Key>();
      next->name = std::u16string(part);
      next->parent = k.get();
      k->subkeys.push_back(next);
      if (created) *created = true;
    } else if (created) {
      *created = false;
    }
    k = next;
  }
  return k;
}

bool RegistryStore::removeKey(const std::shared_ptr<Key>& key) {
  if (!key || !key->parent || !key->subkeys.empty()) return false;
  record(Change::RemoveKey, *key);
  auto& sibs = key->parent->subkeys;
  auto it = std::find(sibs.begin(), sibs.end(), key);
  if (it == sibs.end()) return false;
  key->deleted = true;
  key->parent = nullptr;
  sibs.erase(it);
  return true;
}

const RegistryStore::Value* RegistryStore::value(const Key& k, std::u16string_view name) {
  for (const Value& v : k.values) {
    if (sameName(v.name, name)) return &v;
  }
  return nullptr;
}

void RegistryStore::setValue(Key& k, std::u16string_view name, uint32_t type, std::vector<uint8_t> data) {
  record(Change::SetValue, k, Value{std::u16string(name), type, data});
  for (Value& v : k.values) {
    if (sameName(v.name, name)) {
      v.type = type;
      v.data = std::move(data);
      return;
    }
  }
  k.values.push_back(Value{std::u16string(name), type, std::move(data)});
}

bool RegistryStore::removeValue(Key& k, std::u16string_view name) {
  for (auto it = k.values.begin(); it != k.values.end(); ++it) {
    if (sameName(it->name, name)) {
      record(Change::RemoveValue, k, Value{std::u16string(name), 0, {}});
      k.values.erase(it);
      return true;
    }
  }
  return false;
}

std::vector<std::shared_ptr<RegistryStore::Key>> RegistryStore::sortedSubkeys(const Key& k) {
  std::vector<std::shared_ptr<Key>> out = k.subkeys;
  std::stable_sort(out.begin(), out.end(), [](const auto& a, const auto& b) {
    size_t n = std::min(a->name.size(), b->name.size());
    for (size_t i = 0; i < n; ++i) {
      char16_t x = asciiUpper(a->name[i]), y = asciiUpper(b->name[i]);
      if (x != y) return x < y;
    }
    return a->name.size() < b->name.size();
  });
  return out;
}

std::string RegistryStore::serialize() const {
  std::string out = "ZEPK registry 1\n";
  for (int i = 0; i < kRoots; ++i) serializeKey(*roots_[i], quote(kRootNames[i]), out);
  return out;
}

bool RegistryStore::parse(std::string_view text) {
  // What the file holds is no change of this session's.
  struct Quiet {
    bool& q;
    bool was;
    explicit Quiet(bool& b) : q(b), was(b) { q = true; }
    ~Quiet() { q = was; }
  } quiet(quiet_);
  bool ok = true;
  std::shared_ptr<Key> cur;
  size_t pos = 0;
  bool first = true;
  while (pos < text.size()) {
    size_t nl = text.find('\n', pos);
    if (nl == std::string_view::npos) nl = text.size();
    std::string_view line = text.substr(pos, nl - pos);
    pos = nl + 1;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (first) {
      first = false;
      if (line.rfind("ZEPK registry", 0) == 0) continue;
      ok = false;  // no header: read what can be read
    }
    if (line.empty()) continue;
    char kind = line[0];
    size_t p = 1;
    if (kind == 'K') {
      std::u16string part;
      if (!unquote(line, &p, &part)) {
        ok = false;
        cur = nullptr;
        continue;
      }
      int r = rootIndex(part);
      if (r < 0) {
        ok = false;
        cur = nullptr;
        continue;
      }
      std::shared_ptr<Key> k = roots_[r];
      while (k && p < line.size()) {
        if (!unquote(line, &p, &part) || part.empty() || part.find(u'\\') != std::u16string::npos) {
          k = nullptr;
          break;
        }
        bool created = false;
        k = create(k, part, &created);
      }
      if (!k) ok = false;
      cur = k;
      continue;
    }
    std::u16string name;
    if ((kind != 'S' && kind != 'D' && kind != 'H') || !cur || !unquote(line, &p, &name)) {
      ok = false;
      continue;
    }
    std::string_view rest = line.substr(std::min(p, line.size()));
    while (!rest.empty() && rest.front() == ' ') rest.remove_prefix(1);
    if (kind == 'S') {
      std::u16string value;
      size_t q = 0;
      if (!unquote(rest, &q, &value)) {
        ok = false;
        continue;
      }
      setValue(*cur, name, REG_SZ, textBytes(value));
    } else if (kind == 'D') {
      std::string digits(rest);
      char* end = nullptr;
      errno = 0;
      unsigned long long n = std::strtoull(digits.c_str(), &end, 10);
      if (digits.empty() || *end || errno || n > 0xFFFFFFFFull) {
        ok = false;
        continue;
      }
      uint32_t v = static_cast<uint32_t>(n);
      std::vector<uint8_t> data(4);
      std::memcpy(data.data(), &v, 4);
      setValue(*cur, name, REG_DWORD, std::move(data));
    } else {
      size_t sp = rest.find(' ');
      std::string type(rest.substr(0, sp));
      std::string_view bytes = sp == std::string_view::npos ? std::string_view() : rest.substr(sp + 1);
      char* end = nullptr;
      unsigned long t = std::strtoul(type.c_str(), &end, 10);
      std::vector<uint8_t> data;
      if (type.empty() || *end || t > 0xFFFFFFFFul || !unhex(bytes, &data)) {
        ok = false;
        continue;
      }
      setValue(*cur, name, static_cast<uint32_t>(t), std::move(data));
    }
  }
  return ok;
}

bool RegistryStore::save() {
  if (file_.empty()) return true;
  size_t slash = file_.find_last_of('/');
  std::string dir = slash == std::string::npos ? std::string() : file_.substr(0, slash);
  if (!makePrivateFolders(dir)) return false;
  if (damaged_ && !keptDamaged_) {
    // What could not be read is kept for the user, not overwritten.
    std::ifstream in(file_, std::ios::binary);
    std::ofstream out(file_ + ".damaged", std::ios::binary | std::ios::trunc);
    if (in && out) out << in.rdbuf();
    keptDamaged_ = true;
  }
  // One session writes at a time.
  int lock = ::open((file_ + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (lock < 0) return false;
  struct Unlock {
    int fd;
    ~Unlock() { ::close(fd); }  // closing drops the lock
  } unlock{lock};
  while (::flock(lock, LOCK_EX) != 0) {
    if (errno != EINTR) return false;
  }
  if (!(stampOf(file_) == stamp_)) {
    // Another session wrote the file: take it, with this session's
    // changes made on it again.
    RegistryStore disk(file_);
    if (disk.damaged_) damaged_ = true;
    {
      struct Quiet {
        bool& q;
        explicit Quiet(bool& b) : q(b) { q = true; }
        ~Quiet() { q = false; }
      } quiet(disk.quiet_);
      for (const Change& c : journal_) disk.apply(c);
    }
    adopt(disk);
    stamp_ = disk.stamp_;
  }
  std::string tmp = file_ + ".tmp" + std::to_string(::getpid());
  int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return false;
  bool ok = writeAll(fd, serialize());
  if (gWriteFault >= 0) {
    // The simulated crash: the temporary file stays as it is, half written.
    gWriteFault = -1;
    ::close(fd);
    return false;
  }
  ok = ok && ::fsync(fd) == 0;
  ok = ::close(fd) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), file_.c_str()) != 0) {
    ::unlink(tmp.c_str());
    return false;
  }
  journal_.clear();
  stamp_ = stampOf(file_);
  return true;
}

void RegistryStore::setWriteFaultForTest(long bytes) { gWriteFault = bytes; }

std::string registryFile() {
  std::string base;
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  if (xdg && *xdg == '/') {
    base = xdg;
  } else {
    const char* home = std::getenv("HOME");
    base = std::string(home && *home ? home : "/tmp") + "/.config";
  }
  return base + "/zepk/registry";
}

namespace {
std::unique_ptr<RegistryStore>& storePtr() {
  static auto* p = new std::unique_ptr<RegistryStore>;
  return *p;
}
}  // namespace

// Declared in the Reg* implementation: forgets the open handles.
void dropRegistryHandles();

RegistryStore& registry() {
  auto& p = storePtr();
  if (!p) p = std::make_unique<RegistryStore>(registryFile());
  return *p;
}

void reloadRegistry() {
  dropRegistryHandles();
  storePtr().reset();
}

}  // namespace zepk::sys
