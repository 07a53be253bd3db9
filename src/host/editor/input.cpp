// Input functions: points, numbers, strings and keywords read from the
// pending answers, with the restrictions set by acedInitGet.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <optional>
#include <string>
#include <vector>

#include "host/acdocman.h"
#include "host/acedinpt.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/sysvars.h"
#include "host/lisp/units.h"
#include "host/system/paths.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

std::u16string upper(std::u16string_view s) { return sys::asciiUpper(s); }

struct Keyword {
  std::u16string word;  // as given
  size_t need = 0;      // characters the user must type
};

struct InitGet {
  int bits = 0;
  std::vector<Keyword> local, global;
};

InitGet pending;
std::u16string lastKeyword;

std::vector<Keyword> splitKeywords(std::u16string_view text) {
  std::vector<Keyword> out;
  size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && text[i] == u' ') ++i;
    size_t e = text.find(u' ', i);
    if (e == std::u16string_view::npos) e = text.size();
    if (e > i) {
      std::u16string w(text.substr(i, e - i));
      Keyword k;
      size_t comma = w.find(u',');
      if (comma != std::u16string::npos) {
        // "LTYPE,LT": the abbreviation is given after the comma.
        k.need = w.size() - comma - 1;
        w.resize(comma);
      } else {
        size_t lastUpper = 0;
        bool anyLower = false;
        for (size_t j = 0; j < w.size(); ++j) {
          if (w[j] >= u'A' && w[j] <= u'Z') lastUpper = j + 1;
          if (w[j] >= u'a' && w[j] <= u'z') anyLower = true;
        }
        k.need = anyLower && lastUpper > 0 ? lastUpper : w.size();
      }
      k.word = w;
      out.push_back(k);
    }
    i = e;
  }
  return out;
}

// The keyword the text names, in its global form when the list has one;
// empty when none matches.
std::u16string matchKeyword(const InitGet& g, std::u16string_view text) {
  bool global = !text.empty() && text[0] == u'_';
  if (global) text.remove_prefix(1);
  std::u16string t = upper(text);
  if (t.empty()) return {};
  const std::vector<Keyword>& list = global && !g.global.empty() ? g.global : g.local;
  for (size_t i = 0; i < list.size(); ++i) {
    std::u16string w = upper(list[i].word);
    if (t.size() >= std::max<size_t>(list[i].need, 1) && t.size() <= w.size() && w.compare(0, t.size(), t) == 0) {
      if (!global && i < g.global.size()) return g.global[i].word;
      return list[i].word;
    }
  }
  return {};
}

void message(const char* text) {
  Commands& c = Commands::get();
  c.print(std::string(text) + "\n");
}

double lastPoint[3] = {0, 0, 0};

void rememberPoint(const double p[3]) {
  for (int i = 0; i < 3; ++i) lastPoint[i] = p[i];
  setSysVar(u"LASTPOINT", SysValue::point(p[0], p[1], p[2], true));
}

void currentLastPoint(double out[3]) {
  SysValue v;
  if (getSysVar(u"LASTPOINT", &v) && (v.kind == SysValue::Point3 || v.kind == SysValue::Point2)) {
    for (int i = 0; i < 3; ++i) out[i] = v.p[i];
  } else {
    for (int i = 0; i < 3; ++i) out[i] = lastPoint[i];
  }
}

// Enter, a keyword or an answer of another form: the common part of every
// input function. Returns RTNORM with a to read, or a final status.
int common(const InitGet& g, const std::u16string& prompt, bool text, Answer* a) {
  int st = Commands::get().next(prompt, text, a);
  if (st != RTNORM) return st;
  if (a->kind == Answer::Text && a->text.empty()) return RTNONE;
  if (a->kind == Answer::Text && !g.local.empty()) {
    std::u16string k = matchKeyword(g, a->text);
    if (!k.empty()) {
      lastKeyword = k;
      return RTKWORD;
    }
  }
  return RTNORM;
}

