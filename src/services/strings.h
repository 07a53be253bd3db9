// Text operations of the string family on plain wide strings: splitting on
// one or several separators, the search with its last-position rule,
// deleting, taking, inserting by characters, runs of single- and double-byte
// text, file-name parts and name checks.
#pragma once

#include <string_view>
#include <vector>

#include "host/ads.h"
#include "host/cstring.h"

namespace zepk::services {

// The text as the string class's Format makes it when the text itself is
// the format and no arguments follow: "%%" becomes "%", and every other
// conversion is expanded as if each argument it reads were zero (a number
// 0, a null string, which prints "(null)"). A "%" that starts no complete
// conversion stays as written.
CString formatWithoutArguments(const CString& text);

// Cut at each separator, from the front. Empty pieces are kept only when
// asked; the piece after the last separator is kept when it is not empty
// or when empty pieces are kept. An empty text gives nothing, an empty
// separator the text alone.
std::vector<CString> splitText(const CString& text, const CString& separator, bool keepEmpty);
// The same with several separators: at each step the one found first wins,
// on a tie the one listed first. No separators: the text alone. An empty
// separator in the list would never advance; it is taken as no match.
std::vector<CString> splitText(const CString& text, const std::vector<CString>& separators, bool keepEmpty);

// The first position from start whose characters equal the pattern, trying
// positions while position + pattern length stays below the text's length:
// a match that ends on the last character is not found. -1 when none.
int searchText(const CString& pattern, const CString& text, int start);

// Characters removed from start (below 0: 0); a count of 0 or less removes
// nothing, a start past the end nothing either.
CString deleteChars(const CString& text, int start, int count);
// From start (below 0: 0); a negative count means to the end.
CString midChars(const CString& text, int start, int count);
// The insert before the character at index (below 0: 0; past the end:
// appended). An empty text stays empty: it has no characters to insert
// among.
CString insertChars(const CString& text, int index, const CString& insert);

// Maximal runs of bytes below 160 and of bytes from 160 up, of the text in
// the system code page, each back as wide text.
std::vector<CString> splitByByteClass(const CString& text);

// Parts of a path by the last "\" and the last "." ("/" is no separator).
CString fileNameBase(const CString& path);
CString fileNameFull(const CString& path);
CString fileNamePath(const CString& path);
CString fileNameExt(const CString& path);
// False when the name holds one of the refused code units (see the .cpp).
bool isValidFileName(const CString& name);
// The same after a drive ("X:") at the front is taken off.
bool isValidPath(const CString& path);

// Sorts the numbers of an argument chain in place by exchange: each RTSHORT
// or RTREAL node is compared with every later one of those types and the
// two swap value and type when the earlier is greater (a value that lands
// in a short node is cut to an integer). Other nodes stay where they are.
// A point node (how a list of two or three numbers travels) is first turned
// back into that list, in place: list marks around reals, which then sort
// with the rest. The nodes added for that are new (acutNewRb) and the
// caller's to release.
void sortNumbersUp(resbuf* chain);

}  // namespace zepk::services
