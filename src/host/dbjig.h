// Dragging an entity while the user gives points, angles, distances or
// text. With no screen, each answer is one sample: sampler() reads it
// through the acquire functions and update() runs for each new value; Enter
// ends the drag, which returns the status of the last sample. A keyword of
// the list ends it at once with kKW1 for the first keyword, kKW2 for the
// second and so on; a cancel gives kCancel.
#pragma once

#include "host/adesk.h"
#include "host/dbents.h"
#include "host/dbid.h"
#include "host/gepnt3d.h"

class AcEdJig {
 public:
  enum UserInputControls {
    kGovernedByOrthoMode = 0x1,
    kNullResponseAccepted = 0x2,
    kDontEchoCancelForCtrlC = 0x4,
    kDontUpdateLastPoint = 0x8,
    kNoDwgLimitsChecking = 0x10,
    kNoZeroResponseAccepted = 0x20,
    kNoNegativeResponseAccepted = 0x40,
    kAccept3dCoordinates = 0x80,
    kAcceptMouseUpAsPoint = 0x100,
    kAnyBlankTerminatesInput = 0x200,
    kInitialBlankTerminatesInput = 0x400,
    kAcceptOtherInputString = 0x800,
  };
  enum DragStatus {
    kModeless = -17,
    kNoChange = -6,
    kCancel = -4,
    kOther = -3,
    kNull = -1,
    kNormal = 0,
    kKW1, kKW2, kKW3, kKW4, kKW5, kKW6, kKW7, kKW8, kKW9,
  };
  enum CursorType { kNoSpecialCursor = -1, kCrosshair = 0, kRectCursor, kRubberBand, kNotRotated, kTargetBox };

  AcEdJig() = default;
  virtual ~AcEdJig() = default;

  DragStatus drag();
  virtual DragStatus sampler() { return kNormal; }
  virtual Adesk::Boolean update() { return Adesk::kTrue; }
  virtual AcDbEntity* entity() const { return nullptr; }
  // Adds entity() to the current space and closes it; null id on failure.
  AcDbObjectId append();

  const ACHAR* dispPrompt() const { return prompt_.c_str(); }
  void setDispPrompt(const ACHAR* prompt) { prompt_ = prompt ? prompt : u""; }
  const ACHAR* keywordList() const { return keywords_.c_str(); }
  void setKeywordList(const ACHAR* list) { keywords_ = list ? list : u""; }
  UserInputControls userInputControls() const { return controls_; }
  void setUserInputControls(UserInputControls c) { controls_ = c; }
  CursorType specialCursorType() const { return cursor_; }
  void setSpecialCursorType(CursorType c) { cursor_ = c; }

  DragStatus acquirePoint(AcGePoint3d& point);
  DragStatus acquirePoint(AcGePoint3d& point, const AcGePoint3d& basePoint);
  DragStatus acquireAngle(double& angle);
  DragStatus acquireAngle(double& angle, const AcGePoint3d& basePoint);
  DragStatus acquireDist(double& dist);
  DragStatus acquireDist(double& dist, const AcGePoint3d& basePoint);
  DragStatus acquireString(ACHAR* str);  // at most 2049 characters with the end

 private:
  DragStatus acquire(int kind, const AcGePoint3d* base, AcGePoint3d* point, double* value, ACHAR* str);
  std::u16string prompt_, keywords_;
  UserInputControls controls_ = static_cast<UserInputControls>(0);
  CursorType cursor_ = kNoSpecialCursor;
  bool ended_ = false;  // Enter was given
  AcGePoint3d last_;
};
