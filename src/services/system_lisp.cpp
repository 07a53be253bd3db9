// LISP functions of the files, paths and system family: thin edges over
// the host's file, registry, clipboard, window, folder, shortcut, program
// and download services. Paths are the host's: Windows-style with a drive
// mapped to a folder, or POSIX; "\" and "/" both separate.
//
// Each function keeps its own way of failing: the file functions from
// GetFolder to GetFiled in the colon style, SaveTextStr, ReadText and the
// two profile functions in the line dot style, the clipboard in the line
// bang style, the host's paths and window title in the plain style; the
// registry, shortcuts, programs, special folders and downloads say
// nothing and give no result.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "frame/lisp_bridge.h"
#include "host/acedwin.h"
#include "host/aced.h"
#include "host/ads.h"
#include "host/cstring.h"
#include "host/hostfile.h"
#include "host/rxregsvc.h"
#include "host/system/paths.h"
#include "host/system/shell.h"
#include "host/system/utf.h"
#include "host/wincompat.h"
#include "services/lisp.h"
#include "services/strings.h"
#include "services/system_lisp.h"
#include "services/textfiles.h"

namespace zepk::services {

namespace {

using frame::ArgReader;
using frame::MsgStyle;
using frame::RbBuilder;
using frame::fail;
using frame::failBadArg;
using frame::failTooFew;
using frame::failTooMany;

constexpr MsgStyle kFileStyle = MsgStyle::Colon;

int retT() {
  acedRetT();
  return RSRSLT;
}

int retNil() {
  acedRetNil();
  return RSRSLT;
}

int retBool(bool b) { return b ? retT() : retNil(); }

int retWide(const std::u16string& s) {
  acedRetStr(s.c_str());
  return RSRSLT;
}

bool text(resbuf** cur, std::u16string& s) { return RbGetCString(cur, s) == RTNORM; }

std::u16string upper(std::u16string s) {
  for (char16_t& c : s)
    if (c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
  return s;
}

bool sameName(const std::u16string& a, const std::u16string& b) { return upper(a) == upper(b); }

// A string argument read in order; false after the style's text.
bool required(ArgReader& in, std::u16string& s, int n) { return in.string(s, n); }

// The host's path as the operating system sees it.
std::string native(const std::u16string& path) { return sys::toNativePath(path); }

// ------------------------------------------------------------- registry

// The root named before the first "\", without regard to case; the rest is
// the subkey. Null for an unknown root.
HKEY splitRegistryPath(const std::u16string& path, std::u16string& subkey) {
  static const struct {
    const char16_t* name;
    HKEY key;
  } kRoots[] = {{u"HKEY_LOCAL_MACHINE", HKEY_LOCAL_MACHINE},
                {u"HKEY_CLASSES_ROOT", HKEY_CLASSES_ROOT},
                {u"HKEY_CURRENT_USER", HKEY_CURRENT_USER},
                {u"HKEY_USERS", HKEY_USERS},
                {u"HKEY_CURRENT_CONFIG", HKEY_CURRENT_CONFIG}};
  size_t cut = path.find(u'\\');
  std::u16string root = path.substr(0, cut);
  subkey = cut == std::u16string::npos ? std::u16string() : path.substr(cut + 1);
  for (const auto& r : kRoots)
    if (sameName(root, r.name)) return r.key;
  return nullptr;
}

// A registry key opened for the time of one call.
class Key {
 public:
  Key(const std::u16string& path, DWORD access, bool create) {
    std::u16string sub;
    HKEY root = splitRegistryPath(path, sub);
    if (!root) return;
    LSTATUS st = create ? RegCreateKeyExW(root, sub.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr,
                                          &key_, nullptr)
                        : RegOpenKeyExW(root, sub.c_str(), 0, access, &key_);
    if (st != ERROR_SUCCESS) key_ = nullptr;
  }
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

// A value as LISP sees it: an integer for a 32-bit number, a string for
// text; null for a value that is missing or of another type.
resbuf* registryValue(HKEY key, const std::u16string& name) {
  DWORD type = 0, size = 0;
  if (RegQueryValueExW(key, name.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS) return nullptr;
  std::vector<BYTE> data(size + 2, 0);
  if (RegQueryValueExW(key, name.c_str(), nullptr, &type, data.data(), &size) != ERROR_SUCCESS) return nullptr;
  if (type == REG_DWORD && size >= 4) {
    int32_t v = static_cast<int32_t>(data[0] | data[1] << 8 | data[2] << 16 | static_cast<uint32_t>(data[3]) << 24);
    return acutBuildList(v >= -32768 && v <= 32767 ? RTSHORT : RTLONG, static_cast<int>(v), 0);
  }
  if (type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ) return nullptr;
  std::u16string s(size / 2, u'\0');
  for (size_t i = 0; i < s.size(); ++i) s[i] = static_cast<char16_t>(data[2 * i] | data[2 * i + 1] << 8);
  s.resize(std::min(s.size(), s.find(u'\0')));
  return acutBuildList(RTSTR, s.c_str(), 0);
}

bool writeText(HKEY key, const std::u16string& name, const std::u16string& value) {
  return RegSetValueExW(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                        static_cast<DWORD>((value.size() + 1) * 2)) == ERROR_SUCCESS;
}

bool writeNumber(HKEY key, const std::u16string& name, int32_t v) {
  const uint32_t u = static_cast<uint32_t>(v);
  const BYTE b[4] = {static_cast<BYTE>(u), static_cast<BYTE>(u >> 8), static_cast<BYTE>(u >> 16),
                     static_cast<BYTE>(u >> 24)};
  return RegSetValueExW(key, name.c_str(), 0, REG_DWORD, b, 4) == ERROR_SUCCESS;
}

// A text value, or the text of a number value; empty when there is none.
std::u16string readText(HKEY key, const std::u16string& name) {
  resbuf* rb = registryValue(key, name);
  std::u16string out;
  if (rb && rb->restype == RTSTR) out = rb->resval.rstring;
  else if (rb && rb->restype == RTSHORT) out = sys::fromUtf8(std::to_string(rb->resval.rint));
  else if (rb && rb->restype == RTLONG) out = sys::fromUtf8(std::to_string(rb->resval.rlong));
  acutRelRb(rb);
  return out;
}

// ---------------------------------------------------------------- files

// Validity of a folder's path: the name rules of the file-name functions,
// with "/" taken as the separator it is at the operating-system boundary.
bool validFolderPath(std::u16string path) {
  std::replace(path.begin(), path.end(), u'/', u'\\');
  return isValidPath(CString(path));
}

bool isFolder(const std::u16string& path) {
  DWORD a = GetFileAttributesW(path.c_str());
  return a != INVALID_FILE_ATTRIBUTES && (a & FILE_ATTRIBUTE_DIRECTORY);
}

// Makes the folder and the parents it needs; true when it is there.
bool createFolders(const std::u16string& path) {
  if (path.empty()) return false;
  if (isFolder(path)) return true;
  size_t cut = path.find_last_of(u"\\/");
  if (cut != std::u16string::npos && cut > 0) {
    std::u16string parent = path.substr(0, cut);
    if (!(parent.size() == 2 && parent[1] == u':') && !createFolders(parent)) return false;
  }
  return CreateDirectoryW(path.c_str(), nullptr) || isFolder(path);
}

// Deletes a folder with all it holds, walking it by "<folder>\*.*".
bool deleteTree(const std::u16string& folder) {
  WIN32_FIND_DATAW fd;
  HANDLE h = FindFirstFileW((folder + u"\\*.*").c_str(), &fd);
  bool ok = true;
  if (h != INVALID_HANDLE_VALUE) {
    do {
      std::u16string name = fd.cFileName;
      if (name == u"." || name == u"..") continue;
      std::u16string path = folder + u"\\" + name;
      ok = ((fd.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? deleteTree(path) : DeleteFileW(path.c_str())) && ok;
    } while (FindNextFileW(h, &fd));
    FindClose(h);
  }
  return RemoveDirectoryW(folder.c_str()) && ok;
}

std::string encodeText(const std::u16string& s, UINT cp) {
  if (s.empty()) return {};
  int n = WideCharToMultiByte(cp, 0, s.data(), static_cast<int>(s.size()), nullptr, 0, nullptr, nullptr);
  std::string out(std::max(n, 0), '\0');
  if (n > 0) WideCharToMultiByte(cp, 0, s.data(), static_cast<int>(s.size()), out.data(), n, nullptr, nullptr);
  return out;
}

std::u16string specialFolder(int csidl) {
  WCHAR buf[MAX_PATH + 1] = {0};
  if (!SHGetSpecialFolderPathW(nullptr, buf, csidl, FALSE)) return {};
  return buf;
}

// Source and target, for copy, move and rename.
template <typename F>
int withTwoPaths(F op) {
  ArgReader in(kFileStyle);
  std::u16string source, target;
  if (!required(in, source, 1) || !required(in, target, 2) || !in.end()) return RTERROR;
  return retBool(op(source, target));
}

template <typename F>
int withOnePath(F op) {
  ArgReader in(kFileStyle);
  std::u16string path;
  if (!required(in, path, 1) || !in.end()) return RTERROR;
  return retBool(op(path));
}

// A URL ("scheme://...") is a link's target as it stands; a path is mapped.
bool writeLink(const std::u16string& linkPath, const std::u16string& target, const sys::Shortcut& more) {
  sys::Shortcut s = more;
  size_t scheme = target.find(u"://");
  const bool url = scheme != std::u16string::npos && scheme > 1 &&
                   target.find_first_of(u"\\/") > scheme;
  s.target = url ? sys::toUtf8(target) : native(target);
  return !sys::writeShortcut(native(linkPath), s).empty();
}

// (target link [description]) for the two link functions; the link's
// place is made by place().
template <typename F>
int createLink(F place) {
  resbuf* cur = acedGetArgs();
  std::u16string target, name, description;
  if (!text(&cur, target) || !text(&cur, name)) return RSRSLT;
  text(&cur, description);
  sys::Shortcut s;
  s.description = sys::toUtf8(description);
  if (writeLink(place(name), target, s)) return retT();
  acutPrintf(u"\n创建快捷方式失败...");
  return retNil();
}

}  // namespace

// ------------------------------------------------------------ the host

// The module's folder and the host's: this host keeps every module's file
// beside its program, so both are the program's folder, without a
// separator at the end.
int lispGetApiPath() {
  if (acedGetArgs()) return failTooMany(MsgStyle::Plain);
  WCHAR file[MAX_PATH + 1] = {0};
  GetModuleFileNameW(nullptr, file, MAX_PATH);
  std::u16string path = file;
  return retWide(path.substr(0, path.find_last_of(u"\\/")));
}

int lispGetAcadPath() { return lispGetApiPath(); }

int lispSetWindowText() {
  ArgReader in(MsgStyle::Plain);
  std::u16string title;
  if (!in.string(title, 0) || !in.end()) return RTERROR;
  return retBool(SetWindowTextW(adsw_acadMainWnd(), title.c_str()));
}

int lispGetWindowText() {
  if (acedGetArgs()) return failTooMany(MsgStyle::Plain);
  HWND w = adsw_acadMainWnd();
  std::u16string title(GetWindowTextLengthW(w) + 1, u'\0');
  title.resize(GetWindowTextW(w, title.data(), static_cast<int>(title.size())));
  return retWide(title);
}

// ------------------------------------------------------------- registry

int lispRegistryRead() {
  resbuf* cur = acedGetArgs();
  std::u16string path, name;
  if (!text(&cur, path) || !text(&cur, name)) return RSRSLT;
  Key key(path, KEY_QUERY_VALUE, false);
  resbuf* value = key.get() ? registryValue(key.get(), name) : nullptr;
  if (!value) return retNil();
  acedRetVal(value);
  acutRelRb(value);
  return RSRSLT;
}

// (ZEPK-Registry-Write path name [value]): an integer is written as a
// 32-bit number, a string as text, no value as empty text.
int lispRegistryWrite() {
  resbuf* cur = acedGetArgs();
  std::u16string path, name, s;
  if (!text(&cur, path) || !text(&cur, name)) return RSRSLT;
  int32_t number = 0;
  const bool isNumber = cur && (cur->restype == RTSHORT || cur->restype == RTLONG);
  if (isNumber) RbGetLong(&cur, number);
  else if (cur && !text(&cur, s)) return RSRSLT;
  Key key(path, KEY_QUERY_VALUE | KEY_SET_VALUE, true);
  if (!key.get()) return retNil();
  return retBool(isNumber ? writeNumber(key.get(), name, number) : writeText(key.get(), name, s));
}

int lispRegistryDelete() {
  resbuf* cur = acedGetArgs();
  std::u16string path, name;
  if (!text(&cur, path) || !text(&cur, name)) return RSRSLT;
  Key key(path, KEY_SET_VALUE, false);
  return retBool(key.get() && RegDeleteValueW(key.get(), name.c_str()) == ERROR_SUCCESS);
}

// (ZEPK-Registry-descendents path): ((subkey ...) ((name . value) ...)),
// nil when the key cannot be opened.
int lispRegistryDescendents() {
  resbuf* cur = acedGetArgs();
  std::u16string path;
  if (!text(&cur, path)) return RSRSLT;
  Key key(path, KEY_READ, false);
  DWORD subkeys = 0, maxSubkey = 0, values = 0, maxValueName = 0;
  if (!key.get() || RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &subkeys, &maxSubkey, nullptr, &values,
                                     &maxValueName, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
    return retNil();
  RbBuilder out;
  out.add(acutBuildList(RTLB, RTLB, 0));
  for (DWORD i = 0; i < subkeys; ++i) {
    std::u16string name(maxSubkey + 1, u'\0');
    DWORD len = static_cast<DWORD>(name.size());
    if (RegEnumKeyExW(key.get(), i, name.data(), &len, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    name.resize(len);
    out.add(acutBuildList(RTSTR, name.c_str(), 0));
  }
  out.add(acutBuildList(RTLE, RTLB, 0));
  for (DWORD i = 0; i < values; ++i) {
    std::u16string name(maxValueName + 1, u'\0');
    DWORD len = static_cast<DWORD>(name.size());
    if (RegEnumValueW(key.get(), i, name.data(), &len, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    name.resize(len);
    resbuf* value = registryValue(key.get(), name);
    if (!value) continue;
    out.add(acutBuildList(RTLB, RTSTR, name.c_str(), RTDOTE, 0));
    out.add(value);
    out.add(acutBuildList(RTLE, 0));
  }
  out.add(acutBuildList(RTLE, RTLE, 0));
  return frame::retList(out.release());
}

// ------------------------------------------------ programs and shortcuts

// (ZEPK-Sys-Cmd command): what the command printed, through /bin/sh.
int lispSysCmd() {
  resbuf* cur = acedGetArgs();
  std::u16string command;
  std::string output;
  if (!text(&cur, command) || sys::runCommand(sys::toUtf8(command), &output) < 0) return RSRSLT;
  return retWide(sys::fromUtf8(output));
}

int lispSysCreateLink() {
  return createLink([](const std::u16string& link) { return link; });
}

// The link is made in the desktop folder under the name given.
int lispSysCreateDesktopLink() {
  return createLink(
      [](const std::u16string& name) { return specialFolder(CSIDL_DESKTOPDIRECTORY) + u"/" + name; });
}

// (ZEPK-File-ShortCut link target [arguments folder description])
int lispFileShortCut() {
  resbuf* cur = acedGetArgs();
  std::u16string link, target, arguments, folder, description;
  if (!text(&cur, link) || !text(&cur, target)) return RSRSLT;
  if (text(&cur, arguments) && text(&cur, folder)) text(&cur, description);
  sys::Shortcut s;
  s.arguments = sys::toUtf8(arguments);
  s.workingDir = folder.empty() ? std::string() : native(folder);
  s.description = sys::toUtf8(description);
  return retBool(writeLink(link, target, s));
}

// ------------------------------------------------------------ clipboard

int lispGetClipBoardText() {
  if (acedGetArgs()) return failTooMany(MsgStyle::LineBang);
  if (!OpenClipboard(nullptr)) return retNil();
  HANDLE h = GetClipboardData(CF_UNICODETEXT);
  const auto* p = h ? static_cast<const char16_t*>(GlobalLock(h)) : nullptr;
  std::u16string s = p ? p : u"";
  if (h) GlobalUnlock(h);
  CloseClipboard();
  return p ? retWide(s) : retNil();
}

int lispSetClipBoardText() {
  ArgReader in(MsgStyle::LineBang);
  std::u16string s;
  if (!in.string(s, 1) || !in.end()) return RTERROR;
  if (!OpenClipboard(nullptr)) {
    AfxMessageBox(u"无法打开粘贴板");
    return retNil();
  }
  if (!EmptyClipboard()) {
    CloseClipboard();
    AfxMessageBox(u"无法清空粘贴板");
    return retNil();
  }
  HGLOBAL mem = GlobalAlloc(GMEM_MOVEABLE, (s.size() + 1) * sizeof(char16_t));
  if (auto* p = mem ? static_cast<char16_t*>(GlobalLock(mem)) : nullptr) {
    std::copy(s.c_str(), s.c_str() + s.size() + 1, p);
    GlobalUnlock(mem);
  }
  const bool ok = mem && SetClipboardData(CF_UNICODETEXT, mem);
  if (mem && !ok) GlobalFree(mem);
  CloseClipboard();
  return retBool(ok);
}

// ------------------------------------------------------- files, folders

// (ZEPK-File-GetFolder [prompt]): a folder typed on the command line; nil
// when none is given or it is no folder.
int lispFileGetFolder() {
  ArgReader in(kFileStyle);
  std::u16string prompt = u"请选择路径: ";
  if (!in.atEnd() && !in.string(prompt, 1)) return RTERROR;
  if (!in.end()) return RTERROR;
  ACHAR buf[MAX_PATH * 4] = {0};
  if (acedGetString(1, prompt.c_str(), buf, sizeof buf / sizeof buf[0]) != RTNORM) return retNil();
  std::u16string folder = buf;
  return folder.empty() || !isFolder(folder) ? retNil() : retWide(folder);
}

// (ZEPK-File-Dir folder [pattern-or-nil [directories]]): the names as the
// host's vl-directory-files gives them, after their count is printed.
int lispFileDir() {
  ArgReader in(kFileStyle);
  std::u16string folder, pattern = u"*.*";
  int32_t which = 0;
  if (!required(in, folder, 1)) return RTERROR;
  if (in.type() == RTNIL) *in.cursor() = (*in.cursor())->rbnext;
  else if (!in.atEnd() && !in.string(pattern, 2)) return RTERROR;
  if (!in.atEnd()) {
    if (in.type() != RTSHORT) return failBadArg(kFileStyle, 3);
    RbGetShort(in.cursor(), which);
    if (which < -1 || which > 1) return fail(u"错误:参数3错误,directories止应为-1、0、1\n");
  }
  if (!in.end()) return RTERROR;
  frame::RbChain call(acutBuildList(RTSTR, u"vl-directory-files", RTSTR, folder.c_str(), RTSTR, pattern.c_str(),
                                    RTSHORT, static_cast<int>(which), 0));
  resbuf* found = nullptr;
  std::vector<std::u16string> names;
  if (acedInvoke(call.get(), &found) == RTNORM)
    for (resbuf* rb = found; rb; rb = rb->rbnext)
      if (rb->restype == RTSTR) names.emplace_back(rb->resval.rstring);
  acutRelRb(found);
  acutPrintf(u"共%d个目录文件\n", static_cast<int>(names.size()));
  return frame::retList(RbFromStrings(names));
}

int lispFileDelFolder() {
  return withOnePath([](const std::u16string& folder) {
    if (deleteTree(folder)) return true;
    acutPrintf(u"删除目录失败！");
    return false;
  });
}

int lispFileDelete() {
  return withOnePath([](const std::u16string& file) { return DeleteFileW(file.c_str()) != 0; });
}

// The folder and its parents are made; a folder already there is success.
int lispFileCreateFolder() {
  return withOnePath([](const std::u16string& folder) {
    if (!validFolderPath(folder)) {
      MessageBoxW(nullptr, u"路径不合法\n", u"警告", MB_OK);
      return false;
    }
    if (createFolders(folder)) return true;
    AfxMessageBox(u"不能创建文件夹");
    return false;
  });
}

int lispFileCopy() {
  return withTwoPaths([](const std::u16string& from, const std::u16string& to) {
    return CopyFileW(from.c_str(), to.c_str(), FALSE) != 0;
  });
}

int lispFileMove() {
  return withTwoPaths(
      [](const std::u16string& from, const std::u16string& to) { return MoveFileW(from.c_str(), to.c_str()) != 0; });
}

int lispFileReName() { return lispFileMove(); }

// (ZEPK-File-GetFiled title [default [extension [flags]]]): the host's
// file dialog; nil when no name is given.
int lispFileGetFiled() {
  ArgReader in(kFileStyle);
  std::u16string title, def, ext;
  int32_t flags = 0;
  if (!required(in, title, 1)) return RTERROR;
  if (!in.atEnd() && !in.string(def, 2)) return RTERROR;
  if (!in.atEnd() && !in.string(ext, 3)) return RTERROR;
  if (!in.atEnd() && RbGetShort(in.cursor(), flags) != RTNORM) return failBadArg(kFileStyle, 4);
  if (!in.end()) return RTERROR;
  resbuf result{};
  if (acedGetFileD(title.c_str(), def.c_str(), ext.c_str(), flags, &result) != RTNORM || result.restype != RTSTR)
    return retNil();
  std::u16string name = result.resval.rstring ? result.resval.rstring : u"";
  free(result.resval.rstring);
  return retWide(name);
}

// (ZEPK-File-SaveTextStr file text-or-strings [mode [encoding]]): the
// strings joined by "\r\n". Mode "w" (the default) replaces the file, "a"
// adds to its end; encoding 0 (the default) is the system code page, 1 is
// UTF-8.
int lispFileSaveTextStr() {
  constexpr MsgStyle style = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  std::u16string path, mode = u"w";
  std::vector<std::u16string> lines;
  int32_t encoding = 0;
  if (!cur) return failTooFew(style);
  if (!text(&cur, path)) return failBadArg(style, 1);
  if (!cur) return failTooFew(style);
  if (cur->restype == RTSTR) lines.emplace_back(cur->resval.rstring), cur = cur->rbnext;
  else if (cur->restype != RTLB || RbGetStringArray(&cur, lines) != RTNORM) return failBadArg(style, 2);
  if (cur && (!text(&cur, mode) || (upper(mode) != u"W" && upper(mode) != u"A"))) return failBadArg(style, 3);
  if (cur && (RbGetShort(&cur, encoding) != RTNORM || encoding < 0 || encoding > 1)) return failBadArg(style, 4);
  if (cur) return failTooMany(style);
  std::string bytes;
  if (upper(mode) == u"A") acutReadWholeFile(path, &bytes);
  bytes += encodeText(joinLines(lines), encoding == 1 ? CP_UTF8 : CP_ACP);
  return retBool(acutWriteWholeFile(path, bytes));
}

// (ZEPK-File-ReadText file [as-list]): the lines joined by "\r\n", or
// their list; nil for a file with no line, no result for one that cannot
// be read.
int lispFileReadText() {
  constexpr MsgStyle style = MsgStyle::LineDot;
  resbuf* cur = acedGetArgs();
  std::u16string path;
  if (!cur) return failTooFew(style);
  if (!text(&cur, path)) return failBadArg(style, 1);
  const bool asList = cur && cur->restype != RTNIL;
  if (cur && nextArgument(cur)) return failTooMany(style);
  std::string bytes;
  if (!acutReadWholeFile(path, &bytes)) return RSRSLT;
  std::vector<std::u16string> lines = splitTextLines(decodeTextFile(bytes));
  if (lines.empty()) return retNil();
  return asList ? frame::retList(RbFromStrings(lines)) : retWide(joinLines(lines));
}

// The folder is added to the host's support path (the setting ACAD,
// folders separated by ";") unless it is there already.
int lispFileAddToSupportPath() {
  constexpr MsgStyle style = MsgStyle::LineDot;
  ArgReader in(style);
  std::u16string folder;
  if (!in.string(folder, 1) || !in.end()) return RTERROR;
  std::u16string current(32768, u'\0');
  if (acedGetEnv(u"ACAD", current.data(), current.size()) != RTNORM) current.clear();
  current.resize(current.find(u'\0') == std::u16string::npos ? current.size() : current.find(u'\0'));
  size_t pos = 0;
  while (pos <= current.size()) {
    size_t semi = std::min(current.find(u';', pos), current.size());
    if (sameName(current.substr(pos, semi - pos), folder)) return retT();
    pos = semi + 1;
  }
  if (!current.empty() && current.back() != u';') current += u';';
  return retBool(acedSetEnv(u"ACAD", (current + folder).c_str()) == RTNORM);
}

// The file is added to the startup list of the current profile:
// <product key>\Profiles\<profile>\Dialogs\Appload\Startup in the user's
// hive, entries "1Startup" ... "<n>Startup" counted by "NumStartup". The
// host's own APPLOAD command needs no module loaded to read the list.
int lispFileAddToStartUp() {
  constexpr MsgStyle style = MsgStyle::LineDot;
  ArgReader in(style);
  std::u16string file;
  if (!in.string(file, 1) || !in.end()) return RTERROR;
  resbuf profile{};
  std::u16string name;
  if (acedGetVar(u"CPROFILE", &profile) == RTNORM && profile.restype == RTSTR && profile.resval.rstring) {
    name = profile.resval.rstring;
    free(profile.resval.rstring);
  }
  if (name.empty()) name = u"<<未命名配置>>";
  std::u16string path =
      u"HKEY_CURRENT_USER\\" + std::u16string(acrxProductKey()) + u"\\Profiles\\" + name + u"\\Dialogs\\Appload\\Startup";
  Key key(path, KEY_QUERY_VALUE | KEY_SET_VALUE, true);
  if (!key.get()) return retNil();
  const int count = std::max(0, _wtoi(readText(key.get(), u"NumStartup").c_str()));
  auto entry = [](int i) { return sys::fromUtf8(std::to_string(i)) + u"Startup"; };
  for (int i = 1; i <= count; ++i)
    if (sameName(readText(key.get(), entry(i)), file)) return retT();
  return retBool(writeText(key.get(), u"NumStartup", sys::fromUtf8(std::to_string(count + 1))) &&
                 writeText(key.get(), entry(count + 1), file));
}

// (ZEPK-File-Download url [file]): without a file one is asked for. The
// bytes are read in pieces of at most 1023 and written when all came.
int lispFileDownload() {
  resbuf* cur = acedGetArgs();
  std::u16string url, file;
  if (!text(&cur, url)) return RSRSLT;
  if (!text(&cur, file)) {
    resbuf result{};
    if (acedGetFileD(u"保存文件名", u"", u"", 1, &result) != RTNORM || result.restype != RTSTR) return RSRSLT;
    file = result.resval.rstring ? result.resval.rstring : u"";
    free(result.resval.rstring);
  }
  HINTERNET session = InternetOpenW(u"Glegri/1.0", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
  if (!session) return RSRSLT;
  HINTERNET request = InternetOpenUrlW(session, url.c_str(), nullptr, 0, INTERNET_FLAG_NO_CACHE_WRITE, 0);
  bool ok = request != nullptr;
  std::string bytes;
  char piece[1023];
  DWORD got = 0;
  while (ok && (ok = InternetReadFile(request, piece, sizeof piece, &got) != 0) && got > 0) bytes.append(piece, got);
  if (request) InternetCloseHandle(request);
  InternetCloseHandle(session);
  if (!ok || !acutWriteWholeFile(file, bytes)) return RSRSLT;
  return retT();
}

// ------------------------------------------------------ special folders

int lispFileGetDesktopFolder() { return retWide(specialFolder(CSIDL_DESKTOPDIRECTORY)); }

int lispFileGetMyDocumentFolder() { return retWide(specialFolder(CSIDL_PERSONAL)); }

// (ZEPK-File-GetSpecialFolder number [name]): the folder of a Windows
// folder number, with the name after it when one is given.
int lispFileGetSpecialFolder() {
  resbuf* cur = acedGetArgs();
  int32_t csidl = 0;
  if (RbGetShort(&cur, csidl) != RTNORM) return RSRSLT;
  std::u16string folder = specialFolder(csidl), name;
  if (folder.empty()) return RSRSLT;
  if (text(&cur, name) && !name.empty()) {
    size_t start = name.find_first_not_of(u"\\/");
    if (start != std::u16string::npos) folder += u"/" + name.substr(start);
  }
  return retWide(folder);
}

}  // namespace zepk::services
