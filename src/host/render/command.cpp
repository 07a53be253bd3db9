// EXPORT asks for the picture's file name; before it, the keywords set the
// size (or scale), a window of the drawing, the background and a frame,
// each asked for in turn as the host's commands ask.
#include "host/render/command.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/ads.h"
#include "host/dbapserv.h"
#include "host/editor/cmd_common.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/render/picture.h"
#include "host/system/utf.h"

namespace zepk::render {

namespace {

using editor::cmd::say;

std::u16string defaultName() {
  std::u16string name = editor::cmd::sysString(u"DWGNAME");
  size_t dot = name.rfind(u'.');
  if (dot != std::u16string::npos) name.resize(dot);
  if (name.empty()) name = u"Drawing1";
  return name + u".png";
}

// The keyword an answer names: the whole word or its capitals, in any case.
const char16_t* keywordOf(const std::u16string& answer) {
  static const char16_t* const kWords[] = {u"Size", u"Window", u"Extents", u"Background", u"Frame"};
  std::u16string a = editor::cmd::upper(answer);
  if (a.empty()) return nullptr;
  for (const char16_t* w : kWords) {
    std::u16string word = editor::cmd::upper(w);
    if (a == word || (a.size() < word.size() && word.compare(0, a.size(), a) == 0)) return w;
  }
  return nullptr;
}

std::string sizeText(const PictureOptions& o) {
  if (o.scale > 0) return editor::cmd::fmt(o.scale);
  return std::to_string(o.width) + "x" + std::to_string(o.height);
}

// False when cancelled.
bool askSize(PictureOptions& o) {
  for (;;) {
    std::u16string s;
    std::u16string prompt = u"\nEnter picture size in pixels (WIDTHxHEIGHT) or pixels per drawing unit <" +
                            sys::fromUtf8(sizeText(o)) + u">: ";
    if (editor::getString(false, prompt, &s) != RTNORM) return false;
    if (s.empty()) return true;
    std::string t = sys::toUtf8(s);
    int w, h;
    if (parsePictureSize(t, &w, &h)) {
      o.width = w, o.height = h, o.scale = 0;
      return true;
    }
    char* end = nullptr;
    double k = t.find_first_of("xX") == std::string::npos ? std::strtod(t.c_str(), &end) : 0.0;
    if (end && *end == 0 && k > 0 && std::isfinite(k)) {
      o.scale = k;
      return true;
    }
    say("Requires WIDTHxHEIGHT from 1 to " + std::to_string(kMaxPictureSide) + " pixels, or a positive number.\n");
  }
}

bool askWindow(PictureOptions& o) {
  double a[3], b[3];
  if (editor::getPoint(nullptr, u"\nSpecify first corner: ", a) != RTNORM) return false;
  for (;;) {
    if (editor::getPoint(a, u"\nSpecify opposite corner: ", b) != RTNORM) return false;
    if (a[0] != b[0] && a[1] != b[1]) break;
    say("The window must have a width and a height.\n");
  }
  o.hasWindow = true;
  o.window[0] = a[0], o.window[1] = a[1], o.window[2] = b[0], o.window[3] = b[1];
  return true;
}

bool askChoice(const char16_t* keywords, const std::u16string& prompt, std::u16string* out) {
  editor::initGet(0, keywords);
  int st = editor::getKword(prompt, out);
  if (st == RTNONE) out->clear();
  return st == RTNORM || st == RTNONE;
}

void cmdExport() {
  PictureOptions o;
  std::u16string name;
  for (;;) {
    std::u16string prompt = u"\nEnter picture file name or [Size/Window/Extents/Background/Frame] <" +
                            defaultName() + u">: ";
    // A space ends the answer, so that the keywords can follow one another
    // on a line; a name with spaces is typed in double quotes.
    if (editor::getString(false, prompt, &name) != RTNORM) return;
    if (!name.empty() && name[0] == u'"') {
      std::u16string rest;
      if ((name.size() < 2 || name.back() != u'"') && editor::Commands::get().takeLineRest(&rest)) {
        size_t close = rest.find(u'"');
        name += u" " + rest.substr(0, close == std::u16string::npos ? rest.size() : close + 1);
        if (close != std::u16string::npos && close + 1 < rest.size()) {
          size_t from = rest.find_first_not_of(u' ', close + 1);
          if (from != std::u16string::npos) editor::Commands::get().setLine(rest.substr(from));
        }
      }
      name = name.substr(1);
      if (!name.empty() && name.back() == u'"') name.pop_back();
      break;
    }
    const char16_t* k = keywordOf(name);
    if (!k) break;
    std::u16string kw = k, choice;
    if (kw == u"Size") {
      if (!askSize(o)) return;
    } else if (kw == u"Window") {
      if (!askWindow(o)) return;
    } else if (kw == u"Extents") {
      o.hasWindow = false;
    } else if (kw == u"Background") {
      std::u16string def = o.blackBackground ? u"Black" : u"White";
      if (!askChoice(u"White Black", u"\nBackground color [White/Black] <" + def + u">: ", &choice)) return;
      if (!choice.empty()) o.blackBackground = choice == u"Black";
    } else if (kw == u"Frame") {
      std::u16string def = o.frame ? u"Yes" : u"No";
      if (!askChoice(u"Yes No", u"\nFrame the drawing's extents? [Yes/No] <" + def + u">: ", &choice)) return;
      if (!choice.empty()) o.frame = choice == u"Yes";
    }
  }
  if (name.empty()) name = defaultName();
  std::string error;
  AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
  if (!writePicture(db, sys::toUtf8(name), o, &error)) say(error + "\n");
}

}  // namespace

void registerRenderCommands() {
  editor::CommandDef d;
  d.group = u"ZEPK_HOST";
  d.global = d.local = u"EXPORT";
  d.fn = cmdExport;
  d.builtin = true;
  d.noUndoMark = true;
  editor::Commands::get().add(d);
}

}  // namespace zepk::render
