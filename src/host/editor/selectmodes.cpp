// The "Select objects:" prompt and the selection modes that need points.
#include "host/editor/selectmodes.h"

#include <algorithm>
#include <string>

#include "host/dbapserv.h"
#include "host/dbdict.h"
#include "host/dbgroup.h"
#include "host/dbsymtb.h"
#include "host/editor/commands.h"
#include "host/editor/input.h"
#include "host/editor/pick.h"
#include "host/entlist.h"
#include "host/selset.h"
#include "host/system/utf.h"

namespace zepk::editor {

namespace {

using selgeom::Pt;

constexpr char kExpects[] =
    "Expects a point or "
    "Window/Last/Crossing/BOX/ALL/Fence/WPolygon/CPolygon/Group/Add/Remove/Multiple/Previous/Undo/AUto/SIngle\n";

void say(const std::string& utf8) { Commands::get().print(utf8); }

std::u16string upper(std::u16string_view s) { return sys::asciiUpper(s); }

// The selection keywords, by what must be typed of each.
enum class Key { None, Window, Last, Crossing, Box, All, Fence, WPolygon, CPolygon, Group, Add, Remove, Multiple,
                 Previous, Undo, Auto, Single };

Key keyOf(std::u16string_view typed) {
  std::u16string t = upper(typed);
  if (!t.empty() && t[0] == u'_') t.erase(0, 1);
  struct K {
    const char16_t* word;
    size_t need;
    Key key;
  };
  static const K keys[] = {
      {u"WINDOW", 1, Key::Window},   {u"LAST", 1, Key::Last},       {u"CROSSING", 1, Key::Crossing},
      {u"BOX", 3, Key::Box},         {u"ALL", 3, Key::All},         {u"FENCE", 1, Key::Fence},
      {u"WPOLYGON", 2, Key::WPolygon}, {u"CPOLYGON", 2, Key::CPolygon}, {u"GROUP", 1, Key::Group},
      {u"ADD", 1, Key::Add},         {u"REMOVE", 1, Key::Remove},   {u"MULTIPLE", 1, Key::Multiple},
      {u"PREVIOUS", 1, Key::Previous}, {u"UNDO", 1, Key::Undo},     {u"AUTO", 2, Key::Auto},
      {u"SINGLE", 2, Key::Single},
  };
  for (const K& k : keys) {
    std::u16string_view w(k.word);
    if (t.size() >= k.need && t.size() <= w.size() && w.compare(0, t.size(), t) == 0) return k.key;
  }
  return Key::None;
}

struct Session {
  Session(const SelectOptions& o, std::vector<AcDbObjectId>& s) : opt(o), set(s) {}
  const SelectOptions& opt;
  std::vector<AcDbObjectId>& set;
  std::vector<Candidate> cands;
  bool haveCands = false;
  bool removing = false;
  // What each selection added or removed, for Undo.
  struct Step {
    std::vector<AcDbObjectId> ids;
    bool removed;
  };
  std::vector<Step> steps;

  const std::vector<Candidate>& candidates() {
    if (!haveCands) cands = visibleEntities(), haveCands = true;
    return cands;
  }

  // Takes what a selection found into the set (or out of it) and says so.
  void take(std::vector<AcDbObjectId> found) {
    // Filter first: what the filter refuses was never found.
    if (!opt.filter.empty()) {
      std::vector<AcDbObjectId> kept;
      db::filterIds(found, opt.filter, &kept);
      found = std::move(kept);
    }
    size_t n = found.size();
    size_t locked = 0;
    if (opt.rejectLocked) {
      std::vector<AcDbObjectId> open;
      for (AcDbObjectId id : found) {
        AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
        AcDbObjectPointer<AcDbLayerTableRecord> l(e ? e->layerId() : AcDbObjectId(), AcDb::kForRead);
        if (l && l->isLocked()) {
          ++locked;
        } else {
          open.push_back(id);
        }
      }
      found.swap(open);
    }
    bool before = !set.empty();
    size_t dup = 0, removed = 0;
    Step step{{}, removing};
    for (AcDbObjectId id : found) {
      auto it = std::find(set.begin(), set.end(), id);
      bool seen = std::find(step.ids.begin(), step.ids.end(), id) != step.ids.end();
      if (removing) {
        if (it != set.end()) set.erase(it), ++removed, step.ids.push_back(id);
      } else if (it != set.end() || seen) {
        ++dup;
      } else {
        set.push_back(id);
        step.ids.push_back(id);
      }
    }
    std::string msg = std::to_string(n) + " found";
    if (dup) msg += " (" + std::to_string(dup) + " duplicate)";
    if (removing) msg += ", " + std::to_string(removed) + " removed";
    if (before || removing) msg += ", " + std::to_string(set.size()) + " total";
    say(msg + "\n");
    if (locked) say(std::to_string(locked) + (locked == 1 ? " was" : " were") + " on a locked layer.\n");
    steps.push_back(std::move(step));
  }

