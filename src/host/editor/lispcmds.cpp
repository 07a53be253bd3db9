// LISP's side of the command processor: command, command-s and vl-cmdf,
// the input functions (getpoint, getreal...), C: functions as commands and
// LISP expressions typed as answers.
#include <cmath>
#include <cstdlib>

#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/lispcmds.h"
#include "host/lisp/drawing.h"
#include "host/lisp/interp.h"
#include "host/lisp/printer.h"
#include "host/system/utf.h"

namespace zepk::editor {

extern std::function<bool(const std::u16string&)> loadLispFile;

namespace {

using lisp::ArgSpan;
using lisp::Interp;
using lisp::Value;

// An answer from a LISP value; false for a value no prompt takes.
bool answerOf(const Value& v, Answer* a) {
  double p[3];
  int dim = 0;
  switch (v.tag()) {
    case lisp::Tag::Str:
      a->kind = Answer::Text;
      a->text = v.as<lisp::String>()->s;
      if (a->text == u"\\") a->kind = Answer::Pause;
      return true;
    case lisp::Tag::Int:
      a->kind = Answer::Int;
      a->i = static_cast<int32_t>(v.asNumber());
      return true;
    case lisp::Tag::Real:
      a->kind = Answer::Real;
      a->r = v.asNumber();
      return true;
    case lisp::Tag::Ename:
      a->kind = Answer::Name;
      a->name[0] = v.as<lisp::Ename>()->name[0];
      a->name[1] = v.as<lisp::Ename>()->name[1];
      return true;
    case lisp::Tag::Pickset:
      a->kind = Answer::Picks;
      a->name[0] = v.as<lisp::Pickset>()->name[0];
      a->name[1] = v.as<lisp::Pickset>()->name[1];
      return true;
    case lisp::Tag::Nil:
      // nil answers Enter.
      a->kind = Answer::Text;
      a->text.clear();
      return true;
    case lisp::Tag::Cons:
      if (!lisp::toPoint(v, p, &dim)) return false;
      a->kind = Answer::Point;
      for (int i = 0; i < 3; ++i) a->p[i] = i < dim ? p[i] : 0;
      return true;
    default:
      return false;
  }
}

// Queues the arguments and runs the commands they name. Raises the host's
// errors: a value no prompt takes, an unknown command, a cancel.
Value runArgs(Interp& in, ArgSpan args, bool onlyQueued, bool* ok) {
  Commands& c = Commands::get();
  std::vector<Answer> answers;
  for (const Value& v : args) {
    Answer a;
    if (!answerOf(v, &a)) in.badType("", v);
    answers.push_back(a);
  }
  // Answers for a command that is still prompting (from an earlier
  // command call) go to it; others start commands.
  for (const Answer& a : answers) c.queue(a);
  if (answers.empty()) {
    *ok = true;
    return Value();
  }
  int st = runQueuedCommands(onlyQueued);
  *ok = st == RTNORM;
  if (st == RTCAN && !onlyQueued) in.fail("Function cancelled");
  return Value();
}

Value fnCommand(Interp& in, ArgSpan a) {
  bool ok = false;
  runArgs(in, a, false, &ok);
  return Value();
}

Value fnCommandS(Interp& in, ArgSpan a) {
  bool ok = false;
  runArgs(in, a, true, &ok);
  if (!ok) in.fail("Unknown command or command cancelled");
  return Value();
}

Value fnCmdf(Interp& in, ArgSpan a) {
  // The command must exist before any of it runs.
  if (a.size > 0 && a[0].isStr()) {
    const std::u16string& name = a[0].as<lisp::String>()->s;
    if (!name.empty() && !Commands::get().find(name)) {
      std::u16string bare = name;
      while (!bare.empty() && (bare[0] == u'_' || bare[0] == u'.' || bare[0] == u'\'')) bare.erase(0, 1);
      lisp::Symbol* fn = lisp::findSymbol("C:" + sys::toUtf8(bare));
      if (Commands::builtinOnly(name) || !fn || !fn->value.truthy()) return Value();
    }
  }
  bool ok = false;
  runArgs(in, a, false, &ok);
  return ok ? lisp::T() : Value();
}

// ------------------------------------------------------------- input

std::u16string promptArg(Interp& in, ArgSpan a, size_t i) {
  if (i >= a.size || a[i].isNil()) return u"";
  return lisp::argStr(in, a[i]);
}

Value inputResult(Interp& in, int st) {
  if (st == RTCAN) in.fail("Function cancelled");
  if (st == RTKWORD) return lisp::str(lastInputKeyword());
  return Value();
}

// (getpoint [pt] [msg]) and (getdist [pt] [msg]): the point may come first.
void pointAndPrompt(Interp& in, ArgSpan a, double base[3], bool* haveBase, std::u16string* prompt) {
  lisp::checkArgc(in, a, 0, 2);
  *haveBase = false;
  for (size_t i = 0; i < a.size; ++i) {
    if (a[i].isStr()) {
      *prompt = a[i].as<lisp::String>()->s;
    } else if (!a[i].isNil()) {
      lisp::argPoint(in, a[i], base);
      *haveBase = true;
    }
  }
}

Value fnGetpoint(Interp& in, ArgSpan a) {
  double base[3], p[3];
  bool haveBase;
  std::u16string prompt;
  pointAndPrompt(in, a, base, &haveBase, &prompt);
  int st = getPoint(haveBase ? base : nullptr, prompt, p);
  if (st == RTNORM) return lisp::pointValue(p, 3);
  return inputResult(in, st);
}

Value fnGetdist(Interp& in, ArgSpan a) {
  double base[3], d;
  bool haveBase;
  std::u16string prompt;
  pointAndPrompt(in, a, base, &haveBase, &prompt);
  int st = getReal(prompt, &d, false, haveBase ? base : nullptr);
  if (st == RTNORM) return Value::real(d);
  return inputResult(in, st);
}

Value fnGetangle(Interp& in, ArgSpan a) {
  double base[3], d;
  bool haveBase;
  std::u16string prompt;
  pointAndPrompt(in, a, base, &haveBase, &prompt);
  int st = getAngle(haveBase ? base : nullptr, prompt, &d);
  if (st == RTNORM) return Value::real(d);
  return inputResult(in, st);
}

Value fnGetorient(Interp& in, ArgSpan a) {
  double base[3], d;
  bool haveBase;
  std::u16string prompt;
  pointAndPrompt(in, a, base, &haveBase, &prompt);
  int st = getOrient(haveBase ? base : nullptr, prompt, &d);
  if (st == RTNORM) return Value::real(d);
  return inputResult(in, st);
}

// (getcorner point [prompt]): the other corner of a rectangle.
Value fnGetcorner(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 1, 2);
  double base[3], p[3];
  lisp::argPoint(in, a[0], base);
  int st = getPoint(base, promptArg(in, a, 1), p);
  if (st == RTNORM) return lisp::pointValue(p, 3);
  return inputResult(in, st);
}

// (getfiled title default ext flags): a file name asked on the command
// line (see acedGetFileD), nil when none is given.
Value fnGetfiled(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 4, 4);
  std::u16string title = lisp::argStr(in, a[0]), def = lisp::argStr(in, a[1]), ext = lisp::argStr(in, a[2]);
  int flags = lisp::argInt(in, a[3]);
  resbuf r;
  r.rbnext = nullptr;
  int st = acedGetFileD(title.c_str(), def.c_str(), ext.c_str(), flags, &r);
  if (st == RTCAN) in.fail("Function cancelled");
  if (st != RTNORM || r.restype != RTSTR) return Value();
  Value v = lisp::str(std::u16string(r.resval.rstring));
  std::free(r.resval.rstring);
  return v;
}

