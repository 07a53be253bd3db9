// The registry store through the Reg* functions: keys and values as the
// toolkit uses them, the return codes it checks, names without regard to
// case, and the file: read back by a new store, written so that a crash
// leaves the old one.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "host/rxregsvc.h"
#include "host/system/hostenv.h"
#include "host/system/registry.h"
#include "host/wincompat.h"

namespace fs = std::filesystem;
using zepk::sys::RegistryStore;

namespace {

std::string readAll(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  std::stringstream ss;
  ss << f.rdbuf();
  return ss.str();
}

LSTATUS setText(HKEY k, const char16_t* name, const std::u16string& v) {
  return RegSetValueExW(k, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(v.c_str()),
                        static_cast<DWORD>((v.size() + 1) * 2));
}

LSTATUS setNumber(HKEY k, const char16_t* name, DWORD v) {
  return RegSetValueExW(k, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&v), 4);
}

std::u16string queryText(HKEY k, const char16_t* name) {
  DWORD type = 0, size = 0;
  if (RegQueryValueExW(k, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS || type != REG_SZ) return u"<none>";
  std::u16string buf(size / 2, u'\0');
  if (RegQueryValueExW(k, name, nullptr, &type, reinterpret_cast<BYTE*>(buf.data()), &size) != ERROR_SUCCESS)
    return u"<fail>";
  while (!buf.empty() && buf.back() == 0) buf.pop_back();
  return buf;
}

class Registry : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("zepk-reg-" + std::to_string(::getpid()) + "-" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    ::setenv("XDG_CONFIG_HOME", dir_.c_str(), 1);
    zepk::sys::reloadRegistry();
  }
  void TearDown() override {
    zepk::sys::reloadRegistry();
    fs::remove_all(dir_);
  }
  std::string file() const { return (dir_ / "zepk" / "registry").string(); }
  fs::path dir_;
};

