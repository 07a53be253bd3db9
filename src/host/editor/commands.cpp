#include "host/editor/commands.h"

#include <cmath>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "host/dbapserv.h"
#include "host/editor/sysvars.h"
#include "host/lisp/interp.h"
#include "host/lisp/units.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

std::u16string upper(std::u16string_view s) { return sys::asciiUpper(s); }

// Initget state for the next input call.
struct InitGet {
  int bits = 0;
  std::vector<std::u16string> local, global;
} initget;

InitGet takeInitGet() {
  InitGet g = std::move(initget);
  initget = InitGet{};
  return g;
}

}  // namespace

Commands& Commands::get() {
  static Commands c;
  return c;
}

Acad::ErrorStatus Commands::add(const CommandDef& def) {
  if (def.global.empty() || def.local.empty()) return Acad::eInvalidInput;
  std::u16string g = upper(def.global), l = upper(def.local), grp = upper(def.group);
  for (const CommandDef& c : cmds_)
    if (upper(c.group) == grp && (upper(c.global) == g || upper(c.local) == l)) return Acad::eDuplicateKey;
  cmds_.push_back(def);
  return Acad::eOk;
}

Acad::ErrorStatus Commands::removeGroup(std::u16string_view group) {
  std::u16string grp = upper(group);
  size_t before = cmds_.size();
  std::erase_if(cmds_, [&](const CommandDef& c) { return upper(c.group) == grp; });
  return cmds_.size() == before ? Acad::eKeyNotFound : Acad::eOk;
}

Acad::ErrorStatus Commands::remove(std::u16string_view group, std::u16string_view global) {
  std::u16string grp = upper(group), g = upper(global);
  size_t before = cmds_.size();
  std::erase_if(cmds_, [&](const CommandDef& c) { return upper(c.group) == grp && upper(c.global) == g; });
  return cmds_.size() == before ? Acad::eKeyNotFound : Acad::eOk;
}

const CommandDef* Commands::find(std::u16string_view typed) const {
  bool global = false, builtin = false;
  std::u16string_view n = typed;
  while (!n.empty() && (n[0] == u'_' || n[0] == u'.' || n[0] == u'\'')) {
    if (n[0] == u'_') global = true;
    if (n[0] == u'.') builtin = true;
    n.remove_prefix(1);
  }
  std::u16string u = upper(n);
  // The latest registration wins, so that a module may redefine a name;
  // "." still reaches the host's own command.
  for (auto it = cmds_.rbegin(); it != cmds_.rend(); ++it) {
    if (builtin && !it->builtin) continue;
    if (upper(global ? it->global : it->local) == u) return &*it;
  }
  return nullptr;
}

int Commands::run(std::u16string_view typed) {
  std::u16string n(typed);
  const CommandDef* def = find(n);
  std::u16string bare = n;
  while (!bare.empty() && (bare[0] == u'_' || bare[0] == u'.' || bare[0] == u'\'')) bare.erase(0, 1);
  bool transparent = !n.empty() && n.find(u'\'') != std::u16string::npos;
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  if (def && transparent && depth_ > 0 && !(def->flags & ACRX_CMD_TRANSPARENT)) {
    print(u"\n** That command may not be invoked transparently **\n");
    return RTERROR;
  }
  if (def) {
    AcRxFunctionPtr fn = def->fn;
    bool mark = depth_ == 0 && !def->noUndoMark && db;
    if (mark) db->beginUndoMark();
    ++depth_;
    bool wasCancelled = cancelled;
    cancelled = false;
    fn();
    bool c = cancelled;
    cancelled = wasCancelled;
    --depth_;
    // The working drawing may have changed (OPEN, NEW): close the mark in
    // the drawing it was opened in only if that is still the one.
    if (mark && db == acdbHostApplicationServices()->workingDatabase()) db->endUndoMark();
    return c ? RTCAN : RTNORM;
  }
  int status = RTNORM;
  if (!bare.empty() && runLispCommand && !builtinOnly(n)) {
    bool mark = depth_ == 0 && db;
    if (mark) db->beginUndoMark();
    ++depth_;
    bool found = runLispCommand(bare, &status);
    --depth_;
    if (mark && db == acdbHostApplicationServices()->workingDatabase()) db->endUndoMark();
    if (found) return status;
  }
  print(u"\nUnknown command \"" + upper(bare) + u"\".  Press F1 for help.\n");
  return RTERROR;
}

bool Commands::builtinOnly(std::u16string_view typed) {
  for (char16_t c : typed) {
    if (c == u'.') return true;
    if (c != u'_' && c != u'\'') break;
  }
  return false;
}

