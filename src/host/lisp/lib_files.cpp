// Output and files: printing on the command line or to a file, text files
// opened with open, findfile and load.
//
// Text files are in the system code page. A file that starts with a UTF-8
// byte-order mark is read as UTF-8, and appending to such a file writes
// UTF-8, so that opening a file for append never mixes two encodings. Lines
// are written with "\n"; on reading, "\r\n" counts as one line end.
//
// Misuse of a file descriptor raises the host's "bad argument type":
//   not a file, or a file already closed      streamp <value>
//   reading from a file opened for "w" or "a"  input stream: <file>
//   writing to a file opened for "r"           output stream: <file>
// An open mode other than "r", "w" or "a" (in either case) is
// "bad argument value: <mode>".
#include <sys/stat.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unordered_map>

#include "host/ads.h"
#include "host/lisp/files.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/lisp/reader.h"
#include "host/system/codepage.h"
#include "host/system/paths.h"
#include "host/system/hostenv.h"
#include "host/system/utf.h"

namespace zepk::lisp {

void registerFileSystem(Interp& in);

std::vector<std::string>& supportPath() {
  static std::vector<std::string> folders;
  return folders;
}

LineSource& commandLineInput() {
  static LineSource source;
  return source;
}

namespace {

// ---------------------------------------------------------------- encodings

// What a stream opened here needs beyond its FILE: whether it holds UTF-8,
// and the second half of a character outside the 16-bit range that
// read-char has yet to give. Keyed by the open FILE; every open sets its
// entry, so an entry left by a stream that the collector closed is
// overwritten before its address can be looked up again.
struct StreamState {
  bool utf8 = false;
  char16_t pendingLow = 0;
};
std::unordered_map<std::FILE*, StreamState>& streams() {
  static std::unordered_map<std::FILE*, StreamState> m;
  return m;
}

bool isUtf8(FileObj* f) {
  auto it = streams().find(f->fp);
  return it != streams().end() && it->second.utf8;
}

std::string encode(FileObj* f, std::u16string_view s) { return isUtf8(f) ? sys::toUtf8(s) : sys::toCodePage(s); }
std::u16string decode(FileObj* f, std::string_view b) { return isUtf8(f) ? sys::fromUtf8(b) : sys::fromCodePage(b); }

constexpr char kBom[] = "\xEF\xBB\xBF";

bool startsWithBom(const std::string& nativeName) {
  std::ifstream f(nativeName, std::ios::binary);
  char head[3] = {};
  return f.read(head, 3) && std::string_view(head, 3) == kBom;
}

bool isDirectory(const std::string& nativeName) {
  struct stat st;
  return ::stat(nativeName.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

bool exists(const std::string& nativeName) {
  struct stat st;
  return ::stat(nativeName.c_str(), &st) == 0;
}

// ---------------------------------------------------------------- descriptors

enum class Use { Read, Write };

// The optional file argument at index i: nullptr means the command line (no
// argument, or nil).
FileObj* fileArg(Interp& in, ArgSpan a, size_t i, Use use) {
  if (a.size <= i || a[i].isNil()) return nullptr;
  const Value& v = a[i];
  if (v.tag() != Tag::File || !v.as<FileObj>()->fp) in.badType("streamp", v);
  FileObj* f = v.as<FileObj>();
  if (use == Use::Read && f->mode != 'r') in.badType("input stream:", v);
  if (use == Use::Write && f->mode == 'r') in.badType("output stream:", v);
  return f;
}

void emit(Interp& in, FileObj* f, std::u16string_view text) {
  if (!f) {
    in.out().write(text);
    return;
  }
  std::string bytes = encode(f, text);
  std::fwrite(bytes.data(), 1, bytes.size(), f->fp);
}

// ---------------------------------------------------------------- printing

enum class Style { Princ, Prin1, Print };

template <Style S>
Value fnPrint(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 2);
  // With nothing to print, the null symbol: a program ending in (princ)
  // leaves nothing on the command line.
  if (a.size == 0) return voidValue();
  FileObj* f = fileArg(in, a, 1, Use::Write);
  std::u16string text = S == Style::Princ ? princString(a[0]) : prin1String(a[0]);
  if (S == Style::Print) text = u"\n" + text + u" ";
  emit(in, f, text);
  return a[0];
}

Value fnTerpri(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 0);
  in.out().write(std::u16string_view(u"\n"));
  return Value();
}

Value fnPrompt(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  in.out().write(argStr(in, a[0]));
  return Value();
}

// Without a screen, the message box's text goes to the command line on a
// line of its own.
Value fnAlert(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  const std::u16string& text = argStr(in, a[0]);
  in.out().freshLine();
  in.out().write(text);
  in.out().write(std::u16string_view(u"\n"));
  return Value();
}

// ---------------------------------------------------------------- open, close

Value fnOpen(Interp& in, ArgSpan a) {
  checkArgc(in, a, 2, 2);
  const std::u16string& name = argStr(in, a[0]);
  const std::u16string& modeText = argStr(in, a[1]);
  char mode = 0;
  if (modeText.size() == 1) {
    char16_t c = sys::asciiLower(modeText[0]);
    if (c == u'r' || c == u'w' || c == u'a') mode = static_cast<char>(c);
  }
  if (!mode) in.fail(u"bad argument value: " + prin1String(a[1]));
  if (name.empty()) return Value();
  std::string native = sys::toNativePath(name);
  if (isDirectory(native)) return Value();
  bool utf8 = mode != 'w' && exists(native) && startsWithBom(native);
  const char* how = mode == 'r' ? "rb" : mode == 'w' ? "wb" : "ab";
  std::FILE* fp = std::fopen(native.c_str(), how);
  if (!fp) return Value();
  if (mode == 'r' && utf8) {
    char skip[3];
    if (std::fread(skip, 1, 3, fp) != 3) std::rewind(fp);
  }
  streams()[fp] = StreamState{utf8, 0};
  auto* f = new FileObj;
  f->fp = fp;
  f->name = name;
  f->mode = mode;
  return Value::obj(f);
}

Value fnClose(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  if (a[0].tag() != Tag::File) in.badType("streamp", a[0]);
  FileObj* f = a[0].as<FileObj>();
  if (f->fp) {
    streams().erase(f->fp);
    std::fclose(f->fp);
    f->fp = nullptr;
  }
  return Value();
}

// ---------------------------------------------------------------- reading

// What read-char has left of the line it took from the command line.
struct Typed {
  std::u16string line;
  size_t pos = 0;
  bool pending = false;
};
Typed& typed() {
  static Typed t;
  return t;
}

std::optional<std::u16string> typedLine() {
  Typed& t = typed();
  if (t.pending) {
    t.pending = false;
    return t.line.substr(std::min(t.pos, t.line.size()));
  }
  LineSource& src = commandLineInput();
  if (!src) return std::nullopt;
  return src();
}

Value fnReadLine(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  FileObj* f = fileArg(in, a, 0, Use::Read);
  if (!f) {
    std::optional<std::u16string> line = typedLine();
    return line ? str(std::move(*line)) : Value();
  }
  std::string bytes;
  int c;
  bool any = false;
  while ((c = std::getc(f->fp)) != EOF) {
    any = true;
    if (c == '\n') break;
    bytes.push_back(static_cast<char>(c));
  }
  if (!any) return Value();
  if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
  return str(decode(f, bytes));
}

// One character of a UTF-8 stream whose first byte is c (0x80 or above).
int32_t readUtf8Char(std::FILE* fp, int c) {
  int len = c >= 0xF0 && c < 0xF8 ? 4 : c >= 0xE0 ? 3 : c >= 0xC0 ? 2 : 0;
  if (len == 0) return 0xFFFD;
  std::string seq(1, static_cast<char>(c));
  while (static_cast<int>(seq.size()) < len) {
    int d = std::getc(fp);
    if (d == EOF) break;
    if ((d & 0xC0) != 0x80) {
      std::ungetc(d, fp);
      break;
    }
    seq.push_back(static_cast<char>(d));
  }
  // Characters come as the strings hold them: one beyond the 16-bit range
  // as its two surrogate halves, the second on the next call.
  std::u16string u = sys::fromUtf8(seq);
  if (u.size() == 2 && u[0] >= 0xD800 && u[0] < 0xDC00) {
    streams()[fp].pendingLow = u[1];
    return u[0];
  }
  return u.size() == 1 ? u[0] : 0xFFFD;
}

// One character of a code-page stream whose first byte is c (0x80 or above).
int32_t readCodePageChar(std::FILE* fp, int c) {
  std::string seq(1, static_cast<char>(c));
  if (sys::isLeadByte(static_cast<unsigned char>(c))) {
    int d = std::getc(fp);
    if (d != EOF) seq.push_back(static_cast<char>(d));
  }
  std::u16string u = sys::fromCodePage(seq);
  if (u.size() == 2 && seq.size() == 2) {
    // Not a pair after all: the lead byte alone is a '?', and the second
    // byte is read again as a character of its own.
    std::ungetc(static_cast<unsigned char>(seq[1]), fp);
  }
  return u.empty() ? u'?' : u[0];
}

Value fnReadChar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 1);
  FileObj* f = fileArg(in, a, 0, Use::Read);
  if (!f) {
    Typed& t = typed();
    if (!t.pending) {
      std::optional<std::u16string> line = typedLine();
      if (!line) return Value();
      t.line = std::move(*line);
      t.pos = 0;
      t.pending = true;
    }
    if (t.pos >= t.line.size()) {
      t.pending = false;
      return Value::integer(10);
    }
    return Value::integer(t.line[t.pos++]);
  }
  if (auto it = streams().find(f->fp); it != streams().end() && it->second.pendingLow) {
    char16_t low = it->second.pendingLow;
    it->second.pendingLow = 0;
    return Value::integer(low);
  }
  int c = std::getc(f->fp);
  if (c == EOF) return Value();
  if (c == '\r') {
    int d = std::getc(f->fp);
    if (d == '\n') return Value::integer(10);
    if (d != EOF) std::ungetc(d, f->fp);
    return Value::integer(13);
  }
  if (c < 0x80) return Value::integer(c);
  return Value::integer(isUtf8(f) ? readUtf8Char(f->fp, c) : readCodePageChar(f->fp, c));
}