int angleSysInt(const char16_t* name) {
  SysValue v;
  return getSysVar(name, &v) && v.kind == SysValue::Int ? v.i : 0;
}

// An angle typed in the drawing's units (AUNITS), counted in the sense of
// ANGDIR from ANGBASE; radians counter-clockwise from ANGBASE.
bool typedAngle(std::u16string_view text, double* out) {
  bool neg = !text.empty() && text[0] == u'-';
  if (neg) text.remove_prefix(1);
  if (text.empty()) return false;
  std::optional<double> v = lisp::parseAngle(text, angleSysInt(u"AUNITS"));
  if (!v) return false;
  double a = neg ? -*v : *v;
  *out = angleSysInt(u"ANGDIR") == 1 ? -a : a;
  return true;
}

}  // namespace

int initGet(int bits, std::u16string_view keywords) {
  pending = InitGet{};
  pending.bits = bits;
  std::u16string_view kw = keywords;
  size_t us = kw.find(u" _");
  if (!kw.empty() && kw[0] == u'_') us = 0;
  if (us != std::u16string_view::npos) {
    pending.local = splitKeywords(kw.substr(0, us));
    pending.global = splitKeywords(kw.substr(us + (kw[us] == u'_' ? 1 : 2)));
  } else {
    pending.local = splitKeywords(kw);
  }
  return RTNORM;
}

const std::u16string& lastInputKeyword() { return lastKeyword; }

int askPoint(const double* base, const std::u16string& prompt, double out[3]);

// A point asked for: the document's input point manager hears the request
// and its answer, and its filter may move the point.
int getPoint(const double* base, const std::u16string& prompt, double out[3]) {
  AcApDocument* doc = acDocManager ? acDocManager->curDocument() : nullptr;
  AcEdInputPointManager* ipm = acedInputPointManager(doc);
  if (ipm) ipm->beginGetPoint(base, prompt.c_str(), pending.bits, nullptr);
  int st = askPoint(base, prompt, out);
  if (ipm) {
    double none[3] = {0, 0, 0};
    ipm->endGetPoint(doc, st, st == RTNORM ? out : none);
    if (st == RTNORM) rememberPoint(out);
  }
  return st;
}

int askPoint(const double* base, const std::u16string& prompt, double out[3]) {
  InitGet g = std::move(pending);
  pending = InitGet{};
  for (;;) {
    Answer a;
    int st = common(g, prompt, false, &a);
    if (st == RTNONE && (g.bits & RSG_NONULL)) {
      message("Point or option keyword required.");
      continue;
    }
    if (st != RTNORM) return st;
    if (a.kind == Answer::Point) {
      for (int i = 0; i < 3; ++i) out[i] = a.p[i];
    } else if (a.kind == Answer::Text) {
      double last[3];
      if (base) {
        for (int i = 0; i < 3; ++i) last[i] = base[i];
      } else {
        currentLastPoint(last);
      }
      if (!parsePoint(a.text, last, out)) {
        if (g.bits & RSG_OTHER) {
          lastKeyword = a.text;
          return RTKWORD;
        }
        message("Invalid point.");
        continue;
      }
    } else {
      message("Invalid point.");
      continue;
    }
    rememberPoint(out);
    return RTNORM;
  }
}

