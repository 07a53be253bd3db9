// The host's LISP bridge as compiled code sees it: result buffers, their type
// codes, the status values, and the functions that define LISP functions,
// read their arguments and set their results. Names and values are the CAD
// host's own, so that code written for it compiles here unchanged.
#pragma once

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
    int64_t rlname[2];
    unsigned char ihandle[8];
    struct ads_binary {
      short clen;
      char* buf;
    } rbinary;
  } resval;
};

// Nodes and lists. Strings in nodes are owned by the node and released with it.
resbuf* acutNewRb(int type);
int acutRelRb(resbuf* rb);
// Builds a chain from (type, value) pairs ended by 0 or RTNONE. Values are
// passed as the node's natural C type: double, const ads_point, int (for
// RTSHORT and RTLONG and group codes of integers), const ACHAR*, const ads_name.
// RTLB, RTLE, RTDOTE, RTNIL and RTT take no value.
resbuf* acutBuildList(int type, ...);

// Definition of LISP functions by compiled code.
typedef int (*AcedFunction)();
int acedDefun(const ACHAR* name, short funcode);
int acedRegFunc(AcedFunction fhdl, int fcode);
int acedUndef(const ACHAR* name, short funcode);
int acedGetFunCode();
resbuf* acedGetArgs();

// Results of the running call.
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

// Calls back into LISP. acedInvoke takes a list whose first node names a
// function (a string or a symbol name) followed by its arguments.
int acedInvoke(const resbuf* args, resbuf** result);
int ads_queueexpr(const ACHAR* expr);
int acedGetSym(const ACHAR* sname, resbuf** value);
int acedPutSym(const ACHAR* sname, resbuf* value);

// Output on the command line. Formats follow the Windows runtime of the host:
// %s is a wide string, %ld is 32-bit.
int acutPrintf(const ACHAR* format, ...);
void acdbFail(const ACHAR* message);

// Entity and selection-set names are compared as two words.
inline bool ads_name_equal(const ads_name a, const ads_name b) { return a[0] == b[0] && a[1] == b[1]; }
inline void ads_name_set(const ads_name from, ads_name to) { to[0] = from[0]; to[1] = from[1]; }
inline void ads_name_clear(ads_name n) { n[0] = n[1] = 0; }
inline bool ads_name_nil(const ads_name n) { return n[0] == 0 && n[1] == 0; }
