// The registry store behind the Reg* functions (host/wincompat.h): keys
// under five roots, names compared without regard to the case of ASCII
// letters and kept as first written, values of any type as bytes.
//
// The store lives in one text file, read when the store is made. Every
// change is written whole to a temporary file beside it, flushed to disk
// and renamed over the old one, so that a crash while writing leaves the
// old file as it was. A file that cannot be read in full is kept beside
// the new one (".damaged") before the first write replaces it.
//
// Several sessions may share the file. Writing takes a lock (a ".lock"
// file beside it); when another session wrote the file since this one
// last read or wrote it, the file is read again, this session's changes
// not yet written are made on it, and the store takes that as its state,
// so that no session's changes are lost.
//
// File format, UTF-8, one item a line:
//   ZEPK registry 1
//   K "HKEY_CURRENT_USER" "Software" "Zepk"      a key, by its path
//   S "name" "text"                             REG_SZ of the key above
//   D "name" 42                                 REG_DWORD
//   H "name" 3 01ff...                          any other type, as hex
// Strings are quoted with \" \\ \n \r \t and \uXXXX for what is not text.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zepk::sys {

class RegistryStore {
 public:
  struct Value {
    std::u16string name;
    uint32_t type = 0;
    std::vector<uint8_t> data;
  };
  struct Key {
    std::u16string name;
    Key* parent = nullptr;
    std::vector<std::shared_ptr<Key>> subkeys;
    std::vector<Value> values;
    bool deleted = false;  // removed while a handle held it
  };

  // The five roots, in the order of HKEY_CLASSES_ROOT, HKEY_CURRENT_USER,
  // HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CURRENT_CONFIG.
  static constexpr int kRoots = 5;
  static const char16_t* rootName(int i);
  // The root of a name ("HKEY_CURRENT_USER", any case), -1 for none.
  static int rootIndex(std::u16string_view name);

  // A store kept in the file (read now if it exists); with an empty name,
  // a store in memory only.
  explicit RegistryStore(std::string file);

  std::shared_ptr<Key> root(int i) const { return roots_[i]; }
  // The key at a path of names separated by "\" under a key; null if a
  // part is missing. An empty path is the key itself.
  std::shared_ptr<Key> find(const std::shared_ptr<Key>& from, std::u16string_view path) const;
  // The same, making what is missing; *created tells whether the last part
  // was new. Null for a path with an empty part or a name over 255.
  std::shared_ptr<Key> create(const std::shared_ptr<Key>& from, std::u16string_view path, bool* created);
  // Removes a key with no subkeys (false otherwise).
  bool removeKey(const std::shared_ptr<Key>& key);

  static const Value* value(const Key& k, std::u16string_view name);
  void setValue(Key& k, std::u16string_view name, uint32_t type, std::vector<uint8_t> data);
  bool removeValue(Key& k, std::u16string_view name);
  // Subkeys in the order of their names without regard to case, as the
  // system enumerates them.
  static std::vector<std::shared_ptr<Key>> sortedSubkeys(const Key& k);

  // Writes the file (a store in memory only does nothing). False when the
  // file could not be written; the old file then stays, and the changes
  // are written with the next save.
  bool save();
  // Changes made since the last save.
  size_t pendingChanges() const { return journal_.size(); }
  const std::string& file() const { return file_; }
  // Whether the file was read with lines it could not make sense of.
  bool damaged() const { return damaged_; }

  // The text of the file for the store as it is.
  std::string serialize() const;
  // Reads text in the file's format into the store; false if a line was
  // not understood (the rest is still read).
  bool parse(std::string_view text);

  // Tests: the next save stops after this many bytes of the temporary
  // file, as a crash would (negative: no fault).
  static void setWriteFaultForTest(long bytes);

 private:
  // A change, by the path of its key, so that it can be made again on the
  // file another session wrote.
  struct Change {
    enum Kind { SetValue, RemoveValue, CreateKey, RemoveKey } kind;
    int root;
    std::vector<std::u16string> path;
    Value value;  // name, and for SetValue its type and data
  };
  struct Stamp {
    bool exists = false;
    unsigned long long dev = 0, ino = 0, size = 0;
    long long mtimeNs = 0;
    bool operator==(const Stamp&) const = default;
  };
  static Stamp stampOf(const std::string& file);
  bool pathOf(const Key& k, int* root, std::vector<std::u16string>* path) const;
  void record(Change::Kind kind, const Key& k);
  void record(Change::Kind kind, const Key& k, Value v);
  void apply(const Change& c);
  std::shared_ptr<Key> makePath(const std::shared_ptr<Key>& from, std::u16string_view path, bool* created);
  // Takes the other store's tree as this one's, keeping the keys that
  // both have (open handles stay valid) and marking the others deleted.
  void adopt(RegistryStore& other);
  bool read();

  std::string file_;
  std::shared_ptr<Key> roots_[kRoots];
  std::vector<Change> journal_;
  Stamp stamp_;
  bool damaged_ = false;
  bool keptDamaged_ = false;
  bool quiet_ = false;  // reading or replaying: not a change to record
};

// The session's store, in $XDG_CONFIG_HOME/zepk/registry (else
// ~/.config/zepk/registry), made at the first use.
RegistryStore& registry();
std::string registryFile();
// Drops the session's store and its open handles; the next use reads the
// file again (tests, and a host told that the file changed).
void reloadRegistry();

// Names equal without regard to ASCII case.
bool sameName(std::u16string_view a, std::u16string_view b);

}  // namespace zepk::sys