// ---------------------------------------------------------------- writing

Value fnWriteLine(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& s = argStr(in, a[0]);
  FileObj* f = fileArg(in, a, 1, Use::Write);
  emit(in, f, s + u"\n");
  return a[0];
}

Value fnWriteChar(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  int32_t code = argInt(in, a[0]);
  FileObj* f = fileArg(in, a, 1, Use::Write);
  std::u16string ch;
  if (code < 0 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
    ch = u"?";
  } else if (code >= 0x10000) {
    ch.push_back(static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10)));
    ch.push_back(static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF)));
  } else {
    ch.push_back(static_cast<char16_t>(code));
  }
  emit(in, f, ch);
  return a[0];
}

// ---------------------------------------------------------------- findfile, load

bool hasFolder(std::u16string_view name) {
  return name.find_first_of(u"/\\") != std::u16string_view::npos || (name.size() >= 2 && name[1] == u':');
}

// The full name of a file or folder: a name with a folder in it is looked
// for there only and given back as it was written; a bare name is looked
// for in the current folder, then along the support path (the folders of
// the host's ACAD setting).
std::optional<std::u16string> findFile(const std::u16string& name) {
  if (name.empty()) return std::nullopt;
  if (hasFolder(name)) {
    if (exists(sys::toNativePath(name))) return name;
    return std::nullopt;
  }
  std::string native = sys::toNativePath(name);
  if (exists(native)) {
    std::error_code ec;
    std::string cwd = std::filesystem::current_path(ec).string();
    if (ec) return name;
    if (cwd.empty() || cwd.back() != '/') cwd.push_back('/');
    return sys::fromNativePath(cwd + native);
  }
  // The folders a program added, then the host's support path (ACAD).
  std::vector<std::u16string> folders;
  for (const std::string& folder : supportPath()) folders.push_back(sys::fromUtf8(folder));
  for (std::u16string& folder : sys::supportFolders()) folders.push_back(std::move(folder));
  for (const std::u16string& folder : folders) {
    if (folder.empty()) continue;
    std::u16string full = folder;
    if (full.back() != u'/' && full.back() != u'\\') {
      bool windows = full.find(u'\\') != std::u16string::npos || (full.size() == 2 && full[1] == u':');
      full.push_back(windows ? u'\\' : u'/');
    }
    full += name;
    if (exists(sys::toNativePath(full))) return full;
  }
  return std::nullopt;
}

