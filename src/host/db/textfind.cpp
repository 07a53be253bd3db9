// Finding (and replacing) text in a drawing.
#include <string>
#include <vector>

#include "host/dbents.h"
#include "host/dbmtext.h"
#include "host/dbsymtb.h"
#include "host/lisp/wildcard.h"

namespace {

bool isWordChar(char16_t c) { return zepk::lisp::wcIsAlpha(c) || zepk::lisp::wcIsDigit(c) || c == u'_'; }

char16_t fold(char16_t c, bool matchCase) { return matchCase ? c : zepk::lisp::foldUpper(c); }

// Where the word occurs in the text, from `from` on; npos when nowhere.
size_t findIn(const std::u16string& text, const std::u16string& word, size_t from, Adesk::UInt8 options) {
  bool matchCase = options & AcDb::kTextFindMatchCase;
  bool whole = options & AcDb::kTextFindWholeWord;
  for (size_t i = from; i + word.size() <= text.size(); ++i) {
    size_t k = 0;
    while (k < word.size() && fold(text[i + k], matchCase) == fold(word[k], matchCase)) ++k;
    if (k < word.size()) continue;
    if (whole && ((i > 0 && isWordChar(text[i - 1])) ||
                  (i + word.size() < text.size() && isWordChar(text[i + word.size()]))))
      continue;
    return i;
  }
  return std::u16string::npos;
}

// Whether the text matches; with a replacement, the new text in *out.
bool matchText(const std::u16string& text, const std::u16string& find, const ACHAR* replace, Adesk::UInt8 options,
               std::u16string* out) {
  if (options & AcDb::kTextFindWildcards) {
    if (!zepk::lisp::wcMatch(text, find, options & AcDb::kTextFindMatchCase)) return false;
    if (replace) *out = replace;
    return true;
  }
  size_t at = findIn(text, find, 0, options);
  if (at == std::u16string::npos) return false;
  if (!replace) return true;
  std::u16string result, with(replace);
  size_t done = 0;
  for (; at != std::u16string::npos; at = findIn(text, find, done, options)) {
    result.append(text, done, at - done);
    result += with;
    done = at + find.size();
  }
  result.append(text, done, std::u16string::npos);
  *out = result;
  return true;
}

struct Finder {
  std::u16string find;
  const ACHAR* replace;
  Adesk::UInt8 options;
  AcDbObjectIdArray& found;

  // One entity, and the attributes of a block reference.
  void visit(const AcDbObjectId& id) {
    AcDbEntity* e = nullptr;
    if (acdbOpenObject(e, id, AcDb::kForRead) != Acad::eOk) return;
    std::u16string text;
    bool isText = false;
    if (const AcDbText* t = AcDbText::cast(e)) text = t->textString(), isText = true;
    else if (const AcDbMText* m = AcDbMText::cast(e)) text = m->contents(), isText = true;
    std::vector<AcDbObjectId> attributes;
    if (const AcDbBlockReference* r = AcDbBlockReference::cast(e)) {
      std::unique_ptr<AcDbObjectIterator> it(r->attributeIterator());
      for (; it && !it->done(); it->step()) attributes.push_back(it->objectId());
    }
    e->close();
    std::u16string replaced;
    if (isText && matchText(text, find, replace, options, &replaced)) {
      if (!replace) {
        found.push_back(id);
      } else if (acdbOpenObject(e, id, AcDb::kForWrite) == Acad::eOk) {
        Acad::ErrorStatus es = Acad::eOk;
        if (AcDbText* t = AcDbText::cast(e)) es = t->setTextString(replaced.c_str());
        else if (AcDbMText* m = AcDbMText::cast(e)) es = m->setContents(replaced.c_str());
        e->close();
        if (es == Acad::eOk) found.push_back(id);
      }
    }
    for (const AcDbObjectId& a : attributes) visit(a);
  }
};

bool isSpaceName(const std::u16string& name) {
  auto starts = [&](const std::u16string& p) {
    if (name.size() < p.size()) return false;
    for (size_t i = 0; i < p.size(); ++i)
      if (zepk::lisp::foldUpper(name[i]) != zepk::lisp::foldUpper(p[i])) return false;
    return true;
  };
  return starts(u"*Model_Space") || starts(u"*Paper_Space");
}

}  // namespace

Acad::ErrorStatus acdbTextFind(AcDbDatabase* db, AcDbObjectIdArray& resultSet, const ACHAR* findString,
                               const ACHAR* replaceString, Adesk::UInt8 searchOptions,
                               const AcDbObjectIdArray& selSet) {
  resultSet.clear();
  if (!db || !findString || !*findString) return Acad::eInvalidInput;
  Finder f{findString, replaceString, searchOptions, resultSet};
  if (!selSet.empty()) {
    for (const AcDbObjectId& id : selSet)
      if (id.database() == db) f.visit(id);
    return Acad::eOk;
  }
  AcDbBlockTable* table = nullptr;
  Acad::ErrorStatus es = db->getBlockTable(table, AcDb::kForRead);
  if (es != Acad::eOk) return es;
  std::vector<AcDbObjectId> spaces;
  AcDbBlockTableIterator* it = nullptr;
  if (table->newIterator(it) == Acad::eOk) {
    for (; !it->done(); it->step()) {
      AcDbBlockTableRecord* rec = nullptr;
      if (it->getRecord(rec) != Acad::eOk) continue;
      if (isSpaceName(rec->name())) spaces.push_back(rec->objectId());
      rec->close();
    }
    delete it;
  }
  table->close();
  for (const AcDbObjectId& space : spaces) {
    AcDbBlockTableRecord* rec = nullptr;
    if (acdbOpenObject(rec, space, AcDb::kForRead) != Acad::eOk) continue;
    AcDbObjectIdArray ids = rec->entityIds();
    rec->close();
    for (const AcDbObjectId& id : ids) f.visit(id);
  }
  return Acad::eOk;
}