  std::vector<AcDbObjectId> pick(const double p[3]) {
    std::vector<AcDbObjectId> out;
    if (opt.everythingUnderPick) {
      double tol = pickTolerance();
      for (const Candidate& c : candidates())
        if (selgeom::distanceTo(c.shape, {p[0], p[1]}) <= tol) out.push_back(c.id);
    } else {
      AcDbObjectId id = pickAt(candidates(), p);
      if (!id.isNull()) out.push_back(id);
    }
    return out;
  }

  std::vector<AcDbObjectId> byShape(ShapeMode mode, const std::vector<Pt>& pts) {
    std::vector<AcDbObjectId> out;
    selgeom::Box w = pts.size() >= 2 ? selgeom::windowOf(pts[0], pts[1]) : selgeom::Box{};
    for (const Candidate& c : candidates()) {
      bool in = false;
      switch (mode) {
        case ShapeMode::Window: in = selgeom::insideWindow(c.shape, w); break;
        case ShapeMode::Crossing: in = selgeom::crossesWindow(c.shape, w); break;
        case ShapeMode::WPolygon: in = selgeom::insidePolygon(c.shape, pts); break;
        case ShapeMode::CPolygon: in = selgeom::crossesPolygon(c.shape, pts); break;
        case ShapeMode::Fence: in = selgeom::crossesFence(c.shape, pts); break;
      }
      if (in) out.push_back(c.id);
    }
    return out;
  }

  // Two corners. RTNORM, or RTCAN.
  int corners(const double* first, std::vector<Pt>* out) {
    double a[3], b[3];
    if (first) {
      std::copy(first, first + 3, a);
    } else {
      initGet(RSG_NONULL, u"");
      if (getPoint(nullptr, u"\nSpecify first corner: ", a) != RTNORM) return RTCAN;
    }
    initGet(RSG_NONULL, u"");
    if (getPoint(a, u"\nSpecify opposite corner: ", b) != RTNORM) return RTCAN;
    *out = {{a[0], a[1]}, {b[0], b[1]}};
    return RTNORM;
  }

  // Points until Enter, "U" taking the last back. RTNORM or RTCAN.
  int points(bool fence, std::vector<Pt>* out) {
    out->clear();
    double prev[3];
    for (;;) {
      const char16_t* prompt = out->empty()   ? (fence ? u"\nSpecify first fence point: " : u"\nFirst polygon point: ")
                               : fence        ? u"\nSpecify next fence point or [Undo]: "
                                              : u"\nSpecify endpoint of line or [Undo]: ";
      initGet(0, out->empty() ? u"" : u"Undo");
      double p[3];
      int st = getPoint(out->empty() ? nullptr : prev, prompt, p);
      if (st == RTNONE) return RTNORM;
      if (st == RTKWORD) {
        if (!out->empty()) out->pop_back();
        if (!out->empty()) prev[0] = out->back().x, prev[1] = out->back().y;
        continue;
      }
      if (st != RTNORM) return RTCAN;
      out->push_back({p[0], p[1]});
      std::copy(p, p + 3, prev);
    }
  }

  std::vector<AcDbObjectId> all() {
    std::vector<AcDbObjectId> ids, out;
    db::selectAll(acdbHostApplicationServices()->workingDatabase(), {}, &ids, nullptr);
    // Everything but what lies on frozen layers.
    for (AcDbObjectId id : ids) {
      AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
      AcDbObjectPointer<AcDbLayerTableRecord> l(e ? e->layerId() : AcDbObjectId(), AcDb::kForRead);
      if (e && !(l && l->isFrozen())) out.push_back(id);
    }
    return out;
  }

  std::vector<AcDbObjectId> last() {
    AcDbObjectId id = db::lastEntity(acdbHostApplicationServices()->workingDatabase());
    for (const Candidate& c : candidates())
      if (c.id == id) return {id};
    return {};
  }

  // A group's entities by its name; false (said) when there is none.
  bool group(std::vector<AcDbObjectId>* out) {
    std::u16string name;
    if (getString(false, u"\nEnter group name: ", &name) != RTNORM) return false;
    AcDbDatabase* db = acdbHostApplicationServices()->workingDatabase();
    AcDbDictionary* dict = nullptr;
    AcDbObjectId gid;
    if (db && db->getGroupDictionary(dict, AcDb::kForRead) == Acad::eOk) {
      dict->getAt(name.c_str(), gid);
      dict->close();
    }
    AcDbObjectPointer<AcDbGroup> g(gid, AcDb::kForRead);
    if (!g) {
      say("Group \"" + sys::toUtf8(name) + "\" has not been defined.\n");
      return false;
    }
    AcDbObjectIdArray ids;
    g->allEntityIds(ids);
    out->assign(ids.begin(), ids.end());
    return true;
  }

