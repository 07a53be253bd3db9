#include "host/system/shell.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <sstream>

#include "host/system/paths.h"
#include "host/system/utf.h"
#include "host/wincompat.h"

extern char** environ;

namespace zepk::sys {

namespace {

std::string env(const char* name) {
  const char* v = std::getenv(name);
  return v ? std::string(v) : std::string();
}

std::string home() {
  std::string h = env("HOME");
  return h.empty() ? std::string("/tmp") : h;
}

std::string stripSlash(std::string p) {
  while (p.size() > 1 && p.back() == '/') p.pop_back();
  return p;
}

// An XDG base folder: the variable when it holds an absolute path, else
// the default under $HOME.
std::string baseDir(const char* var, const char* fallback) {
  std::string v = env(var);
  if (!v.empty() && v[0] == '/') return stripSlash(v);
  return home() + "/" + fallback;
}

// A user folder (XDG_DESKTOP_DIR...): the environment, then user-dirs.dirs,
// then $HOME/<fallback>.
std::string userDir(const char* var, const char* fallback) {
  std::string v = env(var);
  if (!v.empty() && v[0] == '/') return stripSlash(v);
  std::ifstream f(baseDir("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs");
  std::string line;
  std::string key = std::string(var) + "=";
  while (std::getline(f, line)) {
    if (line.rfind(key, 0) != 0) continue;
    std::string value = line.substr(key.size());
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') value = value.substr(1, value.size() - 2);
    if (value.rfind("$HOME", 0) == 0) value = home() + value.substr(5);
    if (!value.empty() && value[0] == '/') return stripSlash(value);
  }
  return home() + "/" + fallback;
}

std::string exeFolder() {
  std::string p = programFile();
  size_t slash = p.find_last_of('/');
  return slash == std::string::npos ? std::string(".") : p.substr(0, slash);
}

std::map<const void*, std::u16string>& moduleHandles() {
  static auto* m = new std::map<const void*, std::u16string>;
  return *m;
}

bool isExecutableFile(const std::string& p) {
  struct stat sb;
  return ::stat(p.c_str(), &sb) == 0 && S_ISREG(sb.st_mode) && ::access(p.c_str(), X_OK) == 0;
}

std::string escapeDesktop(const std::string& s) {
  std::string out;
  for (char c : s) {
    if (c == '\n') out += "\\n";
    else if (c == '\r') out += "\\r";
    else if (c == '\t') out += "\\t";
    else if (c == '\\') out += "\\\\";
    else out += c;
  }
  return out;
}

std::string unescapeDesktop(const std::string& s) {
  std::string out;
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] == '\\' && i + 1 < s.size()) {
      char e = s[++i];
      out += e == 'n' ? '\n' : e == 'r' ? '\r' : e == 't' ? '\t' : e == 's' ? ' ' : e;
    } else {
      out += s[i];
    }
  }
  return out;
}

// Quoting of an argument of the Exec key: a word with reserved characters
// goes in double quotes with ", `, $ and \ escaped.
std::string execQuote(const std::string& w) {
  if (!w.empty() && w.find_first_of(" \t\n\"'\\><~|&;$*?#()`") == std::string::npos) return w;
  std::string out = "\"";
  for (char c : w) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') out += '\\';
    out += c;
  }
  return out + "\"";
}

bool isUrl(const std::string& s) {
  size_t colon = s.find("://");
  return colon != std::string::npos && colon > 1;
}

}  // namespace

// ---------------------------------------------------------------- folders

std::string tempFolder() {
  std::string t = env("TMPDIR");
  return !t.empty() && t[0] == '/' ? stripSlash(t) : std::string("/tmp");
}

bool makeFolders(const std::string& path) {
  if (path.empty()) return false;
  struct stat sb;
  if (::stat(path.c_str(), &sb) == 0) return S_ISDIR(sb.st_mode);
  size_t slash = path.find_last_of('/');
  if (slash != std::string::npos && slash > 0 && !makeFolders(path.substr(0, slash))) return false;
  return ::mkdir(path.c_str(), 0755) == 0 || errno == EEXIST;
}