TEST_F(Registry, KeysAndValuesWithTheSystemsReturnCodes) {
  HKEY k = nullptr;
  DWORD disp = 0;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"Software\\Zepk\\Test", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &k,
                            &disp),
            ERROR_SUCCESS);
  EXPECT_EQ(disp, static_cast<DWORD>(REG_CREATED_NEW_KEY));
  EXPECT_EQ(setText(k, u"Name", u"测站 A"), ERROR_SUCCESS);
  EXPECT_EQ(setNumber(k, u"Count", 42), ERROR_SUCCESS);
  EXPECT_EQ(setText(k, nullptr, u"default"), ERROR_SUCCESS);

  // Names are found in any case and keep the case they were made with.
  HKEY k2 = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, u"SOFTWARE\\zepk\\TEST", 0, nullptr, 0, KEY_READ, nullptr, &k2, &disp),
            ERROR_SUCCESS);
  EXPECT_EQ(disp, static_cast<DWORD>(REG_OPENED_EXISTING_KEY));
  EXPECT_EQ(queryText(k2, u"NAME"), u"测站 A");
  EXPECT_EQ(queryText(k2, u""), u"default");
  DWORD type = 0, n = 0, size = 4;
  ASSERT_EQ(RegQueryValueExW(k2, u"count", nullptr, &type, reinterpret_cast<BYTE*>(&n), &size), ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(n, 42u);

  // A buffer too small gives the size needed.
  BYTE small[4];
  size = sizeof small;
  EXPECT_EQ(RegQueryValueExW(k2, u"Name", nullptr, &type, small, &size), ERROR_MORE_DATA);
  EXPECT_EQ(size, 10u);  // four characters and the zero
  EXPECT_EQ(RegQueryValueExW(k2, u"Missing", nullptr, &type, nullptr, &size), ERROR_FILE_NOT_FOUND);

  // Enumeration: values in the order made, subkeys by name.
  WCHAR name[64];
  DWORD cch = 64;
  ASSERT_EQ(RegEnumValueW(k2, 0, name, &cch, nullptr, &type, nullptr, nullptr), ERROR_SUCCESS);
  EXPECT_EQ(std::u16string(name), u"Name");
  EXPECT_EQ(cch, 4u);
  cch = 64;
  EXPECT_EQ(RegEnumValueW(k2, 3, name, &cch, nullptr, nullptr, nullptr, nullptr), ERROR_NO_MORE_ITEMS);
  cch = 2;
  EXPECT_EQ(RegEnumValueW(k2, 0, name, &cch, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
  HKEY sub = nullptr;
  for (const char16_t* s : {u"beta", u"Alpha", u"gamma"}) {
    ASSERT_EQ(RegCreateKeyExW(k, s, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &sub, nullptr), ERROR_SUCCESS);
    RegCloseKey(sub);
  }
  std::u16string order;
  for (DWORD i = 0;; ++i) {
    cch = 64;
    if (RegEnumKeyExW(k, i, name, &cch, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    order += std::u16string(name) + u",";
  }
  EXPECT_EQ(order, u"Alpha,beta,gamma,");
  DWORD subs = 0, values = 0, maxName = 0;
  ASSERT_EQ(RegQueryInfoKeyW(k, nullptr, nullptr, nullptr, &subs, &maxName, nullptr, &values, nullptr, nullptr, nullptr,
                             nullptr),
            ERROR_SUCCESS);
  EXPECT_EQ(subs, 3u);
  EXPECT_EQ(values, 3u);
  EXPECT_EQ(maxName, 5u);

  // A key with subkeys is not deleted; values and empty keys are.
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u"Software\\Zepk\\Test"), ERROR_ACCESS_DENIED);
  EXPECT_EQ(RegDeleteKeyW(k, u"ALPHA"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteKeyW(k, u"Alpha"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegDeleteValueW(k, u"name"), ERROR_SUCCESS);
  EXPECT_EQ(RegDeleteValueW(k, u"name"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(queryText(k2, u"Name"), u"<none>");

  // A handle of a key deleted meanwhile says so.
  HKEY beta = nullptr;
  ASSERT_EQ(RegOpenKeyExW(k, u"beta", 0, KEY_READ, &beta), ERROR_SUCCESS);
  ASSERT_EQ(RegDeleteKeyW(k, u"beta"), ERROR_SUCCESS);
  EXPECT_EQ(setNumber(beta, u"x", 1), ERROR_KEY_DELETED);
  EXPECT_EQ(RegCloseKey(beta), ERROR_SUCCESS);
  EXPECT_EQ(RegCloseKey(beta), ERROR_INVALID_HANDLE);

  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Zepk\\Test", 0, KEY_READ, &sub), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(RegOpenKeyExW(reinterpret_cast<HKEY>(uintptr_t{12345}), u"x", 0, KEY_READ, &sub), ERROR_INVALID_HANDLE);
  EXPECT_EQ(setNumber(k, u"bad", 1), ERROR_SUCCESS);
  EXPECT_EQ(RegSetValueExW(k, u"bad", 0, REG_DWORD, reinterpret_cast<const BYTE*>("ab"), 2), ERROR_INVALID_PARAMETER);
  RegCloseKey(k);
  RegCloseKey(k2);
}

TEST_F(Registry, SurvivesARestartAndACrashWhileWriting) {
  HKEY k = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Zepk\\Keep", 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &k,
                            nullptr),
            ERROR_SUCCESS);
  // Text that needs quoting in the file, and a value of another type.
  std::u16string tricky = u"a \"quoted\" \\ path\nsecond line\t中文";
  tricky += static_cast<char16_t>(0xD800);  // a lone surrogate half
  ASSERT_EQ(setText(k, u"Tricky", tricky), ERROR_SUCCESS);
  ASSERT_EQ(setNumber(k, u"N", 0xFFFFFFFFu), ERROR_SUCCESS);
  const BYTE bin[] = {0, 1, 0xFE, 0xFF};
  ASSERT_EQ(RegSetValueExW(k, u"Bin", 0, REG_BINARY, bin, 4), ERROR_SUCCESS);
  RegCloseKey(k);
  std::string before = readAll(file());
  ASSERT_FALSE(before.empty());

  // A new store (the next session) reads it all back.
  zepk::sys::reloadRegistry();
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"software\\zepk\\keep", 0, KEY_READ, &k), ERROR_SUCCESS);
  EXPECT_EQ(queryText(k, u"Tricky"), tricky);
  DWORD type = 0, n = 0, size = 4;
  ASSERT_EQ(RegQueryValueExW(k, u"N", nullptr, &type, reinterpret_cast<BYTE*>(&n), &size), ERROR_SUCCESS);
  EXPECT_EQ(n, 0xFFFFFFFFu);
  BYTE back[8];
  size = sizeof back;
  ASSERT_EQ(RegQueryValueExW(k, u"Bin", nullptr, &type, back, &size), ERROR_SUCCESS);
  EXPECT_EQ(type, static_cast<DWORD>(REG_BINARY));
  ASSERT_EQ(size, 4u);
  EXPECT_EQ(std::memcmp(back, bin, 4), 0);

  // The process dies half way through writing the next change: the file
  // on disk is the old one, whole, and the next session sees the old values.
  RegistryStore::setWriteFaultForTest(20);
  EXPECT_EQ(setNumber(k, u"N", 7), ERROR_WRITE_FAULT);
  RegCloseKey(k);
  EXPECT_EQ(readAll(file()), before);
  zepk::sys::reloadRegistry();
  ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Software\\Zepk\\Keep", 0, KEY_READ, &k), ERROR_SUCCESS);
  size = 4;
  ASSERT_EQ(RegQueryValueExW(k, u"N", nullptr, &type, reinterpret_cast<BYTE*>(&n), &size), ERROR_SUCCESS);
  EXPECT_EQ(n, 0xFFFFFFFFu);
  // The half-written temporary file is no registry: nothing reads it.
  bool sawTemp = false;
  for (auto& e : fs::directory_iterator(dir_ / "zepk")) sawTemp |= e.path().filename().string().find(".tmp") != std::string::npos;
  EXPECT_TRUE(sawTemp);
  RegCloseKey(k);
}

TEST_F(Registry, DamagedFileIsReadAsFarAsItGoesAndKept) {
  fs::create_directories(dir_ / "zepk");
  {
    std::ofstream f(file(), std::ios::binary);
    f << "ZEPK registry 1\nK \"HKEY_CURRENT_USER\" \"A\"\nS \"good\" \"yes\"\nS \"broken \nD \"n\" notanumber\n"
         "K \"HKEY_NOWHERE\" \"B\"\nS \"lost\" \"x\"\nK \"HKEY_CURRENT_USER\" \"C\"\nD \"n\" 5\n\x01\x02garbage";
  }
  std::string original = readAll(file());
  zepk::sys::reloadRegistry();
  EXPECT_TRUE(zepk::sys::registry().damaged());
  HKEY k = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"A", 0, KEY_READ, &k), ERROR_SUCCESS);
  EXPECT_EQ(queryText(k, u"good"), u"yes");
  RegCloseKey(k);
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, u"C", 0, KEY_ALL_ACCESS, &k), ERROR_SUCCESS);
  // The first write keeps what could not be read beside the new file.
  ASSERT_EQ(setNumber(k, u"m", 1), ERROR_SUCCESS);
  RegCloseKey(k);
  EXPECT_EQ(readAll(file() + ".damaged"), original);
}