int getReal(const std::u16string& prompt, double* out, bool integer, const double* base) {
  InitGet g = std::move(pending);
  pending = InitGet{};
  for (;;) {
    Answer a;
    int st = common(g, prompt, false, &a);
    if (st == RTNONE && (g.bits & RSG_NONULL)) {
      message(integer ? "Requires an integer value." : "Requires numeric value.");
      continue;
    }
    if (st != RTNORM) return st;
    double v = 0;
    bool ok = false;
    if (a.kind == Answer::Real) {
      v = a.r, ok = !integer || v == std::floor(v);
    } else if (a.kind == Answer::Int) {
      v = a.i, ok = true;
    } else if (a.kind == Answer::Point && base) {
      v = std::hypot(a.p[0] - base[0], a.p[1] - base[1], a.p[2] - base[2]), ok = true;
    } else if (a.kind == Answer::Text) {
      double p[3];
      ok = parseReal(a.text, &v) && (!integer || (v == std::floor(v) && std::fabs(v) <= 32767));
      if (!ok && base && parsePoint(a.text, base, p)) {
        v = std::hypot(p[0] - base[0], p[1] - base[1], p[2] - base[2]);
        ok = true;
      }
      if (!ok && (g.bits & RSG_OTHER)) {
        lastKeyword = a.text;
        return RTKWORD;
      }
    }
    if (!ok) {
      message(integer ? "Requires an integer value." : base ? "Requires numeric distance or second point."
                                                            : "Requires numeric value.");
      continue;
    }
    if ((g.bits & RSG_NOZERO) && v == 0) {
      message("Value must be nonzero.");
      continue;
    }
    if ((g.bits & RSG_NONEG) && v < 0) {
      message("Value must be positive.");
      continue;
    }
    *out = v;
    return RTNORM;
  }
}

namespace {

double sysNumber(const char16_t* name) {
  SysValue v;
  if (!getSysVar(name, &v)) return 0;
  return v.kind == SysValue::Real ? v.r : v.kind == SysValue::Int ? v.i : 0;
}

double normalAngle(double v) {
  v = std::fmod(v, 2 * M_PI);
  if (v < 0) v += 2 * M_PI;
  return v;
}

// The absolute direction of a typed angle (see typedAngle).
bool typedDirection(std::u16string_view text, double* out) {
  double v = 0;
  if (!typedAngle(text, &v)) return false;
  *out = sysNumber(u"ANGBASE") + v;
  return true;
}

int angleInput(const double* base, const std::u16string& prompt, double* out, bool orient) {
  InitGet g = std::move(pending);
  pending = InitGet{};
  for (;;) {
    Answer a;
    int st = common(g, prompt, false, &a);
    if (st == RTNONE && (g.bits & RSG_NONULL)) {
      message("Requires valid numeric angle or second point.");
      continue;
    }
    if (st != RTNORM) return st;
    double v = 0, p[3];
    bool ok = false;
    if (a.kind == Answer::Real || a.kind == Answer::Int) {
      // A number from a program: degrees from ANGBASE in the sense of ANGDIR.
      double deg = (a.kind == Answer::Real ? a.r : a.i) * M_PI / 180.0;
      v = sysNumber(u"ANGBASE") + (angleSysInt(u"ANGDIR") == 1 ? -deg : deg), ok = true;
    } else if (a.kind == Answer::Text && typedDirection(a.text, &v)) {
      ok = true;
    } else if (base && (a.kind == Answer::Point || (a.kind == Answer::Text && parsePoint(a.text, base, p)))) {
      if (a.kind == Answer::Point)
        for (int i = 0; i < 3; ++i) p[i] = a.p[i];
      v = std::atan2(p[1] - base[1], p[0] - base[0]), ok = true;
    } else if (a.kind == Answer::Text && (g.bits & RSG_OTHER)) {
      lastKeyword = a.text;
      return RTKWORD;
    }
    if (!ok) {
      message("Requires valid numeric angle or second point.");
      continue;
    }
    *out = normalAngle(orient ? v : v - sysNumber(u"ANGBASE"));
    return RTNORM;
  }
}

}  // namespace

int getAngle(const double* base, const std::u16string& prompt, double* out) {
  return angleInput(base, prompt, out, false);
}

int getOrient(const double* base, const std::u16string& prompt, double* out) {
  return angleInput(base, prompt, out, true);
}

