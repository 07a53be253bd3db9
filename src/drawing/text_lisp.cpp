// Texts and the drawing's variables for LISP: the box of a text along its
// own direction, a text made multiline text, a variable read.
#include <cmath>
#include <cstdlib>

#include "drawing/create.h"
#include "drawing/lisp.h"
#include "drawing/lisp_common.h"
#include "host/dbmtext.h"
#include "host/dbsymtb.h"

namespace zepk::drawing {

namespace {

// The box of a text: turned with the text, lower left first. The texts of
// the family's failures are its own.
int textBox(bool nine) {
  resbuf* cur = acedGetArgs();
  if (!cur) return frame::fail(u"参数太少"), RTERROR;
  AcDbObjectId id;
  if (RbGetObjectId(&cur, id) != RTNORM) return frame::fail(u"参数错如"), RTERROR;
  int32_t digits = -1;
  if (!nine && cur) {
    if (RbGetLong(&cur, digits) != RTNORM) return frame::fail(u"参数错误"), RTERROR;
  }
  if (cur) return frame::fail(u"参数太多"), RTERROR;
  AcDbObjectPointer<AcDbEntity> e(id, AcDb::kForRead);
  if (e.openStatus() != Acad::eOk) return frame::fail(u"打开对象ID错误"), RTERROR;
  double angle = 0;
  if (const AcDbText* t = AcDbText::cast(e.object())) {
    angle = t->rotation();
  } else if (const AcDbMText* m = AcDbMText::cast(e.object())) {
    angle = m->rotation();
  } else {
    return frame::fail(u"参数错如"), RTERROR;
  }
  AcGePoint3d corners[4];
  if (!boxCorners(*e.object(), angle, corners)) return retNil();
  return retBox(corners, nine, digits);
}

}  // namespace

int lispTextGetBox() { return textBox(false); }
int lispTextGetBox9Pts() { return textBox(true); }

// A single-line text replaced by a multiline text of the same content,
// place, height, turn, style and properties.
int lispTextToMText() {
  Args a({MsgStyle::LineDot, MsgStyle::LineDot});
  AcDbObjectId id;
  if (!a.objectId(id) || !a.end()) return RTERROR;
  AcDbObjectPointer<AcDbText> t(id, AcDb::kForWrite);
  if (t.openStatus() == Acad::eOnLockedLayer) return frame::fail(u"\n对象只读!"), RTERROR;
  if (t.openStatus() == Acad::eNotThatKindOfClass) return frame::fail(u"\n对象错误!"), RTERROR;
  if (t.openStatus() != Acad::eOk) return frame::fail(u"\n打开对象失败!"), RTERROR;
  if (AcDbAttribute::cast(t.object()) || AcDbAttributeDefinition::cast(t.object())) {
    return frame::fail(u"\n对象错误!"), RTERROR;
  }
  auto* m = new AcDbMText();
  m->setPropertiesFrom(t.object());
  m->setTextStyle(t->textStyle());
  m->setLocation(t->position());
  m->setAttachment(AcDbMText::kBottomLeft);
  m->setTextHeight(t->height());
  m->setRotation(t->rotation());
  m->setContents(t->textString().c_str());
  AcDbObjectId made;
  if (appendToOwner(m, t->ownerId(), made) != Acad::eOk) return frame::fail(u"\n打开对象失败!"), RTERROR;
  t->erase();
  return retName(made);
}

// The value of a system variable; nil for a name the host does not know.
int lispDocGetVar() {
  Args a({MsgStyle::Plain, MsgStyle::Plain});
  std::u16string name;
  if (a.type() != RTSTR && a.more()) return frame::failBadArg(MsgStyle::Plain), RTERROR;
  if (!a.string(name) || !a.end()) return RTERROR;
  resbuf rb;
  if (acedGetVar(name.c_str(), &rb) != RTNORM) return retNil();
  rb.rbnext = nullptr;
  acedRetVal(&rb);
  if (rb.restype == RTSTR) std::free(rb.resval.rstring);
  return RSRSLT;
}

// (ZEPK-Text-Find text [replacement] [options] [entities]): the texts,
// multiline texts and attributes that hold the text, as a selection set;
// with a replacement (nil for none) each match is replaced. Options: 1
// letters' case must match, 2 whole words only, 4 the text is a wildcard
// pattern for the whole text.
int lispTextFind() {
  Args a({MsgStyle::Colon, MsgStyle::Colon});
  std::u16string find, replace;
  bool replacing = false;
  int32_t options = 0;
  std::vector<AcDbObjectId> within;
  if (!a.string(find)) return RTERROR;
  if (a.more()) {
    if (a.type() == RTNIL) a.flag();
    else if (!a.string(replace)) return RTERROR;
    else replacing = true;
  }
  if (a.more() && !a.integer(options)) return RTERROR;
  if (a.more() && a.type() == RTNIL) a.flag();
  else if (a.more() && !a.entities(within)) return RTERROR;
  if (!a.end()) return RTERROR;
  if (find.empty()) return frame::failBadArg(MsgStyle::Colon, 1), retNil();
  if (options < 0 || options > 7) return frame::failBadArg(MsgStyle::Colon, 3), retNil();
  AcDbObjectIdArray found, selection(within.begin(), within.end());
  if (acdbTextFind(databaseOr(nullptr), found, find.c_str(), replacing ? replace.c_str() : nullptr,
                   static_cast<Adesk::UInt8>(options), selection) != Acad::eOk)
    return retNil();
  return retSet(std::vector<AcDbObjectId>(found.begin(), found.end()));
}

}  // namespace zepk::drawing
