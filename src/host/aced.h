// The editor's side of the host API: the command stack, running commands
// with their answers, and asking the user for input.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/acadstrc.h"
#include "host/ads.h"

// Command flags.
enum : int32_t {
  ACRX_CMD_MODAL = 0,
  ACRX_CMD_TRANSPARENT = 1,
  ACRX_CMD_USEPICKSET = 2,
  ACRX_CMD_REDRAW = 4,
  ACRX_CMD_NOPAPERSPACE = 0x40,
  ACRX_CMD_SESSION = 0x200000,
};

typedef void (*AcRxFunctionPtr)();

// The registered commands. A command is found by its local name, by its
// global name after "_", with "." asking for the built-in command of that
// name and "'" for use inside another command (only transparent commands
// run so). Names are case-insensitive. A name taken by a command already
// registered in the same group gives eDuplicateKey; a later group's
// command of the same name hides an earlier one until removed.
class AcEdCommandStack {
 public:
  Acad::ErrorStatus addCommand(const ACHAR* cmdGroupName, const ACHAR* cmdGlobalName, const ACHAR* cmdLocalName,
                               int32_t commandFlags, AcRxFunctionPtr functionAddr, void* uiContext = nullptr,
                               int fcode = -1, void* resourceHandle = nullptr, void** cmdPtrRet = nullptr);
  // Removes every command of the group; eKeyNotFound for an unknown group.
  Acad::ErrorStatus removeGroup(const ACHAR* groupName);
  // Removes one command of a group by its global name.
  Acad::ErrorStatus removeCmd(const ACHAR* cmdGroupName, const ACHAR* cmdGlobalName);
};

AcEdCommandStack* acedRegCmdsPtr();
#define acedRegCmds acedRegCmdsPtr()

// Runs commands with their answers. acedCommandS takes (type, value) pairs
// ended by RTNONE or 0, acedCmdS and acedCmd a chain: RTSTR names a
// command or answers a prompt ("" is Enter), RTPOINT/RT3DPOINT, RTREAL,
// RTSHORT/RTLONG and RTENAME answer as such. The S forms run the commands
// to their end on the answers given; an answer missing cancels the
// command. acedCmd leaves a command that still prompts to read its answers
// from the command line. Returns RTNORM, RTCAN when a command was
// cancelled, RTERROR for an unknown command or a bad node.
int acedCommandS(int rtype, ...);
int acedCmdS(const resbuf* rb);
int acedCmd(const resbuf* rb);

// Input from the user, taken from the answers pending (the rest of a
// script line, those given to a running command, then the command line).
// Each gives RTNORM, RTNONE for Enter (when acedInitGet allows it),
// RTKWORD for a keyword (acedGetInput gives it), RTCAN when cancelled or
// when the input ends. acedInitGet's bits apply to the next call only.
enum : int {
  RSG_NONULL = 1,
  RSG_NOZERO = 2,
  RSG_NONEG = 4,
  RSG_NOLIM = 8,
  RSG_GETZ = 16,
  RSG_DASH = 32,
  RSG_2D = 64,
  RSG_OTHER = 128,
};
// Temporary graphics, shown over the drawing until the next redraw (in
// this host: in pictures of the drawing). acedGrDraw draws a vector
// between two points of the current UCS in a colour index (-1: the colour
// that contrasts with what is under it), highlighted (dashed) when hl is
// not 0. acedGrVecs takes a list of vectors as the LISP grvecs does:
// integers set the colour (256 and up: highlighted, colour - 256) and
// pairs of points make vectors, transformed by mat when given. acedRedraw
// with a null name redraws the whole drawing (the temporary graphics go);
// with an entity, mode 1 shows it again, 2 hides it, 3 highlights it, 4
// takes the highlight off. All give RTNORM, or RTERROR for bad input.
int acedGrDraw(const ads_point from, const ads_point to, int color, int hl);
int acedGrVecs(const resbuf* vlist, ads_matrix mat);
int acedRedraw(const ads_name ent, int mode);

class AcDbViewTableRecord;
class AcDbViewport;
// Shows the view in the current viewport (the viewport argument is not
// used here): its centre, and a height that shows both its height and its
// width in the window. eInvalidInput for a null view or a size not above 0.
Acad::ErrorStatus acedSetCurrentView(AcDbViewTableRecord* pVwRec, AcDbViewport* pVP);

int acedInitGet(int val, const ACHAR* kwl);
int acedGetPoint(const ads_point pt, const ACHAR* prompt, ads_point result);
int acedGetReal(const ACHAR* prompt, ads_real* result);
int acedGetInt(const ACHAR* prompt, int* result);
int acedGetDist(const ads_point pt, const ACHAR* prompt, ads_real* result);
int acedGetAngle(const ads_point pt, const ACHAR* prompt, ads_real* result);
// The angle as an absolute direction (east 0, counter-clockwise), whatever
// ANGBASE and ANGDIR are; a typed angle is read as they say.
int acedGetOrient(const ads_point pt, const ACHAR* prompt, ads_real* result);
// The other corner of a rectangle from pt (relative input starts at pt).
int acedGetCorner(const ads_point pt, const ACHAR* prompt, ads_point result);
int acedGetString(int cronly, const ACHAR* prompt, ACHAR* result, size_t bufLen);
int acedGetKword(const ACHAR* prompt, ACHAR* result, size_t bufLen);
int acedGetInput(ACHAR* str, size_t bufLen);

// Picking one entity by a point (the prompt defaults to "Select object: ").
// acedEntSel gives the entity under the point and the point; a pick on
// nothing gives RTERROR with ERRNO 7 and Enter RTERROR with ERRNO 52;
// "Last" takes the last entity. A keyword of acedInitGet gives RTKWORD.
// acedNEntSel goes into block references to the entity picked there,
// giving the transform of its coordinates to the world as four points (the
// images of the X, Y and Z axes and of the origin) and the chain of
// references holding it (RTENAME nodes, the innermost first; the caller
// releases it); for an entity that no reference holds the chain is null.
// acedNEntSelP gives the transform as a 4x4 matrix; with pickflag it picks
// at ptres without asking.
int acedEntSel(const ACHAR* str, ads_name entres, ads_point ptres);
int acedNEntSel(const ACHAR* str, ads_name entres, ads_point ptres, ads_point xformres[4], resbuf** refstkres);
int acedNEntSelP(const ACHAR* str, ads_name entres, ads_point ptres, int pickflag, ads_matrix xformres,
                 resbuf** refstkres);

// A file name asked on the command line. The prompt is the title, with
// the default in angle brackets; Enter takes the default. ext is the
// extension (several separated by ";") added to a name typed without one.
// Flags: 1 a new file (an existing one is confirmed before it is
// overwritten unless 32 is set), 4 any extension may be typed as given,
// 16 the default names a folder. A name to open must exist. RTNORM puts
// the name in result (an RTSTR the caller frees), RTERROR when the user
// gave none, RTCAN when cancelled.
int acedGetFileD(const ACHAR* title, const ACHAR* defawlt, const ACHAR* ext, int flags, resbuf* result);

// A progress meter on the status bar, drawn on standard error when that is
// a terminal. The meter runs from min to max; pos is clamped to them.
// Each returns 0, or -1 when no meter is set (or min is not below max).
int acedSetStatusBarProgressMeter(const ACHAR* pszLabel, int nMinPos, int nMaxPos);
int acedSetStatusBarProgressMeterPos(int nPos);
void acedRestoreStatusBar();