Value fnFindfile(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 1);
  std::optional<std::u16string> found = findFile(argStr(in, a[0]));
  return found ? str(std::move(*found)) : Value();
}

// Reads a source file as the interpreter decodes sources.
std::optional<std::u16string> readSource(const std::string& native) {
  if (isDirectory(native)) return std::nullopt;
  std::ifstream f(native, std::ios::binary);
  if (!f) return std::nullopt;
  std::stringstream ss;
  ss << f.rdbuf();
  return decodeSource(ss.str());
}

// (load name [onfailure]): a name without an extension gets ".lsp". When the
// file cannot be found or read, onfailure is the value (called when it is a
// function); without it, the error "LOAD failed". An error inside the file is
// an error of the call to load, with the program's *error* in effect.
Value fnLoad(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  const std::u16string& name = argStr(in, a[0]);
  std::u16string file = name;
  size_t base = name.find_last_of(u"/\\:");
  base = base == std::u16string::npos ? 0 : base + 1;
  if (name.find(u'.', base) == std::u16string::npos) file += u".lsp";
  std::optional<std::u16string> found = findFile(file);
  std::optional<std::u16string> text;
  if (found) text = readSource(sys::toNativePath(*found));
  if (!text) {
    if (a.size < 2) in.fail(u"LOAD failed: " + prin1String(a[0]));
    Tag t = a[1].tag();
    if (t == Tag::Subr || t == Tag::Usubr || t == Tag::Exrx) return in.apply(a[1], ArgSpan{nullptr, 0});
    return a[1];
  }
  return in.evalAll(*text, file);}

}  // namespace

void registerFiles(Interp& in) {
  in.defSubr("princ", fnPrint<Style::Princ>);
  in.defSubr("prin1", fnPrint<Style::Prin1>);
  in.defSubr("print", fnPrint<Style::Print>);
  in.defSubr("terpri", fnTerpri);
  in.defSubr("prompt", fnPrompt);
  in.defSubr("alert", fnAlert);
  in.defSubr("open", fnOpen);
  in.defSubr("close", fnClose);
  in.defSubr("read-line", fnReadLine);
  in.defSubr("read-char", fnReadChar);
  in.defSubr("write-line", fnWriteLine);
  in.defSubr("write-char", fnWriteChar);
  in.defSubr("findfile", fnFindfile);
  in.defSubr("load", fnLoad);
  registerFileSystem(in);
}

}  // namespace zepk::lisp

int acedFindFile(const ACHAR* fname, ACHAR* result, size_t len) {
  if (!fname || !result || len == 0) return RTERROR;
  std::optional<std::u16string> found = zepk::lisp::findFile(fname);
  if (!found || found->size() + 1 > len) return RTERROR;
  std::copy(found->begin(), found->end(), result);
  result[found->size()] = 0;
  return RTNORM;
}
