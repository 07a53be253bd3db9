// Status values of the drawing database and its filers. The numbers that
// code written for the host compares against are the host's own (41 end of
// file, 51 invalid result buffer, 52 bad DXF sequence, 301 make me proxy);
// the others are this host's and are only ever used by name.
#pragma once

namespace Acad {

enum ErrorStatus : int {
  eOk = 0,
  eNotImplementedYet = 1,
  eNotApplicable = 2,
  eInvalidInput = 3,
  eAmbiguousInput = 4,
  eAmbiguousOutput = 5,
  eOutOfMemory = 6,
  eBufferTooSmall = 7,
  eInvalidOpenState = 8,
  eEntityInUse = 9,
  eEntityNotInUse = 10,
  eInvalidIndex = 11,
  eNullObjectId = 12,
  eNullObjectPointer = 13,
  eNotInDatabase = 14,
  eAlreadyInDb = 15,
  eWrongDatabase = 16,
  eHandleInUse = 17,
  eKeyNotFound = 18,
  eDuplicateKey = 19,
  eInvalidKey = 20,
  eNotThatKindOfClass = 21,
  eWrongObjectType = 22,
  eWasErased = 23,
  eWasNotErased = 24,
  eWasOpenForRead = 25,
  eWasOpenForWrite = 26,
  eWasOpenForNotify = 27,
  eWasNotifying = 28,
  eNotOpenForWrite = 29,
  eNotOpenForRead = 30,
  eOnLockedLayer = 31,
  eAtMaxReaders = 32,
  eXdataSizeExceeded = 33,
  eRegappIdNotFound = 34,
  eInvalidXDataAppName = 35,
  eSelfReference = 36,
  eOwnerNotSet = 37,
  eDegenerateGeometry = 38,
  eEndOfObject = 40,
  eEndOfFile = 41,
  eIsReading = 42,
  eIsWriting = 43,
  eMissingDxfField = 48,
  eDuplicateDxfField = 49,
  eInvalidDxfCode = 50,
  eInvalidResBuf = 51,
  eBadDxfSequence = 52,
  eFilerError = 53,
  eFileNotFound = 60,
  eFileAccessErr = 61,
  eInvalidDwgVersion = 62,
  eNotAnEntity = 70,
  eNotAllowedForThisProxy = 71,
  eMakeMeProxy = 301,
  // Symbol tables: a record whose name the table has already, a name with
  // characters that names may not hold, a record the drawing cannot do
  // without (layer "0", the standard linetypes, the two spaces).
  eDuplicateRecordName = 401,
  eInvalidSymbolTableName = 402,
  eCannotBeErasedByCaller = 403,
  // An entity or selection-set name that names nothing.
  eInvalidAdsName = 404,
  // A transformation the entity cannot take: a circle, arc or text scaled
  // differently along its axes.
  eCannotScaleNonUniformly = 405,
};

}  // namespace Acad