TEST_F(Registry, TwoSessionsSharingTheFileKeepEachOthersChanges) {
  auto text = [](const char16_t* s) {
    std::u16string v(s);
    std::vector<uint8_t> b((v.size() + 1) * 2, 0);
    std::memcpy(b.data(), v.data(), v.size() * 2);
    return b;
  };
  RegistryStore a(file()), b(file());
  auto ka = a.create(a.root(1), u"Software\\Zepk\\A", nullptr);
  a.setValue(*ka, u"v", REG_SZ, text(u"a1"));
  auto gone = a.create(a.root(1), u"Software\\Zepk\\Gone", nullptr);
  ASSERT_TRUE(a.save());
  // b read the file before a wrote it; its own changes keep a's.
  auto kb = b.create(b.root(1), u"Software\\Zepk\\B", nullptr);
  b.setValue(*kb, u"w", REG_SZ, text(u"b1"));
  ASSERT_TRUE(b.save());
  EXPECT_EQ(b.pendingChanges(), 0u);
  ASSERT_NE(b.find(b.root(1), u"software\\zepk\\a"), nullptr);
  auto bGone = b.find(b.root(1), u"Software\\Zepk\\Gone");
  ASSERT_NE(bGone, nullptr);
  ASSERT_TRUE(b.removeKey(bGone));
  ASSERT_TRUE(b.save());
  // a changes its value again: the file has both sessions' keys, a sees
  // b's key now, and its handle of the key b removed is of a deleted key.
  a.setValue(*ka, u"v", REG_SZ, text(u"a2"));
  ASSERT_TRUE(a.save());
  EXPECT_TRUE(gone->deleted);
  auto seen = a.find(a.root(1), u"Software\\Zepk\\B");
  ASSERT_NE(seen, nullptr);
  ASSERT_NE(RegistryStore::value(*seen, u"W"), nullptr);
  RegistryStore c(file());
  auto ca = c.find(c.root(1), u"Software\\Zepk\\A");
  ASSERT_NE(ca, nullptr);
  const RegistryStore::Value* v = RegistryStore::value(*ca, u"v");
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v->data, text(u"a2"));
  EXPECT_NE(c.find(c.root(1), u"Software\\Zepk\\B"), nullptr);
  EXPECT_EQ(c.find(c.root(1), u"Software\\Zepk\\Gone"), nullptr);
  // The same key kept by both is the same object after the merge: a's
  // handle of A still reaches what the file holds.
  EXPECT_EQ(a.find(a.root(1), u"Software\\Zepk\\A"), ka);
}