  void undo() {
    if (steps.empty()) {
      say("All selection sets have been undone.\n");
      return;
    }
    Step s = std::move(steps.back());
    steps.pop_back();
    for (AcDbObjectId id : s.ids) {
      if (s.removed) {
        set.push_back(id);
      } else {
        set.erase(std::remove(set.begin(), set.end(), id), set.end());
      }
    }
  }

  // Picks until Enter, taken as one selection.
  int multiple() {
    std::vector<AcDbObjectId> found;
    for (;;) {
      double p[3];
      int st = getPoint(nullptr, removing ? opt.removePrompt : opt.prompt, p);
      if (st == RTNONE) break;
      if (st != RTNORM) return RTCAN;
      for (AcDbObjectId id : pick(p)) found.push_back(id);
    }
    take(found);
    return RTNORM;
  }
};

std::vector<AcDbObjectId> names(const Answer& a) {
  std::vector<AcDbObjectId> out;
  auto add = [&](const ads_name n) {
    AcDbObjectId id;
    if (acdbGetObjectId(id, n) == Acad::eOk && !id.isNull() && !id.isErased()) out.push_back(id);
  };
  ads_name n = {a.name[0], a.name[1]};
  if (a.kind == Answer::Name) {
    add(n);
  } else if (const auto* members = db::setMembers(n)) {
    for (AcDbObjectId id : *members)
      if (!id.isErased()) out.push_back(id);
  }
  return out;
}

}  // namespace

int selectObjects(const SelectOptions& opt, std::vector<AcDbObjectId>* out) {
  out->clear();
  Session s{opt, *out};
  bool single = opt.single;
  for (;;) {
    Answer a;
    if (Commands::get().next(s.removing ? opt.removePrompt : opt.prompt, false, &a) != RTNORM) return RTCAN;
    double p[3] = {0, 0, 0};
    const double origin[3] = {0, 0, 0};
    bool selected = true;
    if (a.kind == Answer::Name || a.kind == Answer::Picks) {
      s.take(names(a));
    } else if (a.kind == Answer::Point ||
               (a.kind == Answer::Text && !a.text.empty() && parsePoint(a.text, origin, p))) {
      if (a.kind == Answer::Point) std::copy(a.p, a.p + 3, p);
      std::vector<AcDbObjectId> hit = s.pick(p);
      if (hit.empty()) {
        // Nothing there: the point starts a window, crossing when the
        // other corner lies to its left.
        std::vector<Pt> w;
        if (s.corners(p, &w) != RTNORM) return RTCAN;
        hit = s.byShape(w[1].x < w[0].x ? ShapeMode::Crossing : ShapeMode::Window, w);
      }
      s.take(hit);
    } else if (a.kind == Answer::Text && a.text.empty()) {
      return RTNORM;
    } else if (a.kind == Answer::Text) {
      std::vector<Pt> pts;
      std::vector<AcDbObjectId> found;
      switch (keyOf(a.text)) {
        case Key::Window:
        case Key::Crossing:
        case Key::Box:
          if (s.corners(nullptr, &pts) != RTNORM) return RTCAN;
          {
            Key k = keyOf(a.text);
            bool crossing = k == Key::Crossing || (k == Key::Box && pts[1].x < pts[0].x);
            s.take(s.byShape(crossing ? ShapeMode::Crossing : ShapeMode::Window, pts));
          }
          break;
        case Key::WPolygon:
        case Key::CPolygon:
        case Key::Fence: {
          Key k = keyOf(a.text);
          if (s.points(k == Key::Fence, &pts) != RTNORM) return RTCAN;
          s.take(s.byShape(k == Key::Fence      ? ShapeMode::Fence
                           : k == Key::WPolygon ? ShapeMode::WPolygon
                                                : ShapeMode::CPolygon,
                           pts));
          break;
        }
        case Key::All: s.take(s.all()); break;
        case Key::Last: s.take(s.last()); break;
        case Key::Previous: s.take(db::previousSet()); break;
        case Key::Group:
          if (s.group(&found)) {
            s.take(found);
          } else if (Commands::get().cancelled) {
            return RTCAN;
          }
          break;
        case Key::Remove: s.removing = true, selected = false; break;
        case Key::Add: s.removing = false, selected = false; break;
        case Key::Undo: s.undo(), selected = false; break;
        case Key::Auto: selected = false; break;
        case Key::Single: single = true, selected = false; break;
        case Key::Multiple:
          if (s.multiple() != RTNORM) return RTCAN;
          break;
        case Key::None:
          say("*Invalid selection*\n");
          say(kExpects);
          selected = false;
          break;
      }
    } else {
      say("*Invalid selection*\n");
      say(kExpects);
      selected = false;
    }
    if (single && selected) return RTNORM;
  }
}

std::vector<AcDbObjectId> selectByShape(ShapeMode mode, const std::vector<Pt>& points, bool rejectLocked) {
  SelectOptions opt;
  std::vector<AcDbObjectId> none;
  Session s{opt, none};
  std::vector<AcDbObjectId> ids = s.byShape(mode, points);
  if (rejectLocked) {
    std::erase_if(ids, [&](AcDbObjectId id) {
      for (const Candidate& c : s.candidates())
        if (c.id == id) return c.locked;
      return false;
    });
  }
  return ids;
}

namespace {

bool pointsOf(const void* chain, std::vector<Pt>* out) {
  for (const resbuf* rb = static_cast<const resbuf*>(chain); rb; rb = rb->rbnext) {
    if (rb->restype != RTPOINT && rb->restype != RT3DPOINT) return false;
    out->push_back({rb->resval.rpoint[0], rb->resval.rpoint[1]});
  }
  return true;
}

// acedSSGet's modes that need the editor: none (asking, or a pick at pt1),
// W and C with two corners, WP, CP and F with a chain of points, and the
// option strings ":S" (single), ":E" (everything under a pick), ":L" (no
// locked layers), which may be combined ("_:S:L"); ":N", ":U", ":V", "+."
// and the like change nothing here.
int editorSelection(const ACHAR* str, const void* pt1, const void* pt2, const std::vector<db::DxfItem>& filter,
                    std::vector<AcDbObjectId>* out) {
  std::u16string mode = upper(str ? str : u"");
  if (!mode.empty() && mode[0] == u'_') mode.erase(0, 1);
  SelectOptions opt;
  opt.filter = filter;
  auto filtered = [&](std::vector<AcDbObjectId> ids) {
    db::filterIds(ids, filter, out);
    return RTNORM;
  };
  if (mode == u"W" || mode == u"C") {
    if (!pt1 || !pt2) return RTERROR;
    const double* a = static_cast<const double*>(pt1);
    const double* b = static_cast<const double*>(pt2);
    return filtered(selectByShape(mode == u"W" ? ShapeMode::Window : ShapeMode::Crossing, {{a[0], a[1]}, {b[0], b[1]}}));
  }
  if (mode == u"WP" || mode == u"CP" || mode == u"F") {
    std::vector<Pt> pts;
    if (!pointsOf(pt1, &pts) || pts.size() < (mode == u"F" ? 2u : 3u)) return RTERROR;
    return filtered(selectByShape(mode == u"F" ? ShapeMode::Fence : mode == u"WP" ? ShapeMode::WPolygon
                                                                                   : ShapeMode::CPolygon,
                                  pts));
  }
  for (size_t i = 0; i < mode.size(); ++i) {
    char16_t c = mode[i];
    if (c == u':' && i + 1 < mode.size()) {
      char16_t o = mode[++i];
      if (o == u'S') opt.single = true;
      else if (o == u'E') opt.everythingUnderPick = true;
      else if (o == u'L') opt.rejectLocked = true;
      else if (o != u'N' && o != u'U' && o != u'V' && o != u'D' && o != u'R' && o != u'K' && o != u'C') return RTERROR;
    } else if (c != u'+' && c != u'.' && c != u'_') {
      return RTERROR;
    }
  }
  if (pt1) {
    const double* p = static_cast<const double*>(pt1);
    std::vector<Candidate> cands = visibleEntities();
    std::vector<AcDbObjectId> ids;
    if (opt.everythingUnderPick) {
      for (const Candidate& c : cands)
        if (selgeom::distanceTo(c.shape, {p[0], p[1]}) <= pickTolerance()) ids.push_back(c.id);
    } else {
      AcDbObjectId id = pickAt(cands, p);
      if (!id.isNull()) ids.push_back(id);
    }
    return filtered(ids);
  }
  int st = selectObjects(opt, out);
  return st == RTNORM ? RTNORM : RTCAN;
}

// The editor takes acedSSGet's interactive modes from the start.
[[maybe_unused]] const bool installed = (db::setEditorSelection(editorSelection), true);

}  // namespace

}  // namespace zepk::editor