bool Commands::nextQueued(Answer* out) {
  if (queued_.empty()) return false;
  *out = queued_.front();
  queued_.pop_front();
  return true;
}

bool Commands::takeLineRest(std::u16string* rest) {
  if (!haveLine_) return false;
  *rest = pos_ < line_.size() ? line_.substr(pos_) : std::u16string();
  haveLine_ = false;
  line_.clear();
  pos_ = 0;
  return true;
}

// A leading "\n" starts a fresh line, as the host's messages do, and
// never leaves an empty one.
void Commands::print(const std::u16string& s) {
  lisp::Interp* in = lisp::Interp::current();
  if (!in || quiet) return;
  std::u16string_view v = s;
  if (!v.empty() && v[0] == u'\n') {
    in->out().freshLine();
    v.remove_prefix(1);
  }
  in->out().write(v);
}

void Commands::print(const std::string& s) { print(sys::fromUtf8(s)); }

namespace {

std::u16string showAnswer(const Answer& a) {
  char buf[128];
  switch (a.kind) {
    case Answer::Point:
      std::snprintf(buf, sizeof buf, "%.16g,%.16g,%.16g", a.p[0], a.p[1], a.p[2]);
      return sys::fromUtf8(buf);
    case Answer::Real:
      std::snprintf(buf, sizeof buf, "%.16g", a.r);
      return sys::fromUtf8(buf);
    case Answer::Int:
      return sys::fromUtf8(std::to_string(a.i));
    case Answer::Name:
    case Answer::Picks:
      std::snprintf(buf, sizeof buf, "<%s name: %llx>", a.kind == Answer::Name ? "Entity" : "Selection set",
                    static_cast<unsigned long long>(a.name[0]));
      return sys::fromUtf8(buf);
    default:
      return a.text;
  }
}

// The prompt on a line of its own: the host's prompts start with "\n",
// which begins a fresh line and no empty one.
void showPrompt(Commands& c, const std::u16string& prompt) {
  lisp::Interp* in = lisp::Interp::current();
  if (!in || c.quiet) return;
  std::u16string_view p = prompt;
  if (!p.empty() && p[0] == u'\n') {
    in->out().freshLine();
    p.remove_prefix(1);
  }
  in->out().write(p);
  (void)c;
}

}  // namespace

int Commands::next(const std::u16string& prompt, bool text, Answer* out) {
  showPrompt(*this, prompt);
  bool pause = false;
  if (!queued_.empty() && !pause) {
    Answer a = queued_.front();
    queued_.pop_front();
    if (a.kind != Answer::Pause) {
      print(showAnswer(a) + u"\n");
      *out = a;
      return RTNORM;
    }
    pause = true;
  }
  if (onlyQueued && !pause) {
    print(u"*Cancel*\n");
    cancelled = true;
    return RTCAN;
  }
  bool fromNewLine = false;
  if (!haveLine_) {
    std::string l;
    if (!next_ || !next_(&l)) {
      print(u"*Cancel*\n");
      cancelled = true;
      return RTCAN;
    }
    if (!l.empty() && l.back() == '\r') l.pop_back();
    setLine(sys::fromUtf8(l));
    fromNewLine = true;
  }
  size_t end = line_.size();
  if (!text) {
    // A LISP expression answers with its value.
    if (pos_ < line_.size() && line_[pos_] == u'(' && evalAnswer) {
      int depth = 0;
      bool inStr = false;
      size_t i = pos_;
      for (; i < line_.size(); ++i) {
        char16_t ch = line_[i];
        if (inStr) {
          if (ch == u'\\') ++i;
          else if (ch == u'"') inStr = false;
        } else if (ch == u'"') {
          inStr = true;
        } else if (ch == u'(') {
          ++depth;
        } else if (ch == u')' && --depth == 0) {
          break;
        }
      }
      std::u16string expr = line_.substr(pos_, i + 1 - pos_);
      pos_ = i + 1;
      if (pos_ < line_.size() && line_[pos_] == u' ') ++pos_;
      if (pos_ >= line_.size()) haveLine_ = false;
      if (echo_ || !fromNewLine) print(expr + u"\n");
      Answer a;
      ++waiting_;
      bool ok = evalAnswer(expr, &a);
      --waiting_;
      if (!ok) {
        cancelled = true;
        return RTCAN;
      }
      // An expression that gave answers (command) answers with them, as
      // when a program feeds a command that is waiting.
      if (!queued_.empty() && queued_.front().kind != Answer::Pause) {
        *out = queued_.front();
        queued_.pop_front();
        return RTNORM;
      }
      *out = a;
      return RTNORM;
    }
    size_t sp = line_.find(u' ', pos_);
    if (sp != std::u16string::npos) end = sp;
  }
  out->kind = Answer::Text;
  out->text = line_.substr(pos_, end - pos_);
  if (end < line_.size()) {
    pos_ = end + 1;
  } else {
    haveLine_ = false;
    line_.clear();
    pos_ = 0;
  }
  if (echo_ || !fromNewLine) print(out->text + u"\n");
  return RTNORM;
}

