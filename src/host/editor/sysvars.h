// System variables: one table of every variable the host knows, with its
// type, default, whether it is read-only, and whether the drawing stores
// it. A stored variable is the working drawing's header variable ($NAME),
// so it is saved with the drawing; the others live for the session.
//
// Types follow the host: integers (16-bit), reals, strings, 2D and 3D
// points. Setting takes an integer where a real is wanted, never a real
// where an integer is wanted; out-of-range values, values of another type,
// read-only variables and unknown names are refused. Names are
// case-insensitive.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zepk::editor {

struct SysValue {
  enum Kind { Int, Real, String, Point2, Point3 } kind = Int;
  int32_t i = 0;
  double r = 0;
  std::u16string s;
  double p[3] = {0, 0, 0};

  static SysValue integer(int32_t v) {
    SysValue x;
    x.kind = Int;
    x.i = v;
    return x;
  }
  static SysValue real(double v) {
    SysValue x;
    x.kind = Real;
    x.r = v;
    return x;
  }
  static SysValue string(std::u16string v) {
    SysValue x;
    x.kind = String;
    x.s = std::move(v);
    return x;
  }
  static SysValue point(double x0, double y0, double z0, bool threeD) {
    SysValue x;
    x.kind = threeD ? Point3 : Point2;
    x.p[0] = x0, x.p[1] = y0, x.p[2] = z0;
    return x;
  }
};

// The variable's value; false for an unknown name.
bool getSysVar(std::u16string_view name, SysValue* out);

enum class SetStatus { Ok, Unknown, ReadOnly, Refused };
SetStatus setSysVar(std::u16string_view name, const SysValue& value);
// The same for the host's own commands, which also set read-only
// variables (VIEWCTR, VIEWSIZE, EXTMIN, EXTMAX).
SetStatus setSysVarByHost(std::u16string_view name, const SysValue& value);

// Every name the table holds, in upper case, in table order.
std::vector<std::u16string> sysVarNames();

// The value of ERRNO, which failing host functions set.
void setErrno(int code);

// The variables of a document that its drawing does not store (the
// session values, DWGNAME, DWGPREFIX, DBMOD): each document has its own
// set, and the document manager makes the current document's set current.
struct DocumentVariables;
std::shared_ptr<DocumentVariables> newDocumentVariables();
void setCurrentDocumentVariables(std::shared_ptr<DocumentVariables> vars);
// DBMOD of a document: 1 once its drawing changed, 0 after a save.
void setDrawingModified(DocumentVariables* vars, int bits);
int drawingModified(const DocumentVariables* vars);

// What the host shows for the working drawing's name and folder (DWGNAME,
// DWGPREFIX); the documents of the session set it.
void setDrawingPath(std::u16string folder, std::u16string name);

// The current user coordinate system (UCSORG, UCSXDIR, UCSYDIR), set by
// the UCS command; the axes are made unit and orthogonal.
bool setCurrentUcs(const double origin[3], const double xdir[3], const double ydir[3]);

}  // namespace zepk::editor