Value fnGetreal(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 0, 1);
  double d;
  int st = getReal(promptArg(in, a, 0), &d, false, nullptr);
  if (st == RTNORM) return Value::real(d);
  return inputResult(in, st);
}

Value fnGetint(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 0, 1);
  double d;
  int st = getReal(promptArg(in, a, 0), &d, true, nullptr);
  if (st == RTNORM) return Value::integer(static_cast<int32_t>(d));
  return inputResult(in, st);
}

Value fnGetstring(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 0, 2);
  bool spaces = false;
  std::u16string prompt;
  if (a.size == 2) {
    spaces = a[0].truthy();
    prompt = promptArg(in, a, 1);
  } else if (a.size == 1) {
    prompt = promptArg(in, a, 0);
  }
  std::u16string s;
  int st = getString(spaces, prompt, &s);
  if (st == RTCAN) in.fail("Function cancelled");
  return lisp::str(s);
}

Value fnGetkword(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 0, 1);
  std::u16string k;
  int st = getKword(promptArg(in, a, 0), &k);
  if (st == RTNORM) return lisp::str(k);
  if (st == RTCAN) in.fail("Function cancelled");
  return Value();
}

Value fnInitget(Interp& in, ArgSpan a) {
  lisp::checkArgc(in, a, 0, 2);
  int bits = 0;
  std::u16string kw;
  for (size_t i = 0; i < a.size; ++i) {
    if (a[i].isStr()) {
      kw = a[i].as<lisp::String>()->s;
    } else {
      bits = lisp::argInt(in, a[i]);
    }
  }
  initGet(bits, kw);
  return Value();
}

// (grdraw from to colour [highlight]) draws a temporary vector.
Value fnGrdraw(Interp& in, ArgSpan a) {
  checkArgc(in, a, 3, 4);
  double from[3], to[3];
  lisp::argPoint(in, a[0], from);
  lisp::argPoint(in, a[1], to);
  int color = lisp::argInt(in, a[2]);
  int hl = a.size > 3 ? lisp::argInt(in, a[3]) : 0;
  if (color < -1 || color > 255) in.fail(u"bad argument value: " + lisp::prin1String(a[2]));
  acedGrDraw(from, to, color, hl);
  return Value();
}

