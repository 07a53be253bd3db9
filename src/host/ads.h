// The host's LISP bridge as compiled code sees it: result buffers, their type
// codes, the status values, and the functions that define LISP functions,
// read their arguments and set their results. Names and values are the CAD
// host's own, so that code written for it compiles here unchanged.
#pragma once

#include <cstddef>
#include <cstdint>

typedef char16_t ACHAR;
typedef int64_t ads_name[2];
typedef double ads_real;
typedef ads_real ads_point[3];
typedef ads_real ads_matrix[4][4];

// Result types.
enum : short {
  RTNONE = 5000,
  RTREAL = 5001,
  RTPOINT = 5002,
  RTSHORT = 5003,
  RTANG = 5004,
  RTSTR = 5005,
  RTENAME = 5006,
  RTPICKS = 5007,
  RTORINT = 5008,
  RT3DPOINT = 5009,
  RTLONG = 5010,
  RTVOID = 5014,
  RTLB = 5016,
  RTLE = 5017,
  RTDOTE = 5018,
  RTNIL = 5019,
  RTDXF0 = 5020,
  RTT = 5021,
  RTRESBUF = 5023,
  RTMODELESS = 5027,
};

// Status values returned by host calls and by LISP functions.
enum : int {
  RTNORM = 5100,
  RTERROR = -5001,
  RTCAN = -5002,
  RTREJ = -5003,
  RTFAIL = -5004,
  RTKWORD = -5005,
  RTINPUTTRUNCATED = -5008,
  RSRSLT = 1,
  RSERR = 3,
};

struct resbuf {
  resbuf* rbnext;
  short restype;
  union ads_u_val {
    ads_real rreal;
    ads_real rpoint[3];
    short rint;
    ACHAR* rstring;
    int32_t rlong;
    int64_t mnInt64;
    int64_t rlname[2];
    unsigned char ihandle[8];
    struct ads_binary {
      short clen;
      char* buf;
    } rbinary;
  } resval;
};

// A binary chunk (group codes 310-319 and 1004).
typedef resbuf::ads_u_val::ads_binary ads_binary;

// Nodes and lists. Strings and binary chunks in nodes are allocated with
// malloc and belong to the node: acutRelRb releases them with free, for
// RTSTR and for every group code whose value is a string or a binary chunk.
// Code that puts its own text into a node allocates it with malloc.
resbuf* acutNewRb(int type);
int acutRelRb(resbuf* rb);
// Builds a chain from (type, value) pairs ended by 0 or RTNONE. Values are
// passed as the node's natural C type:
//   double        RTREAL, RTANG, RTORINT, group codes of reals (38-59, 140-149...)
//   const ads_point (a pointer to three doubles)
//                 RTPOINT, RT3DPOINT, group codes of points (10-19, 110-112,
//                 210, 1010-1019)
//   int           RTSHORT and group codes of 16-bit integers (60-79,
//                 170-179, 270-299, 370-409, 1060-1070); RTLONG and group
//                 codes of 32-bit integers (90-99, 420-459, 1071). A 32-bit
//                 int, never a long.
//   int64_t       group codes 160-169 (in mnInt64)
//   const ACHAR*  RTSTR and group codes of strings (copied); RTDXF0 makes a
//                 node of group code 0, which could not be written as 0
//   const ads_name (a pointer to two words)
//                 RTENAME, RTPICKS, group codes of object names (-1, -2,
//                 330-369, 390-399, 480-481)
//   const ads_binary*  group codes 310-319 and 1004 (the bytes are copied)
// RTLB, RTLE, RTDOTE, RTNIL, RTT, RTVOID and -3 take no value. An unknown
// type code gives null and builds nothing.
resbuf* acutBuildList(int type, ...);

// Definition of LISP functions by compiled code. A function defined with
// acedDefun belongs to the module whose code is running (see
// host/rxmodule.h); its code is that module's. Without acedRegFunc the host
// calls it by sending the module kInvkSubrMsg, during which acedGetFunCode
// gives the code. Names are case-insensitive; "C:NAME" makes a command.
typedef int (*AcedFunction)();
int acedDefun(const ACHAR* name, short funcode);
int acedRegFunc(AcedFunction fhdl, int fcode);
int acedUndef(const ACHAR* name, short funcode);
// Code of the running call, RTERROR outside any call.
int acedGetFunCode();
// Arguments of the running call: one chain, a LISP list between RTLB and
// RTLE. It belongs to the host and is released after the call; the function
// may change or cut it, but never releases it. Null for no arguments.
resbuf* acedGetArgs();