int getPickPoint(const std::u16string& prompt, double out[3], std::u16string* other, int64_t name[2]) {
  InitGet g = std::move(pending);
  pending = InitGet{};
  Answer a;
  int st = common(g, prompt, false, &a);
  if (st == RTNONE && (g.bits & RSG_NONULL)) st = RTREJ;
  if (st != RTNORM) return st;
  if (a.kind == Answer::Point) {
    for (int i = 0; i < 3; ++i) out[i] = a.p[i];
    return RTNORM;
  }
  if (a.kind == Answer::Name) {
    name[0] = a.name[0], name[1] = a.name[1];
    other->clear();
    return RTREJ;
  }
  double last[3];
  currentLastPoint(last);
  if (a.kind == Answer::Text && parsePoint(a.text, last, out)) return RTNORM;
  if (a.kind == Answer::Text && (g.bits & RSG_OTHER)) {
    lastKeyword = a.text;
    return RTKWORD;
  }
  name[0] = name[1] = 0;
  *other = a.kind == Answer::Text ? a.text : u"?";
  return RTREJ;
}

int getString(bool spaces, const std::u16string& prompt, std::u16string* out) {
  pending = InitGet{};
  Answer a;
  int st = Commands::get().next(prompt, spaces, &a);
  if (st != RTNORM) return st;
  *out = a.kind == Answer::Text ? a.text : std::u16string();
  return RTNORM;
}

int getKword(const std::u16string& prompt, std::u16string* out) {
  InitGet g = std::move(pending);
  pending = InitGet{};
  for (;;) {
    Answer a;
    int st = Commands::get().next(prompt, false, &a);
    if (st != RTNORM) return st;
    if (a.kind == Answer::Text && a.text.empty()) {
      if (g.bits & RSG_NONULL) {
        message("Invalid option keyword.");
        continue;
      }
      return RTNONE;
    }
    std::u16string k = a.kind == Answer::Text ? matchKeyword(g, a.text) : std::u16string();
    if (k.empty()) {
      if ((g.bits & RSG_OTHER) && a.kind == Answer::Text) {
        *out = a.text;
        return RTNORM;
      }
      message("Invalid option keyword.");
      continue;
    }
    lastKeyword = k;
    *out = k;
    return RTNORM;
  }
}

}  // namespace zepk::editor

using namespace zepk::editor;

namespace {

int copyOut(const std::u16string& s, ACHAR* result, size_t len) {
  if (!result || len == 0) return RTERROR;
  size_t n = std::min(s.size(), len - 1);
  for (size_t i = 0; i < n; ++i) result[i] = s[i];
  result[n] = 0;
  return n < s.size() ? RTINPUTTRUNCATED : RTNORM;
}

std::u16string text(const ACHAR* p) { return p ? std::u16string(p) : std::u16string(); }

}  // namespace

int acedInitGet(int val, const ACHAR* kwl) { return initGet(val, kwl ? std::u16string_view(kwl) : u""); }

int acedGetPoint(const ads_point pt, const ACHAR* prompt, ads_point result) {
  return getPoint(pt, text(prompt), result);
}

int acedGetReal(const ACHAR* prompt, ads_real* result) { return getReal(text(prompt), result, false, nullptr); }

int acedGetDist(const ads_point pt, const ACHAR* prompt, ads_real* result) {
  double last[3];
  if (!pt) currentLastPoint(last);
  return getReal(text(prompt), result, false, pt ? pt : last);
}

int acedGetAngle(const ads_point pt, const ACHAR* prompt, ads_real* result) {
  return getAngle(pt, text(prompt), result);
}

int acedGetOrient(const ads_point pt, const ACHAR* prompt, ads_real* result) {
  return getOrient(pt, text(prompt), result);
}

int acedGetCorner(const ads_point pt, const ACHAR* prompt, ads_point result) {
  if (!pt) return RTERROR;
  return getPoint(pt, text(prompt), result);
}

int acedGetInt(const ACHAR* prompt, int* result) {
  double v = 0;
  int st = getReal(text(prompt), &v, true, nullptr);
  if (st == RTNORM) *result = static_cast<int>(v);
  return st;
}