bool parseReal(std::u16string_view s, double* out) {
  std::string u = sys::toUtf8(std::u16string(s));
  if (u.empty() || u.find_first_of(" \t") != std::string::npos) return false;
  char* end = nullptr;
  double v = std::strtod(u.c_str(), &end);
  if (end != u.c_str() + u.size() || !std::isfinite(v)) return false;
  *out = v;
  return true;
}

bool parsePoint(std::u16string_view s, const double last[3], double out[3]) {
  bool rel = !s.empty() && s[0] == u'@';
  if (rel) s.remove_prefix(1);
  double base[3] = {0, 0, 0};
  if (rel)
    for (int i = 0; i < 3; ++i) base[i] = last[i];
  if (rel && s.empty()) {
    for (int i = 0; i < 3; ++i) out[i] = base[i];
    return true;
  }
  size_t lt = s.find(u'<');
  if (lt != std::u16string_view::npos) {
    // The direction in the drawing's angle units, from ANGBASE in the
    // sense of ANGDIR.
    double d;
    if (!parseReal(s.substr(0, lt), &d)) return false;
    std::u16string_view at = s.substr(lt + 1);
    bool neg = !at.empty() && at[0] == u'-';
    if (neg) at.remove_prefix(1);
    SysValue units, angBase, dir;
    getSysVar(u"AUNITS", &units);
    getSysVar(u"ANGBASE", &angBase);
    getSysVar(u"ANGDIR", &dir);
    std::optional<double> typed = at.empty() ? std::nullopt : lisp::parseAngle(at, units.i);
    if (!typed) return false;
    double a = neg ? -*typed : *typed;
    a = (angBase.kind == SysValue::Real ? angBase.r : 0) + (dir.i == 1 ? -a : a);
    out[0] = base[0] + d * std::cos(a);
    out[1] = base[1] + d * std::sin(a);
    out[2] = base[2];
    return true;
  }
  double v[3] = {0, 0, 0};
  int n = 0;
  size_t start = 0;
  for (;;) {
    size_t comma = s.find(u',', start);
    std::u16string_view part = s.substr(start, comma == std::u16string_view::npos ? std::u16string_view::npos : comma - start);
    if (n == 3 || !parseReal(part, &v[n])) return false;
    ++n;
    if (comma == std::u16string_view::npos) break;
    start = comma + 1;
  }
  if (n < 2) return false;
  for (int i = 0; i < 3; ++i) out[i] = base[i] + v[i];
  if (n == 2 && !rel) out[2] = 0;
  return true;
}

}  // namespace zepk::editor

using zepk::editor::Answer;
using zepk::editor::Commands;

// ------------------------------------------------------------ host API

AcEdCommandStack* acedRegCmdsPtr() {
  static AcEdCommandStack stack;
  return &stack;
}

Acad::ErrorStatus AcEdCommandStack::addCommand(const ACHAR* group, const ACHAR* global, const ACHAR* local,
                                               int32_t flags, AcRxFunctionPtr fn, void*, int, void*, void**) {
  if (!group || !global || !local || !fn) return Acad::eInvalidInput;
  zepk::editor::CommandDef d;
  d.group = group;
  d.global = global;
  d.local = local;
  d.flags = flags;
  d.fn = fn;
  return Commands::get().add(d);
}

