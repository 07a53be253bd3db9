// The database's own classes, registered together when the class
// dictionary is first used, parents before children.
#include "host/db/dbobjects.h"
#include "host/db/dxfinternal.h"
#include "host/db/ents_internal.h"
#include "host/db/internal.h"
#include "host/dbidmap.h"

namespace zepk::db {

void registerHostClasses() {
  AcRxObject::desc();
  AcRxClass::desc();
  AcDbObject::desc();
  AcDbDatabase::desc();
  AcDbIdMapping::desc();
  registerObjectClasses();
  registerEntityClasses();
  registerFileClasses();
}

}  // namespace zepk::db