// Results of the running call. Each returns RTNORM, or RTERROR outside a
// call or for a value that has no LISP form; a second result replaces the
// first. acedRetStr, acedRetVal and acedRetList copy. acedRetList makes one
// list of the chain's members, except that a chain which is one list
// (RTLB ... RTLE) is that list. acedRetVal takes the chain's first value.
// acedRetPoint gives a 3D point; acedRetVoid the value that the command
// line does not echo, as (princ) gives.
int acedRetInt(int value);
int acedRetReal(ads_real value);
int acedRetStr(const ACHAR* s);
int acedRetPoint(const ads_point pt);
int acedRetName(const ads_name aname, int type);
int acedRetList(const resbuf* rbuf);
int acedRetVal(const resbuf* rbuf);
int acedRetNil();
int acedRetT();
int acedRetVoid();

// Calls back into LISP. acedInvoke takes a list whose first node is an
// RTSTR naming a function, followed by its arguments; the result is a new
// chain that the caller releases with acutRelRb. A LISP error is reported
// on the command line and gives RTERROR; it never unwinds through the
// caller. ads_queueexpr queues an expression for when the command line is
// idle. acedGetSym gives a new chain (RTNIL for an unbound symbol);
// acedPutSym sets the symbol to the chain's first value.
int acedInvoke(const resbuf* args, resbuf** result);
int ads_queueexpr(const ACHAR* expr);
int acedGetSym(const ACHAR* sname, resbuf** value);
int acedPutSym(const ACHAR* sname, resbuf* value);

// Compiled modules by name (see host/rxmodule.h): load, unload, and the
// list of loaded modules as RTSTR nodes, which the caller releases.
int acedArxLoad(const ACHAR* app);
int acedArxUnload(const ACHAR* app);
resbuf* acedArxLoaded();
// Name of the module whose code is running; "" for the host itself.
const ACHAR* acedGetAppName();

// Output on the command line. Formats follow the Windows runtime of the host:
// %s is a wide string, %ld is 32-bit. Returns the number of characters
// printed. acdbFail prints the text exactly as given, as the running
// function's failure: no prefix, no line break.
int acutPrintf(const ACHAR* format, ...);
void acdbFail(const ACHAR* message);

// Entity and selection-set names are compared as two words.
inline bool ads_name_equal(const ads_name a, const ads_name b) { return a[0] == b[0] && a[1] == b[1]; }
inline void ads_name_set(const ads_name from, ads_name to) { to[0] = from[0]; to[1] = from[1]; }
inline void ads_name_clear(ads_name n) { n[0] = n[1] = 0; }
inline bool ads_name_nil(const ads_name n) { return n[0] == 0 && n[1] == 0; }

// ---------------------------------------------------------------- drawing
//
// Entity data lists of the working drawing (host/entlist.h tells their
// form). acdbEntGet gives the list without extended data, acdbEntGetX with
// that of the applications apps names (RTSTR nodes, patterns; "*" all);
// the caller releases the list. acdbEntMake adds an entity (or, in a run,
// the part of a complex entity or block) and acdbEntMakeX also an object
// that is no entity, giving its name. acdbEntMod changes the object its -1
// group names; acdbEntUpd has nothing to redraw in this host and checks the
// name. acdbEntDel erases an entity, or brings an erased one back.
// acdbEntNext gives the first entity for a null name, else the next
// (entering complex entities); acdbEntLast the last one added; acdbHandEnt
// the object of a handle. Failures give RTERROR (RTREJ for a bad group).
resbuf* acdbEntGet(const ads_name ent);
resbuf* acdbEntGetX(const ads_name ent, const resbuf* apps);
int acdbEntMod(const resbuf* ent);
int acdbEntMake(const resbuf* ent);
int acdbEntMakeX(const resbuf* entm, ads_name result);
int acdbEntDel(const ads_name ent);
int acdbEntNext(const ads_name ent, ads_name result);
int acdbEntLast(ads_name result);
int acdbHandEnt(const ACHAR* handle, ads_name entres);
int acdbEntUpd(const ads_name ent);