std::string specialFolder(int csidl) {
  switch (csidl & 0xFF) {
    case CSIDL_DESKTOP:
    case CSIDL_DESKTOPDIRECTORY:
    case CSIDL_COMMON_DESKTOPDIRECTORY: return userDir("XDG_DESKTOP_DIR", "Desktop");
    case CSIDL_PERSONAL:
    case CSIDL_COMMON_DOCUMENTS: return userDir("XDG_DOCUMENTS_DIR", "Documents");
    case CSIDL_MYMUSIC: return userDir("XDG_MUSIC_DIR", "Music");
    case CSIDL_MYVIDEO: return userDir("XDG_VIDEOS_DIR", "Videos");
    case CSIDL_MYPICTURES: return userDir("XDG_PICTURES_DIR", "Pictures");
    case CSIDL_TEMPLATES: return userDir("XDG_TEMPLATES_DIR", "Templates");
    case CSIDL_APPDATA: return baseDir("XDG_CONFIG_HOME", ".config");
    case CSIDL_LOCAL_APPDATA: return baseDir("XDG_DATA_HOME", ".local/share");
    case CSIDL_INTERNET_CACHE: return baseDir("XDG_CACHE_HOME", ".cache");
    case CSIDL_COMMON_APPDATA: return "/usr/share";
    case CSIDL_FONTS: return baseDir("XDG_DATA_HOME", ".local/share") + "/fonts";
    case CSIDL_PROGRAMS:
    case CSIDL_STARTMENU: return baseDir("XDG_DATA_HOME", ".local/share") + "/applications";
    case CSIDL_STARTUP: return baseDir("XDG_CONFIG_HOME", ".config") + "/autostart";
    case CSIDL_RECENT: return baseDir("XDG_DATA_HOME", ".local/share") + "/recent";
    case CSIDL_FAVORITES: return baseDir("XDG_DATA_HOME", ".local/share") + "/favorites";
    case CSIDL_PROFILE: return stripSlash(home());
    case CSIDL_WINDOWS: return "/usr";
    case CSIDL_SYSTEM: return "/usr/bin";
    case CSIDL_PROGRAM_FILES: return "/opt";
    default: return std::string();
  }
}

// -------------------------------------------------------------- shortcuts

std::string writeShortcut(const std::string& linkPath, const Shortcut& s) {
  if (linkPath.empty() || s.target.empty()) return std::string();
  std::string path = linkPath;
  size_t slash = path.find_last_of('/');
  size_t dot = path.find_last_of('.');
  if (dot != std::string::npos && (slash == std::string::npos || dot > slash)) {
    std::string ext = path.substr(dot);
    for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ext == ".lnk" || ext == ".url") path = path.substr(0, dot) + ".desktop";
    else if (ext != ".desktop") path += ".desktop";
  } else {
    path += ".desktop";
  }
  std::string name = path.substr(slash == std::string::npos ? 0 : slash + 1);
  name = name.substr(0, name.size() - 8);

  std::string text = "[Desktop Entry]\nVersion=1.0\n";
  bool program = !isUrl(s.target) && isExecutableFile(s.target);
  text += "Name=" + escapeDesktop(name) + "\n";
  if (program) {
    text += "Type=Application\n";
    std::string exec = execQuote(s.target);
    if (!s.arguments.empty()) exec += " " + s.arguments;
    text += "Exec=" + escapeDesktop(exec) + "\n";
  } else {
    text += "Type=Link\n";
    std::string url = isUrl(s.target) ? s.target : "file://" + s.target;
    text += "URL=" + escapeDesktop(url) + "\n";
  }
  if (!s.workingDir.empty()) text += "Path=" + escapeDesktop(s.workingDir) + "\n";
  if (!s.description.empty()) text += "Comment=" + escapeDesktop(s.description) + "\n";
  if (!s.icon.empty()) text += "Icon=" + escapeDesktop(s.icon) + "\n";

  std::string dir = slash == std::string::npos ? std::string(".") : path.substr(0, slash);
  if (slash != std::string::npos && !makeFolders(dir)) return std::string();
  std::string tmp = path + ".tmp" + std::to_string(::getpid());
  int fd = ::open(tmp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0755);
  if (fd < 0) return std::string();
  bool ok = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  ok = ::close(fd) == 0 && ok;
  if (!ok || ::rename(tmp.c_str(), path.c_str()) != 0) {
    ::unlink(tmp.c_str());
    return std::string();
  }
  ::chmod(path.c_str(), 0755);
  return path;
}

