// The LISP functions of the string and file-name family.
#pragma once

namespace zepk::services {

int lispListSortUp();
int lispFileNameIsValid();
int lispPathIsValid();
int lispStringSplit();
int lispStringUnsplit();
int lispStringReplace();
int lispStringReverse();
int lispStringSearch();
int lispStringTrimLeft();
int lispStringTrimRight();
int lispStringTrim();
int lispStringDelete();
int lispStringMid();
int lispStringRemove();
int lispStringInsert();
int lispStringLength();
int lispStringSplitSingles();
int lispStringSplitByChEn();
int lispStringCompareNoCase();
int lispFileNameBase();
int lispFileNameFull();
int lispFileNamePath();
int lispFileNameExt();
int lispApiPath();

}  // namespace zepk::services
