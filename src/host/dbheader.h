// The header variables a drawing stores ($CLAYER, $LUNITS, ...), each a
// name with its value group, as the DXF header section holds them.
#pragma once

#include <string_view>

#include "host/db/memfiler.h"
#include "host/dbmain.h"

namespace zepk::db {

// The value group of the variable (name with its "$"); false when the
// drawing holds none.
bool getHeaderVar(AcDbDatabase* db, std::u16string_view name, DxfItem* value);
// Sets the variable to the one group, adding it when missing.
void setHeaderVar(AcDbDatabase* db, std::u16string_view name, const DxfItem& value);

}  // namespace zepk::db