bool readShortcut(const std::string& path, Shortcut* out) {
  std::ifstream f(path);
  if (!f) return false;
  std::string line;
  bool inEntry = false, any = false;
  std::string type, exec, url;
  Shortcut s;
  while (std::getline(f, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty() && line[0] == '[') {
      inEntry = line == "[Desktop Entry]";
      any = any || inEntry;
      continue;
    }
    if (!inEntry) continue;
    size_t eq = line.find('=');
    if (eq == std::string::npos) continue;
    std::string key = line.substr(0, eq), value = unescapeDesktop(line.substr(eq + 1));
    if (key == "Type") type = value;
    else if (key == "Exec") exec = value;
    else if (key == "URL") url = value;
    else if (key == "Path") s.workingDir = value;
    else if (key == "Comment") s.description = value;
    else if (key == "Icon") s.icon = value;
  }
  if (!any) return false;
  if (type == "Application") {
    // The first word of Exec is the program, the rest its arguments.
    size_t i = 0;
    std::string prog;
    if (!exec.empty() && exec[0] == '"') {
      for (i = 1; i < exec.size() && exec[i] != '"'; ++i) {
        if (exec[i] == '\\' && i + 1 < exec.size()) ++i;
        prog += exec[i];
      }
      ++i;
    } else {
      i = exec.find(' ');
      prog = exec.substr(0, i);
    }
    s.target = prog;
    if (i != std::string::npos && i < exec.size()) s.arguments = exec.substr(exec.find_first_not_of(' ', i) == std::string::npos ? exec.size() : exec.find_first_not_of(' ', i));
  } else if (type == "Link") {
    s.target = url.rfind("file://", 0) == 0 ? url.substr(7) : url;
  } else {
    return false;
  }
  *out = s;
  return true;
}

// ---------------------------------------------------------------- modules

std::string programFile() {
  char buf[4096];
  ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
  if (n <= 0) return std::string();
  return std::string(buf, static_cast<size_t>(n));
}

void registerModuleHandle(const void* handle, std::u16string_view name) {
  if (handle) moduleHandles()[handle] = std::u16string(name);
}

std::u16string moduleFile(const void* handle) {
  if (!handle) return fromUtf8(programFile());
  auto it = moduleHandles().find(handle);
  if (it == moduleHandles().end()) return std::u16string();
  return fromUtf8(exeFolder()) + u"/" + it->second + u".arx";
}

// --------------------------------------------------------------- programs

std::string shellQuote(std::string_view w) {
  std::string out = "'";
  for (char c : w) {
    if (c == '\'') out += "'\\''";
    else out += c;
  }
  return out + "'";
}

std::string findProgram(std::string_view name) {
  if (name.empty()) return std::string();
  std::string n(name);
  if (n.find('/') != std::string::npos) return isExecutableFile(n) ? n : std::string();
  std::string path = env("PATH");
  if (path.empty()) path = "/usr/local/bin:/usr/bin:/bin";
  size_t pos = 0;
  while (pos <= path.size()) {
    size_t colon = path.find(':', pos);
    if (colon == std::string::npos) colon = path.size();
    std::string dir = path.substr(pos, colon - pos);
    if (dir.empty()) dir = ".";
    std::string p = dir + "/" + n;
    if (isExecutableFile(p)) return p;
    pos = colon + 1;
  }
  return std::string();
}

int runCommand(const std::string& commandLine, std::string* output) {
  int pipefd[2] = {-1, -1};
  if (output && ::pipe2(pipefd, O_CLOEXEC) != 0) return -1;
  posix_spawn_file_actions_t fa;
  posix_spawn_file_actions_init(&fa);
  if (output) {
    posix_spawn_file_actions_adddup2(&fa, pipefd[1], 1);
  }
  const char* argv[] = {"/bin/sh", "-c", commandLine.c_str(), nullptr};
  pid_t pid = -1;
  int rc = posix_spawn(&pid, "/bin/sh", &fa, nullptr, const_cast<char**>(argv), environ);
  posix_spawn_file_actions_destroy(&fa);
  if (output) ::close(pipefd[1]);
  if (rc != 0) {
    if (output) ::close(pipefd[0]);
    return -1;
  }
  if (output) {
    output->clear();
    char buf[4096];
    for (;;) {
      ssize_t n = ::read(pipefd[0], buf, sizeof buf);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      output->append(buf, static_cast<size_t>(n));
    }
    ::close(pipefd[0]);
  }
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) return -1;
  }
  if (WIFEXITED(status)) return WEXITSTATUS(status);
  if (WIFSIGNALED(status)) return 128 + WTERMSIG(status);
  return -1;
}

