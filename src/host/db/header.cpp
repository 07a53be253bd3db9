#include "host/dbheader.h"

#include "host/db/internal.h"

namespace zepk::db {

bool getHeaderVar(AcDbDatabase* db, std::u16string_view name, DxfItem* value) {
  if (!db) return false;
  for (const HeaderVar& v : headerVars(db)) {
    if (v.name != name || v.groups.empty()) continue;
    *value = v.groups[0];
    return true;
  }
  return false;
}

void setHeaderVar(AcDbDatabase* db, std::u16string_view name, const DxfItem& value) {
  if (!db) return;
  auto& vars = headerVars(db);
  for (HeaderVar& v : vars) {
    if (v.name != name) continue;
    v.groups = {value};
    return;
  }
  vars.push_back(HeaderVar{std::u16string(name), {value}});
}

}  // namespace zepk::db
