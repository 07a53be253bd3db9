// Layouts: the sheets of a drawing. "Model" shows model space; each paper
// space sheet ("Layout1" ...) shows its own paper space block. A layout is
// filed in the layout dictionary (ACAD_LAYOUT) and points to its block,
// which points back. The plot settings every layout carries are kept as
// a drawing gives them; this host does not plot.
#pragma once

#include <string>
#include <vector>

#include "host/dbdict.h"
#include "host/dbmain.h"
#include "host/gepnt2d.h"
#include "host/gepnt3d.h"

// How to print a sheet: printer, paper, scale, area (filed on their own in
// ACAD_PLOTSETTINGS as page setups, and as the first part of a layout).
class AcDbPlotSettings : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbPlotSettings);
  AcDbPlotSettings();
  ~AcDbPlotSettings() override;
  static const zepk::db::ClassSchema& schema();

  const std::u16string& getPlotSettingsName() const { return pageSetupName_; }
  Acad::ErrorStatus setPlotSettingsName(const ACHAR* name);
  const std::u16string& plotDeviceName() const { return device_; }
  const std::u16string& canonicalMediaName() const { return paper_; }
  // Paper size in millimetres.
  void getPlotPaperSize(double& width, double& height) const {
    width = paperWidth_;
    height = paperHeight_;
  }
  bool modelType() const { return (flags_ & 1024) != 0; }
  void setModelType(bool model);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 protected:
  friend struct AcDbLayoutAccess;
  std::u16string pageSetupName_;
  std::u16string device_ = u"none_device";
  std::u16string paper_;
  std::u16string plotViewName_;
  double marginLeft_ = 0.0, marginBottom_ = 0.0, marginRight_ = 0.0, marginTop_ = 0.0;
  double paperWidth_ = 0.0, paperHeight_ = 0.0;
  double originX_ = 0.0, originY_ = 0.0;
  double windowMinX_ = 0.0, windowMinY_ = 0.0, windowMaxX_ = 0.0, windowMaxY_ = 0.0;
  double numerator_ = 1.0, denominator_ = 1.0;
  // Group 70: 1024 marks the model's sheet.
  Adesk::Int16 flags_ = 688;
  Adesk::Int16 paperUnits_ = 0;
  Adesk::Int16 rotation_ = 0;
  Adesk::Int16 plotType_ = 5;
  std::u16string styleSheet_;
  Adesk::Int16 standardScale_ = 16;
  Adesk::Int16 shadeMode_ = 0;
  Adesk::Int16 shadeResolution_ = 2;
  Adesk::Int16 shadeDpi_ = 300;
  double scaleFactor_ = 1.0;
  double imageOriginX_ = 0.0, imageOriginY_ = 0.0;
  std::vector<zepk::db::DxfItem> keptPlot_;
};

class AcDbLayout : public AcDbPlotSettings {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayout);
  AcDbLayout();
  ~AcDbLayout() override;
  static const zepk::db::ClassSchema& layoutSchema();

  Acad::ErrorStatus getLayoutName(const ACHAR*& name) const;
  const std::u16string& getLayoutName() const { return name_; }
  // Renames the layout, and its entry in the dictionary it is filed in.
  // "Model" cannot be renamed, nor a sheet be called "Model"
  // (eInvalidInput); a name another layout of the dictionary has gives
  // eDuplicateKey.
  Acad::ErrorStatus setLayoutName(const ACHAR* name);
  // The place of the sheet's tab: 0 for "Model", 1, 2 ... for the sheets.
  int getTabOrder() const { return tabOrder_; }
  void setTabOrder(int order);
  // The space the layout shows.
  AcDbObjectId getBlockTableRecordId() const { return block_; }
  Acad::ErrorStatus setBlockTableRecordId(AcDbObjectId id);
  AcGePoint2d getLimits(bool max) const { return max ? limMax_ : limMin_; }
  void setLimits(const AcGePoint2d& min, const AcGePoint2d& max);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;

 private:
  friend struct AcDbLayoutAccess;
  std::u16string name_;
  Adesk::Int16 layoutFlags_ = 1;  // 1 PSLTSCALE, 2 LIMCHECK
  Adesk::Int16 tabOrder_ = 0;
  AcGePoint2d limMin_{0, 0}, limMax_{12, 9};
  AcGePoint3d insBase_;
  AcGePoint3d extMin_{1e20, 1e20, 1e20}, extMax_{-1e20, -1e20, -1e20};
  double elevation_ = 0.0;
  AcGePoint3d ucsOrigin_;
  AcGeVector3d ucsXAxis_{1, 0, 0}, ucsYAxis_{0, 1, 0};
  Adesk::Int16 orthoType_ = 0;
  AcDbObjectId block_;
  AcDbObjectId lastViewport_;
  std::vector<zepk::db::DxfItem> keptLayout_;
};