TEST(RegistryFile, RandomTreesRoundTripAndRandomTextNeverBreaksTheReader) {
  std::mt19937 rng(20261122);
  auto pick = [&](int n) { return static_cast<int>(rng() % static_cast<unsigned>(n)); };
  // Names and texts from characters that need care in the file.
  const std::u16string alphabet = u"aZ0 \"\\\n\r\t;=[]测站\x01\x7F\xD800\xDC00\xFFFF";
  auto word = [&](int maxLen, bool allowBackslash) {
    std::u16string w;
    int n = 1 + pick(maxLen);
    for (int i = 0; i < n; ++i) {
      char16_t c = alphabet[static_cast<size_t>(pick(static_cast<int>(alphabet.size())))];
      if (c == u'\\' && !allowBackslash) c = u'_';
      w += c;
    }
    return w;
  };
  for (int round = 0; round < 30; ++round) {
    RegistryStore a("");
    for (int i = 0; i < 40; ++i) {
      auto k = a.root(pick(RegistryStore::kRoots));
      int depth = 1 + pick(3);
      for (int d = 0; d < depth && k; ++d) k = a.create(k, word(6, false), nullptr);
      ASSERT_NE(k, nullptr);
      std::vector<uint8_t> data;
      uint32_t type = pick(3) == 0 ? uint32_t(REG_DWORD) : pick(2) == 0 ? uint32_t(REG_SZ) : uint32_t(pick(12));
      if (type == REG_DWORD) {
        data.resize(4);
        for (auto& b : data) b = static_cast<uint8_t>(rng());
      } else if (type == REG_SZ && pick(4)) {
        std::u16string t = word(20, true);
        for (char16_t& c : t) if (c == 0) c = u'x';
        data.resize((t.size() + 1) * 2, 0);
        std::memcpy(data.data(), t.data(), t.size() * 2);
      } else {
        data.resize(static_cast<size_t>(pick(9)));
        for (auto& b : data) b = static_cast<uint8_t>(rng());
      }
      a.setValue(*k, pick(5) ? word(8, true) : u"", type, data);
    }
    std::string text = a.serialize();
    RegistryStore b("");
    ASSERT_TRUE(b.parse(text)) << text;
    EXPECT_EQ(b.serialize(), text);
  }
  // Damaged text of every kind: read as far as it goes, never a crash.
  for (int round = 0; round < 300; ++round) {
    std::string junk = round % 2 ? "ZEPK registry 1\n" : "";
    int n = pick(200);
    const char* pieces[] = {"K ", "S ", "D ", "H ", "\"", "\\", "\\u", "\\uD8", "\n", " ", "HKEY_USERS", "12", "ff", "x"};
    for (int i = 0; i < n; ++i) {
      if (pick(3)) junk += pieces[pick(14)];
      else junk += static_cast<char>(rng());
    }
    RegistryStore c("");
    c.parse(junk);
    c.serialize();
  }
}