Acad::ErrorStatus AcEdCommandStack::removeGroup(const ACHAR* group) {
  return group ? Commands::get().removeGroup(group) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcEdCommandStack::removeCmd(const ACHAR* group, const ACHAR* global) {
  return group && global ? Commands::get().remove(group, global) : Acad::eInvalidInput;
}

namespace {

bool toAnswer(const resbuf* rb, Answer* a) {
  switch (rb->restype) {
    case RTSTR:
      a->kind = Answer::Text;
      a->text = rb->resval.rstring ? rb->resval.rstring : u"";
      if (a->text == u"\\") a->kind = Answer::Pause;
      return true;
    case RTPOINT:
    case RT3DPOINT:
      a->kind = Answer::Point;
      for (int i = 0; i < 3; ++i) a->p[i] = rb->resval.rpoint[i];
      if (rb->restype == RTPOINT) a->p[2] = 0;
      return true;
    case RTREAL:
    case RTANG:
      a->kind = Answer::Real;
      a->r = rb->resval.rreal;
      return true;
    case RTSHORT:
      a->kind = Answer::Int;
      a->i = rb->resval.rint;
      return true;
    case RTLONG:
      a->kind = Answer::Int;
      a->i = rb->resval.rlong;
      return true;
    case RTENAME:
    case RTPICKS:
      a->kind = rb->restype == RTENAME ? Answer::Name : Answer::Picks;
      a->name[0] = rb->resval.rlname[0];
      a->name[1] = rb->resval.rlname[1];
      return true;
    default:
      return false;
  }
}

}  // namespace

namespace zepk::editor {

// Runs the commands named in the answers queued: each name starts a
// command, which takes the answers after it.
int runQueuedCommands(bool onlyQueued) {
  Commands& c = Commands::get();
  int status = RTNORM;
  bool saved = c.onlyQueued, savedQuiet = c.quiet;
  c.onlyQueued = onlyQueued;
  // CMDECHO 0 keeps the prompts and answers of commands run from programs
  // off the command line.
  SysValue echo;
  if (getSysVar(u"CMDECHO", &echo) && echo.kind == SysValue::Int && echo.i == 0) c.quiet = true;
  // Answers given while a command waits for one (an expression typed at
  // its prompt) are that command's.
  if (c.waiting() > 0) {
    c.onlyQueued = saved;
    c.quiet = savedQuiet;
    return RTNORM;
  }
  while (c.queued() > 0) {
    Answer name;
    if (!c.nextQueued(&name)) break;
    if (name.kind != Answer::Text) {
      status = RTERROR;
      break;
    }
    if (name.text.empty()) continue;  // Enter at "Command:" does nothing here
    if (c.echo()) c.print(u"Command: " + name.text + u"\n");
    status = c.run(name.text);
    if (status != RTNORM) break;
  }
  if (status != RTNORM) c.clearQueue();
  c.onlyQueued = saved;
  c.quiet = savedQuiet;
  return status;
}

}  // namespace zepk::editor

namespace {

int cmdChain(const resbuf* rb, bool onlyQueued) {
  Commands& c = Commands::get();
  for (const resbuf* p = rb; p; p = p->rbnext) {
    Answer a;
    if (!toAnswer(p, &a)) return RTERROR;
    c.queue(a);
  }
  return zepk::editor::runQueuedCommands(onlyQueued);
}

}  // namespace

int acedCmdS(const resbuf* rb) { return cmdChain(rb, true); }
int acedCmd(const resbuf* rb) { return cmdChain(rb, false); }

int acedCommandS(int rtype, ...) {
  va_list ap;
  va_start(ap, rtype);
  resbuf* head = nullptr;
  resbuf** tail = &head;
  int status = RTNORM;
  for (int t = rtype; t != 0 && t != RTNONE; t = va_arg(ap, int)) {
    resbuf* rb = acutNewRb(t);
    if (!rb) {
      status = RTERROR;
      break;
    }
    *tail = rb;
    tail = &rb->rbnext;
    switch (t) {
      case RTSTR: {
        const ACHAR* s = va_arg(ap, const ACHAR*);
        size_t n = 0;
        while (s && s[n]) ++n;
        rb->resval.rstring = static_cast<ACHAR*>(std::malloc((n + 1) * sizeof(ACHAR)));
        for (size_t i = 0; i < n; ++i) rb->resval.rstring[i] = s[i];
        rb->resval.rstring[n] = 0;
        break;
      }
      case RTPOINT:
      case RT3DPOINT: {
        const double* p = va_arg(ap, const double*);
        for (int i = 0; i < 3; ++i) rb->resval.rpoint[i] = (t == RTPOINT && i == 2) ? 0 : p[i];
        break;
      }
      case RTREAL:
      case RTANG:
        rb->resval.rreal = va_arg(ap, double);
        break;
      case RTSHORT:
        rb->resval.rint = static_cast<short>(va_arg(ap, int));
        break;
      case RTLONG:
        rb->resval.rlong = va_arg(ap, int32_t);
        break;
      case RTENAME:
      case RTPICKS: {
        const int64_t* n = va_arg(ap, const int64_t*);
        rb->resval.rlname[0] = n[0];
        rb->resval.rlname[1] = n[1];
        break;
      }
      default:
        status = RTERROR;
        break;
    }
    if (status != RTNORM) break;
  }
  va_end(ap);
  if (status == RTNORM) status = acedCmdS(head);
  acutRelRb(head);
  return status;
}
