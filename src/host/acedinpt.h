// Input points: filters, monitors and context reactors that a program
// attaches to a document's input point manager. Every point the user gives
// to acedGetPoint (and the LISP getpoint) goes through them: context
// reactors hear that a point is asked for and what the answer was, the
// filter may replace the point, and monitors see the final point. This host
// has no cursor, so there are no hover events: a point exists only once it
// is typed or given by a script.
#pragma once

#include <vector>

#include "host/acadstrc.h"
#include "host/ads.h"
#include "host/gepnt3d.h"
#include "host/rxobject.h"

class AcApDocument;

namespace Acad {
enum PromptStatus { eNone = 5000, eNormal = 5100, eError = -5001, eCancel = -5002, eRejected = -5003, eFailed = -5004, eKeyword = -5005, eDirect = -5999 };
}  // namespace Acad

// A point as the manager hands it to filters and monitors.
struct AcEdInputPoint {
  AcApDocument* document = nullptr;
  AcGePoint3d rawPoint;     // the point as given
  AcGePoint3d computedPoint;  // after object snap and the filter
};

class AcEdInputPointFilter : public AcRxObject {
 public:
  ~AcEdInputPointFilter() override = default;
  // Sets changedPoint to say the filter moved the point to newPoint.
  virtual Acad::ErrorStatus processInputPoint(const AcEdInputPoint& input, bool& changedPoint, AcGePoint3d& newPoint) {
    changedPoint = false;
    return Acad::eOk;
  }
};

class AcEdInputPointMonitor : public AcRxObject {
 public:
  ~AcEdInputPointMonitor() override = default;
  virtual Acad::ErrorStatus monitorInputPoint(const AcEdInputPoint& input) { return Acad::eOk; }
};

class AcEdInputContextReactor : public AcRxObject {
 public:
  ~AcEdInputContextReactor() override = default;
  virtual void beginGetPoint(const AcGePoint3d* pointIn, const ACHAR* promptString, int initGetFlags,
                             const ACHAR* pKeywords) {}
  virtual void endGetPoint(Acad::PromptStatus returnStatus, const AcGePoint3d& pointOut, const ACHAR*& pKeyword) {}
};

// One per document. Adding something already there, or removing what is
// not there, gives eInvalidInput; a second filter while one is registered
// gives eInvalidInput too (one filter at a time).
class AcEdInputPointManager {
 public:
  Acad::ErrorStatus registerPointFilter(AcEdInputPointFilter* filter);
  Acad::ErrorStatus revokePointFilter();
  AcEdInputPointFilter* currentPointFilter() const { return filter_; }

  Acad::ErrorStatus addPointMonitor(AcEdInputPointMonitor* monitor);
  Acad::ErrorStatus removePointMonitor(AcEdInputPointMonitor* monitor);

  Acad::ErrorStatus addInputContextReactor(AcEdInputContextReactor* reactor);
  Acad::ErrorStatus removeInputContextReactor(AcEdInputContextReactor* reactor);

  size_t monitorCount() const { return monitors_.size(); }
  size_t reactorCount() const { return reactors_.size(); }

  // The editor's side: a point is asked for, and its answer.
  void beginGetPoint(const double* base, const ACHAR* prompt, int initGetFlags, const ACHAR* keywords);
  // Runs the filter and the monitors on a point given (status RTNORM) and
  // tells the context reactors the outcome; the point may be changed.
  void endGetPoint(AcApDocument* doc, int status, double point[3]);

 private:
  AcEdInputPointFilter* filter_ = nullptr;
  std::vector<AcEdInputPointMonitor*> monitors_;
  std::vector<AcEdInputContextReactor*> reactors_;
};

// The manager of a document (null for null).
AcEdInputPointManager* acedInputPointManager(AcApDocument* doc);