bool startCommand(const std::string& commandLine, const std::string& dir) {
  // The shell puts the command in the background and ends at once, so the
  // command belongs to init and leaves no zombie here.
  std::string line;
  if (!dir.empty()) line = "cd " + shellQuote(dir) + " || exit 127; ";
  line += "(" + commandLine + ") </dev/null >/dev/null 2>&1 &";
  return runCommand(line) == 0;
}

}  // namespace zepk::sys

// ---------------------------------------------------------------- Windows

using namespace zepk;

BOOL SHGetSpecialFolderPathW(HWND, LPWSTR path, int csidl, BOOL create) {
  if (!path) return FALSE;
  std::string dir = sys::specialFolder(csidl);
  if (dir.empty()) {
    path[0] = 0;
    return FALSE;
  }
  if ((create || (csidl & CSIDL_FLAG_CREATE)) && !sys::makeFolders(dir)) {
    path[0] = 0;
    return FALSE;
  }
  std::u16string w = sys::fromUtf8(dir);
  if (w.size() >= MAX_PATH) {
    path[0] = 0;
    return FALSE;
  }
  std::copy(w.begin(), w.end(), path);
  path[w.size()] = 0;
  return TRUE;
}

DWORD GetTempPathW(DWORD n, LPWSTR buf) {
  std::u16string w = sys::fromUtf8(sys::tempFolder() + "/");
  if (!buf || n < w.size() + 1) return static_cast<DWORD>(w.size() + 1);
  std::copy(w.begin(), w.end(), buf);
  buf[w.size()] = 0;
  return static_cast<DWORD>(w.size());
}

DWORD GetModuleFileNameW(HMODULE h, LPWSTR buf, DWORD n) {
  std::u16string f = sys::moduleFile(h);
  if (f.empty() || !buf || n == 0) {
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
  }
  if (f.size() >= n) {
    // Cut to the buffer, ended by its zero, as the system does.
    std::copy(f.begin(), f.begin() + (n - 1), buf);
    buf[n - 1] = 0;
    SetLastError(122);  // ERROR_INSUFFICIENT_BUFFER
    return n;
  }
  std::copy(f.begin(), f.end(), buf);
  buf[f.size()] = 0;
  return static_cast<DWORD>(f.size());
}

UINT WinExec(const char* cmd, UINT) {
  if (!cmd || !*cmd) return 0;
  // The program is the first word (quoted or not); the line runs through
  // the shell in the system code page's place, as UTF-8.
  std::string line = cmd;
  std::string first;
  if (line[0] == '"') {
    size_t end = line.find('"', 1);
    first = line.substr(1, end == std::string::npos ? std::string::npos : end - 1);
  } else {
    first = line.substr(0, line.find_first_of(" \t"));
  }
  std::string native = sys::toNativePath(sys::fromUtf8(first));
  if (sys::findProgram(native).empty() && sys::findProgram(first).empty()) return ERROR_FILE_NOT_FOUND;
  return sys::startCommand(line) ? 33 : ERROR_FILE_NOT_FOUND;
}

HINSTANCE ShellExecuteW(HWND, LPCWSTR op, LPCWSTR file, LPCWSTR params, LPCWSTR dir, int) {
  auto result = [](intptr_t v) { return reinterpret_cast<HINSTANCE>(v); };
  if (!file || !*file) return result(2);
  std::u16string verb = op ? op : u"";
  for (char16_t& c : verb) c = sys::asciiLower(c);
  if (!verb.empty() && verb != u"open" && verb != u"explore") return result(31);
  std::string target = sys::toUtf8(file);
  bool url = target.find("://") != std::string::npos || target.rfind("mailto:", 0) == 0;
  std::string native = url ? target : sys::toNativePath(file);
  std::string workDir = dir && *dir ? sys::toNativePath(dir) : std::string();
  std::string program = url ? std::string() : sys::findProgram(native);
  if (!program.empty()) {
    std::string line = sys::shellQuote(program);
    if (params && *params) line += " " + sys::toUtf8(params);
    return result(sys::startCommand(line, workDir) ? 42 : 2);
  }
  struct stat sb;
  if (!url && ::stat(native.c_str(), &sb) != 0) return result(2);  // SE_ERR_FNF
  std::string opener = sys::findProgram("xdg-open");
  if (opener.empty()) return result(31);  // SE_ERR_NOASSOC
  return result(sys::startCommand(sys::shellQuote(opener) + " " + sys::shellQuote(native), workDir) ? 42 : 31);
}