TEST_F(Registry, HostSettingsLastAndNameTheSupportPath) {
  EXPECT_EQ(zepk::sys::profileKey(), u"Software\\Zepk\\Host\\R17.1\\Profiles\\<<Unnamed Profile>>");
  ASSERT_EQ(acedSetEnv(u"ACAD", u"C:\\Survey\\Support; /srv/zepk ;;"), RTNORM);
  ::setenv("ZEPK_TEST_FALLBACK", "from the process", 1);
  zepk::sys::reloadRegistry();  // the next session
  ACHAR buf[64];
  ASSERT_EQ(acedGetEnv(u"acad", buf, 64), RTNORM);
  EXPECT_EQ(std::u16string(buf), u"C:\\Survey\\Support; /srv/zepk ;;");
  EXPECT_EQ(zepk::sys::supportFolders(), (std::vector<std::u16string>{u"C:\\Survey\\Support", u"/srv/zepk"}));
  EXPECT_EQ(acedGetEnv(u"ACAD", buf, 10), RTERROR);  // too small for the value
  ASSERT_EQ(acedGetEnv(u"ZEPK_TEST_FALLBACK", buf, 64), RTNORM);
  EXPECT_EQ(std::u16string(buf), u"from the process");
  // A setting shadows the process environment.
  ASSERT_EQ(acedSetEnv(u"ZEPK_TEST_FALLBACK", u"mine"), RTNORM);
  ASSERT_EQ(acedGetEnv(u"ZEPK_TEST_FALLBACK", buf, 64), RTNORM);
  EXPECT_EQ(std::u16string(buf), u"mine");
  ::unsetenv("ZEPK_TEST_FALLBACK");
  EXPECT_EQ(acedGetEnv(u"ZEPK_NOTHING_HERE", buf, 64), RTERROR);
  HKEY k = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, (zepk::sys::profileKey() + u"\\General").c_str(), 0, KEY_READ, &k),
            ERROR_SUCCESS);
  RegCloseKey(k);
}

TEST_F(Registry, ApplicationRecordUnderTheProductKey) {
  EXPECT_EQ(std::u16string(acrxProductKey()), u"Software\\Zepk\\Host\\R17.1");
  AcadAppInfo info;
  info.setAppName(u"ZEPK API");
  info.setModuleName(u"/opt/zepk/zepkapi.arx");
  info.setAppDesc(u"ZEPK API 2018.01.02");
  info.setLoadReason(14);
  EXPECT_EQ(info.writeToRegistry(false, false), AcadAppInfo::kNoError);
  EXPECT_EQ(info.writeToRegistry(false, true), AcadAppInfo::kNoError);
  for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    HKEY k = nullptr;
    ASSERT_EQ(RegOpenKeyExW(root, u"Software\\Zepk\\Host\\R17.1\\Applications\\ZEPK API", 0, KEY_READ, &k),
              ERROR_SUCCESS);
    EXPECT_EQ(queryText(k, u"DESCRIPTION"), u"ZEPK API 2018.01.02");
    EXPECT_EQ(queryText(k, u"LOADER"), u"/opt/zepk/zepkapi.arx");
    DWORD type = 0, n = 0, size = 4;
    ASSERT_EQ(RegQueryValueExW(k, u"LOADCTRLS", nullptr, &type, reinterpret_cast<BYTE*>(&n), &size), ERROR_SUCCESS);
    EXPECT_EQ(type, static_cast<DWORD>(REG_DWORD));
    EXPECT_EQ(n, 14u);
    RegCloseKey(k);
  }
  AcadAppInfo back;
  back.setAppName(u"zepk api");
  ASSERT_EQ(back.readFromRegistry(), AcadAppInfo::kNoError);
  EXPECT_EQ(std::u16string(back.appDesc()), u"ZEPK API 2018.01.02");
  EXPECT_EQ(back.loadReason(), 14);
}

}  // namespace
