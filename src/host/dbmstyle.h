// Multiline styles (ACAD_MLINESTYLE): the parallel lines a multiline is
// drawn with, each at an offset with its colour and linetype.
#pragma once

#include <string>
#include <vector>

#include "host/dbmain.h"

namespace zepk::db {
class ClassSchema;
}

class AcDbMlineStyle : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbMlineStyle);
  static const zepk::db::ClassSchema& schema();

  // Makes the style "Standard" holds: two lines at +0.5 and -0.5, colour
  // and linetype by layer.
  void initMlineStyle();
  const std::u16string& name() const { return name_; }
  Acad::ErrorStatus setName(const ACHAR* name);
  const std::u16string& description() const { return description_; }
  Acad::ErrorStatus setDescription(const ACHAR* text);
  // Group 70: 1 fill, 2 miters, 16 start square cap, 32 start inner arcs,
  // 64 start round cap, 256 end square, 512 end inner arcs, 1024 end round.
  Adesk::Int16 flags() const { return flags_; }
  void setFlags(Adesk::Int16 flags);
  // In radians.
  double startAngle() const;
  double endAngle() const;
  void setStartAngle(double a);
  void setEndAngle(double a);

  // One line of the style. The linetype is named as a file names it
  // ("BYLAYER", "CONTINUOUS" ...).
  struct Element {
    double offset = 0.0;
    Adesk::Int16 color = 256;
    std::u16string linetype = u"BYLAYER";
  };
  int numElements() const { return static_cast<int>(elements_.size()); }
  const std::vector<Element>& elements() const { return elements_; }
  // Adds a line; the lines are kept by offset, largest first.
  Acad::ErrorStatus addElement(double offset, Adesk::Int16 color, const ACHAR* linetype);
  Acad::ErrorStatus removeElementAt(int index);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbMlineStyleAccess;
  std::u16string name_;
  Adesk::Int16 flags_ = 0;
  std::u16string description_;
  Adesk::Int16 fillColor_ = 256;
  double startAngle_ = 90.0;  // degrees
  double endAngle_ = 90.0;
  std::vector<Element> elements_;
};