int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t bufLen) {
  std::u16string s;
  int st = getString(cronly != 0, text(prompt), &s);
  if (st != RTNORM) return st;
  return copyOut(s, result, bufLen);
}

int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t bufLen) {
  std::u16string s;
  int st = getKword(text(prompt), &s);
  if (st != RTNORM) return st;
  return copyOut(s, result, bufLen);
}

int acedGetInput(ACHAR* str, size_t bufLen) { return copyOut(lastKeyword, str, bufLen); }

namespace {

bool exists(const std::u16string& name, bool* folder) {
  struct stat st;
  if (::stat(zepk::sys::toNativePath(name).c_str(), &st) != 0) return false;
  *folder = S_ISDIR(st.st_mode);
  return true;
}

// The name with the first of the extensions when it has none.
std::u16string withExtension(std::u16string name, std::u16string_view ext) {
  size_t semi = ext.find(u';');
  std::u16string first(ext.substr(0, semi));
  while (!first.empty() && (first[0] == u'*' || first[0] == u'.')) first.erase(0, 1);
  if (first.empty() || first == u"*") return name;
  size_t slash = name.find_last_of(u"/\\");
  size_t dot = name.rfind(u'.');
  if (dot != std::u16string::npos && (slash == std::u16string::npos || dot > slash)) return name;
  return name + u"." + first;
}

}  // namespace

int acedGetFileD(const ACHAR* title, const ACHAR* defawlt, const ACHAR* ext, int flags, resbuf* result) {
  if (!result) return RTERROR;
  result->restype = RTNONE;
  std::u16string def = defawlt ? defawlt : u"";
  std::u16string extension = ext ? ext : u"";
  std::u16string prompt = u"\n" + (title && *title ? std::u16string(title) : std::u16string(u"Enter file name"));
  while (!prompt.empty() && (prompt.back() == u' ' || prompt.back() == u':')) prompt.pop_back();
  if (!def.empty() && !(flags & 16)) prompt += u" <" + def + u">";
  prompt += u": ";
  pending = InitGet{};
  for (;;) {
    std::u16string name;
    int st = getString(true, prompt, &name);
    if (st != RTNORM) return st;
    while (!name.empty() && name.back() == u' ') name.pop_back();
    if (name.size() >= 2 && name.front() == u'"' && name.back() == u'"') name = name.substr(1, name.size() - 2);
    if (name.empty()) {
      if (def.empty() || (flags & 16)) return RTERROR;
      name = def;
    } else if (flags & 16 && !def.empty()) {
      // The default names the folder of a name typed bare.
      bool folder = false;
      if (name.find_first_of(u"/\\") == std::u16string::npos && exists(def, &folder) && folder)
        name = def + (def.back() == u'/' || def.back() == u'\\' ? u"" : u"/") + name;
    }
    if (!(flags & 4) || name.find(u'.') == std::u16string::npos) name = withExtension(name, extension);
    bool folder = false;
    bool there = exists(name, &folder);
    if (flags & 1) {
      if (there && folder) {
        message("Invalid file name.");
        continue;
      }
      if (there && !(flags & 32)) {
        initGet(0, u"Yes No");
        std::u16string answer;
        int k = getKword(u"\nA file with that name already exists. Replace it? [Yes/No] <N>: ", &answer);
        if (k == RTCAN) return RTCAN;
        if (answer != u"Yes") continue;
      }
    } else if (!there || folder) {
      message(("File not found: " + zepk::sys::toUtf8(name)).c_str());
      continue;
    }
    size_t bytes = (name.size() + 1) * sizeof(ACHAR);
    result->restype = RTSTR;
    result->resval.rstring = static_cast<ACHAR*>(std::malloc(bytes));
    std::memcpy(result->resval.rstring, name.c_str(), bytes);
    return RTNORM;
  }
}
