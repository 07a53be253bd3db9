// zepksample: a small compiled module that shows the LISP bridge at work.
//
//   (arxload "zepksample")
//   (sample-midpoint '(0 0) '(4 2 6))      -> (2.0 1.0 3.0)
//   (sample-sum 1 2.5 70000)               -> 70003.5
//   (sample-apply "strcat" '("a" "b"))     -> "ab"
//   (sample-describe '(1 2) 70000 '(0 . "LINE"))
//       -> ("RTPOINT" "RTLONG" "RTLB" "RTSHORT" "RTDOTE" "RTSTR" "RTLE")
//   (sample-fail)                          prints its message, gives nil
//   SAMPLEHELLO                            a command
//
// The functions are defined for each document and reach the module in both
// of the host's ways: sample-midpoint and sample-sum are bound with
// acedRegFunc and called directly; the others come through kInvkSubrMsg and
// are found by acedGetFunCode.
#include <string>

#include "host/ads.h"
#include "host/rxmodule.h"

namespace {

bool isCodedPoint(int t) { return (t >= 10 && t <= 19) || (t >= 110 && t <= 112) || t == 210 || t == 220 || t == 230; }

// Reads a point argument: RTPOINT (z 0), RT3DPOINT, or the coded form of a
// list whose x is a small integer such as 10 (the node's type is x).
bool readPoint(const resbuf*& rb, ads_point pt) {
  if (!rb) return false;
  int t = rb->restype;
  if (t == RTPOINT || t == RT3DPOINT) {
    pt[0] = rb->resval.rpoint[0];
    pt[1] = rb->resval.rpoint[1];
    pt[2] = t == RTPOINT ? 0.0 : rb->resval.rpoint[2];
  } else if (isCodedPoint(t)) {
    pt[0] = t;
    pt[1] = rb->resval.rpoint[0];
    pt[2] = rb->resval.rpoint[1];
  } else {
    return false;
  }
  rb = rb->rbnext;
  return true;
}

int sampleMidpoint() {
  const resbuf* rb = acedGetArgs();
  ads_point a, b;
  if (!readPoint(rb, a) || !readPoint(rb, b) || rb) {
    acdbFail(u"\nsample-midpoint: 需要两个点.");
    return RTERROR;
  }
  ads_point m = {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2};
  acedRetPoint(m);
  return RSRSLT;
}

int sampleSum() {
  long long isum = 0;
  double rsum = 0.0;
  bool real = false;
  for (const resbuf* rb = acedGetArgs(); rb; rb = rb->rbnext) {
    switch (rb->restype) {
      case RTSHORT: isum += rb->resval.rint; break;
      case RTLONG: isum += rb->resval.rlong; break;
      case RTREAL:
        rsum += rb->resval.rreal;
        real = true;
        break;
      default: acdbFail(u"\nsample-sum: 参数应为数值."); return RTERROR;
    }
  }
  if (real) {
    acedRetReal(rsum + static_cast<double>(isum));
  } else {
    acedRetInt(static_cast<int>(isum));
  }
  return RSRSLT;
}

// Copies one argument (a list's members, or the numbers of a point) after
// *tail as further arguments of a call.
bool appendMembers(const resbuf* rb, resbuf**& tail) {
  auto add = [&](resbuf* n) {
    *tail = n;
    while (n->rbnext) n = n->rbnext;
    tail = &n->rbnext;
  };
  int t = rb->restype;
  if (t == RTNIL) return true;
  if (t == RTPOINT || t == RT3DPOINT) {
    for (int i = 0; i < (t == RTPOINT ? 2 : 3); ++i) add(acutBuildList(RTREAL, rb->resval.rpoint[i], 0));
    return true;
  }
  if (isCodedPoint(t)) {  // the type is the first number
    add(acutBuildList(RTSHORT, t, RTREAL, rb->resval.rpoint[0], RTREAL, rb->resval.rpoint[1], 0));
    return true;
  }
  if (t != RTLB) return false;
  int depth = 0;
  for (const resbuf* p = rb->rbnext; p; p = p->rbnext) {
    if (p->restype == RTLE && depth == 0) return true;
    if (p->restype == RTLB) ++depth;
    if (p->restype == RTLE) --depth;
    // A copy of the node; a string copy owns its own text.
    resbuf* n = p->restype == RTSTR ? acutBuildList(RTSTR, p->resval.rstring ? p->resval.rstring : u"", 0)
                                    : acutNewRb(p->restype);
    if (p->restype != RTSTR) n->resval = p->resval;
    add(n);
  }
  return false;
}

int sampleApply() {
  const resbuf* args = acedGetArgs();
  if (!args || args->restype != RTSTR || !args->rbnext) {
    acdbFail(u"\nsample-apply: 需要函数名和参数表.");
    return RTERROR;
  }
  resbuf* call = acutBuildList(RTSTR, args->resval.rstring, 0);
  resbuf** tail = &call->rbnext;
  if (!appendMembers(args->rbnext, tail)) {
    acutRelRb(call);
    acdbFail(u"\nsample-apply: 第二个参数应为表.");
    return RTERROR;
  }
  resbuf* result = nullptr;
  int st = acedInvoke(call, &result);
  acutRelRb(call);
  if (st != RTNORM) {
    acutPrintf(u"\nsample-apply: %s 调用失败.", args->resval.rstring);
    return RTERROR;
  }
  acedRetVal(result);
  acutRelRb(result);
  return RSRSLT;
}

const ACHAR* typeName(int t) {
  switch (t) {
    case RTREAL: return u"RTREAL";
    case RTPOINT: return u"RTPOINT";
    case RTSHORT: return u"RTSHORT";
    case RTSTR: return u"RTSTR";
    case RTENAME: return u"RTENAME";
    case RTPICKS: return u"RTPICKS";
    case RT3DPOINT: return u"RT3DPOINT";
    case RTLONG: return u"RTLONG";
    case RTVOID: return u"RTVOID";
    case RTLB: return u"RTLB";
    case RTLE: return u"RTLE";
    case RTDOTE: return u"RTDOTE";
    case RTNIL: return u"RTNIL";
    case RTT: return u"RTT";
    default: return nullptr;
  }
}

// The type of every node it receives, list marks included, as strings; a
// group-code type (the coded point form) as its number.
int sampleDescribe() {
  resbuf* head = nullptr;
  resbuf** tail = &head;
  for (const resbuf* rb = acedGetArgs(); rb; rb = rb->rbnext) {
    const ACHAR* name = typeName(rb->restype);
    std::u16string number;
    if (!name) {
      for (char c : std::to_string(rb->restype)) number += static_cast<char16_t>(c);
      name = number.c_str();
    }
    *tail = acutBuildList(RTSTR, name, 0);
    tail = &(*tail)->rbnext;
  }
  if (head) {
    acedRetList(head);
  } else {
    acedRetNil();
  }
  acutRelRb(head);
  return RSRSLT;
}

int sampleFail() {
  const resbuf* rb = acedGetArgs();
  acdbFail(rb && rb->restype == RTSTR ? rb->resval.rstring : u"\nsample-fail: 示例失败!");
  return RTERROR;
}

int sampleHello() {
  acutPrintf(u"\nHello from %s.", acedGetAppName());
  acedRetVoid();
  return RSRSLT;
}

struct Function {
  const ACHAR* name;
  int (*fn)();
  bool direct;  // bound with acedRegFunc
};

const Function kFunctions[] = {
    {u"sample-midpoint", sampleMidpoint, true},  {u"sample-sum", sampleSum, true},
    {u"sample-apply", sampleApply, false},       {u"sample-describe", sampleDescribe, false},
    {u"sample-fail", sampleFail, false},         {u"C:SAMPLEHELLO", sampleHello, false},
};
constexpr short kCount = sizeof kFunctions / sizeof kFunctions[0];

AcRx::AppRetCode entryPoint(AcRx::AppMsgCode msg, void* pkt) {
  switch (msg) {
    case AcRx::kInitAppMsg: acutPrintf(u"\nZEPK sample module loaded."); break;
    case AcRx::kLoadDwgMsg:
      for (short i = 0; i < kCount; ++i) {
        if (acedDefun(kFunctions[i].name, i) != RTNORM) break;
        if (kFunctions[i].direct && acedRegFunc(kFunctions[i].fn, i) != RTNORM) break;
      }
      break;
    case AcRx::kUnloadDwgMsg:
      for (short i = 0; i < kCount; ++i) acedUndef(kFunctions[i].name, i);
      break;
    case AcRx::kInvkSubrMsg: {
      int code = acedGetFunCode();
      if (code < 0 || code >= kCount) return AcRx::kRetError;
      return static_cast<AcRx::AppRetCode>(kFunctions[code].fn());
    }
    default: break;
  }
  return AcRx::kRetOK;
}

zepk::rx::ModuleRegistrar registrar(u"zepksample", &entryPoint, false);

}  // namespace

// Referred to by the library's link options so that the linker keeps this
// object file, and with it the registrar above.
extern "C" void zepk_sample_module_link() {}