// Selection sets. acedSSGet takes a mode and a filter list (see
// host/ssfilter.h): "X" (the whole drawing), "L" (the last entity), "P"
// (the previous selection), "I" (the selection made before the command),
// "W" and "C" (a window and a crossing window; pt1 and pt2 are corners),
// "WP", "CP" and "F" (window and crossing polygons, fences; pt1 is a chain
// of RTPOINT or RT3DPOINT nodes); a null mode picks at pt1 when given, else
// asks "Select objects:" (host/editor/selectmodes.h), as do the option
// strings ":S" (one selection), ":E" (all under a pick), ":L" (none on
// locked layers). Nothing selected gives RTERROR, a cancel RTCAN. Sets
// live until acedSSFree.
int acedSSGet(const ACHAR* str, const void* pt1, const void* pt2, const resbuf* filter, ads_name ss);
int acedSSFree(const ads_name sname);
int acedSSLength(const ads_name sname, int32_t* len);
int acedSSName(const ads_name ss, int32_t i, ads_name entres);
int acedSSAdd(const ads_name ename, const ads_name sname, ads_name result);
int acedSSDel(const ads_name ename, const ads_name ss);
int acedSSMemb(const ads_name ename, const ads_name ss);
int acedSSGetFirst(resbuf** gset, resbuf** pset);
int acedSSSetFirst(const ads_name pset, const ads_name unused);

// Symbol tables and dictionaries. Table names are "LAYER", "LTYPE",
// "VIEW", "STYLE", "BLOCK", "UCS", "APPID", "DIMSTYLE", "VPORT". The lists
// are new chains the caller releases.
resbuf* acdbTblNext(const ACHAR* tblname, int rewind);
resbuf* acdbTblSearch(const ACHAR* tblname, const ACHAR* sym, int setnext);
int acdbTblObjName(const ACHAR* tblname, const ACHAR* sym, ads_name result);
int acdbSNValid(const ACHAR* tbstr, int pipetest);
int acdbRegApp(const ACHAR* appname);
int acdbXdRoom(const ads_name ent, int32_t* result);
int acdbXdSize(const resbuf* rb, int32_t* result);
int acdbNamedObjDict(ads_name result);
resbuf* acdbDictSearch(const ads_name dict, const ACHAR* sym, int setnext);
resbuf* acdbDictNext(const ads_name dict, int rewind);
int acdbDictAdd(const ads_name dict, const ACHAR* sym, const ads_name newobj);
int acdbDictRemove(const ads_name dict, const ACHAR* symname);
int acdbDictRename(const ads_name dictname, const ACHAR* oldsym, const ACHAR* newsym);

// System variables (host/editor/sysvars.h). acedGetVar fills *result (a
// string is malloc'd into it, for the caller to free); acedSetVar takes
// the value's node. Unknown names and refused values give RTERROR.
int acedGetVar(const ACHAR* sym, resbuf* result);
int acedSetVar(const ACHAR* sym, const resbuf* val);

// Files along the support path, as LISP's findfile looks for them: a name
// with a folder is looked for there only; a bare name in the current
// folder, then in the folders of the support path. The full name goes into
// result (at most len characters with the terminator). RTERROR when the
// file is not found or the name does not fit.
int acedFindFile(const ACHAR* fname, ACHAR* result, size_t len);

// Points between coordinate systems: from and to are RTSHORT 0 (world),
// 1 (the current UCS), 2 (display, the UCS in this host), an RTENAME
// (the entity's own system) or an RT3DPOINT (the system of that normal).
// With disp the point is a displacement.
int acedTrans(const ads_point pt, const resbuf* from, const resbuf* to, int disp, ads_point result);

// The same between the world and the current user system, and between the
// world and the system of an entity with the given normal; vec makes the
// point a vector. False when the normal is zero.
bool acdbUcs2Wcs(const ads_point p, ads_point q, bool vec);
bool acdbWcs2Ucs(const ads_point p, ads_point q, bool vec);
bool acdbEcs2Wcs(const ads_point p, ads_point q, const ads_point normal, bool vec);
bool acdbWcs2Ecs(const ads_point p, ads_point q, const ads_point normal, bool vec);