// (grvecs list [matrix]): colours and pairs of points, as acedGrVecs.
Value fnGrvecs(Interp& in, ArgSpan a) {
  checkArgc(in, a, 1, 2);
  resbuf head{};
  resbuf* tail = &head;
  for (Value p = lisp::argList(in, a[0]); p.isCons(); p = lisp::cdr(p)) {
    const Value& v = lisp::car(p);
    resbuf* rb = nullptr;
    double pt[3];
    if (v.isInt()) {
      rb = acutNewRb(RTSHORT);
      rb->resval.rint = static_cast<short>(v.asInt());
    } else if (lisp::toPoint(v, pt)) {
      rb = acutNewRb(RT3DPOINT);
      std::copy(pt, pt + 3, rb->resval.rpoint);
    } else {
      acutRelRb(head.rbnext);
      in.badType("pointp", v);
    }
    tail->rbnext = rb;
    tail = rb;
  }
  ads_matrix m;
  bool withMatrix = a.size > 1 && !a[1].isNil();
  if (withMatrix) {
    Value row = lisp::argList(in, a[1]);
    for (int i = 0; i < 4; ++i, row = lisp::cdr(row)) {
      Value col = lisp::car(row);
      for (int j = 0; j < 4; ++j, col = lisp::cdr(col)) {
        if (!lisp::car(col).isInt() && !lisp::car(col).isReal()) {
          acutRelRb(head.rbnext);
          in.badType("numberp", lisp::car(col));
        }
        m[i][j] = lisp::argNum(in, lisp::car(col));
      }
    }
  }
  int st = acedGrVecs(head.rbnext, withMatrix ? m : nullptr);
  acutRelRb(head.rbnext);
  if (st != RTNORM) in.fail(u"bad argument value: " + lisp::prin1String(a[0]));
  return Value();
}

// (redraw [entity [mode]]).
Value fnRedraw(Interp& in, ArgSpan a) {
  checkArgc(in, a, 0, 2);
  if (a.size == 0 || a[0].isNil()) {
    acedRedraw(nullptr, 0);
    return Value();
  }
  int64_t n[2];
  lisp::argEname(in, a[0], n);
  int mode = a.size > 1 ? lisp::argInt(in, a[1]) : 1;
  if (mode < 1 || mode > 4) in.fail(u"bad argument value: " + lisp::prin1String(a[1]));
  acedRedraw(n, mode);
  return Value();
}

}  // namespace

void installCommandFunctions(lisp::Interp& in) {
  in.defSubr("command", fnCommand);
  in.defSubr("command-s", fnCommandS);
  in.defSubr("vl-cmdf", fnCmdf);
  in.defSubr("getpoint", fnGetpoint);
  in.defSubr("getdist", fnGetdist);
  in.defSubr("getreal", fnGetreal);
  in.defSubr("getangle", fnGetangle);
  in.defSubr("getorient", fnGetorient);
  in.defSubr("getcorner", fnGetcorner);
  in.defSubr("getfiled", fnGetfiled);
  in.defSubr("getint", fnGetint);
  in.defSubr("getstring", fnGetstring);
  in.defSubr("getkword", fnGetkword);
  in.defSubr("initget", fnInitget);
  in.defSubr("grdraw", fnGrdraw);
  in.defSubr("grvecs", fnGrvecs);
  in.defSubr("redraw", fnRedraw);
  in.setVar("pause", lisp::str(u"\\"));

  Commands& c = Commands::get();
  c.evalAnswer = [](const std::u16string& text, Answer* a) {
    Interp* in = Interp::current();
    Value v;
    if (!in || !in->evalText(text, &v)) return false;
    if (!answerOf(v, a)) {
      a->kind = Answer::Text;
      a->text = lisp::princString(v);
    }
    return true;
  };
  c.runLispCommand = [](const std::u16string& name, int* status) {
    lisp::Symbol* fn = lisp::findSymbol("C:" + sys::toUtf8(name));
    Interp* in = Interp::current();
    if (!in || !fn || !fn->value.truthy()) return false;
    Value v;
    bool ok = in->callTop(fn->value, {}, &v);
    if (ok && !lisp::isVoid(v)) {
      in->out().freshLine();
      in->out().write(lisp::prin1String(v));
      in->out().write(std::string_view("\n"));
    }
    *status = ok ? RTNORM : RTCAN;
    return true;
  };
  loadLispFile = [](const std::u16string& path) {
    Interp* in = Interp::current();
    return in && in->loadFile(sys::toUtf8(path));
  };
}

}  // namespace zepk::editor
