// The host's services to the drawing database: which drawing is the one
// being worked on, and the names by which LISP and compiled code refer to
// its objects.
#pragma once

#include "host/ads.h"
#include "host/dbmain.h"

class AcDbHostApplicationServices {
 public:
  // The drawing the command line works on; null before one is set.
  AcDbDatabase* workingDatabase() const { return working_; }
  // Makes db the working drawing (the caller keeps owning it). The
  // session's documents call it when a drawing is opened or made.
  void setWorkingDatabase(AcDbDatabase* db) { working_ = db; }

 private:
  AcDbDatabase* working_ = nullptr;
};

AcDbHostApplicationServices* acdbHostApplicationServices();

// Entity names. An object's name is its record's address, so it stays the
// same for the whole session and prints as the host prints it
// (<Entity name: 7ff6...>). A name from a drawing that has since closed, or
// one this host never gave, maps to no object (eInvalidAdsName).
Acad::ErrorStatus acdbGetAdsName(ads_name& objName, AcDbObjectId objId);
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& objId, const ads_name objName);
// The same into a name given by its first word's address (a parameter of
// type ads_name).
inline Acad::ErrorStatus adsNameOf(int64_t* out, AcDbObjectId objId) {
  ads_name n;
  Acad::ErrorStatus es = acdbGetAdsName(n, objId);
  out[0] = n[0];
  out[1] = n[1];
  return es;
}
