// Plot settings and layouts.
#include "host/db/dbobjects.h"
#include "host/db/internal.h"
#include "host/dblayout.h"

using namespace zepk::db;

namespace {

template <class T>
AcRxObject* make() {
  return new T;
}

}  // namespace

ACRX_DEFINE_HOST_CLASS(AcDbPlotSettings, AcDbObject, u"PLOTSETTINGS", make<AcDbPlotSettings>)
ACRX_DEFINE_HOST_CLASS(AcDbLayout, AcDbPlotSettings, u"LAYOUT", make<AcDbLayout>)

// ---------------------------------------------------------------- plot settings

AcDbPlotSettings::AcDbPlotSettings() = default;
AcDbPlotSettings::~AcDbPlotSettings() = default;

const ClassSchema& AcDbPlotSettings::schema() {
  using P = AcDbPlotSettings;
  static const ClassSchema s{u"AcDbPlotSettings",
                             {
                                 field<&P::pageSetupName_>(1, "PageSetupName"),
                                 field<&P::device_>(2, "ConfigName", u"none_device"),
                                 field<&P::paper_>(4, "CanonicalMediaName"),
                                 field<&P::plotViewName_>(6, "ViewToPlot"),
                                 field<&P::marginLeft_>(40, "MarginLeft", 0.0),
                                 field<&P::marginBottom_>(41, "MarginBottom", 0.0),
                                 field<&P::marginRight_>(42, "MarginRight", 0.0),
                                 field<&P::marginTop_>(43, "MarginTop", 0.0),
                                 field<&P::paperWidth_>(44, "PaperWidth", 0.0),
                                 field<&P::paperHeight_>(45, "PaperHeight", 0.0),
                                 field<&P::originX_>(46, "PlotOriginX", 0.0),
                                 field<&P::originY_>(47, "PlotOriginY", 0.0),
                                 field<&P::windowMinX_>(48, "WindowMinX", 0.0),
                                 field<&P::windowMinY_>(49, "WindowMinY", 0.0),
                                 field<&P::windowMaxX_>(140, "WindowMaxX", 0.0),
                                 field<&P::windowMaxY_>(141, "WindowMaxY", 0.0),
                                 field<&P::numerator_>(142, "ScaleNumerator", 1.0),
                                 field<&P::denominator_>(143, "ScaleDenominator", 1.0),
                                 field<&P::flags_>(70, "PlotLayoutFlags", 688),
                                 field<&P::paperUnits_>(72, "PaperUnits", 0),
                                 field<&P::rotation_>(73, "PlotRotation", 0),
                                 field<&P::plotType_>(74, "PlotType", 5),
                                 field<&P::styleSheet_>(7, "StyleSheet"),
                                 field<&P::standardScale_>(75, "StandardScale", 16),
                                 field<&P::shadeMode_>(76, "ShadePlotMode", 0),
                                 field<&P::shadeResolution_>(77, "ShadePlotResLevel", 2),
                                 field<&P::shadeDpi_>(78, "ShadePlotCustomDpi", 300),
                                 field<&P::scaleFactor_>(147, "ScaleFactor", 1.0),
                                 field<&P::imageOriginX_>(148, "PaperImageOriginX", 0.0),
                                 field<&P::imageOriginY_>(149, "PaperImageOriginY", 0.0),
                                 keptGroups<&P::keptPlot_, &P::schema>(),
                             }};
  return s;
}

Acad::ErrorStatus AcDbPlotSettings::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dwgOutFields(f);
  return es != Acad::eOk ? es : schema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbPlotSettings::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbObject::dwgInFields(f);
  return es != Acad::eOk ? es : schema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbPlotSettings::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(f);
  return es != Acad::eOk ? es : schema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbPlotSettings::dxfInFields(AcDbDxfFiler* f) {
  keptPlot_.clear();
  Acad::ErrorStatus es = AcDbObject::dxfInFields(f);
  return es != Acad::eOk ? es : schema().dxfIn(this, f);
}

Acad::ErrorStatus AcDbPlotSettings::setPlotSettingsName(const ACHAR* name) {
  assertWriteEnabled();
  pageSetupName_ = name ? name : u"";
  return Acad::eOk;
}

void AcDbPlotSettings::setModelType(bool model) {
  assertWriteEnabled();
  flags_ = static_cast<Adesk::Int16>(model ? (flags_ | 1024) : (flags_ & ~1024));
}

// ---------------------------------------------------------------- layouts

AcDbLayout::AcDbLayout() = default;
AcDbLayout::~AcDbLayout() = default;

const ClassSchema& AcDbLayout::layoutSchema() {
  using L = AcDbLayout;
  static const ClassSchema s{
      u"AcDbLayout",
      {
          field<&L::name_>(1, "LayoutName"),
          field<&L::layoutFlags_>(70, "LayoutFlags", 1),
          field<&L::tabOrder_>(71, "TabOrder", 0),
          field<&L::limMin_>(10, "LimitsMin", AcGePoint2d(0, 0)),
          field<&L::limMax_>(11, "LimitsMax", AcGePoint2d(12, 9)),
          field<&L::insBase_>(12, "InsertionBase"),
          field<&L::extMin_>(14, "ExtentsMin", AcGePoint3d(1e20, 1e20, 1e20)),
          field<&L::extMax_>(15, "ExtentsMax", AcGePoint3d(-1e20, -1e20, -1e20)),
          field<&L::elevation_>(146, "Elevation", 0.0),
          field<&L::ucsOrigin_>(13, "UcsOrigin"),
          field<&L::ucsXAxis_>(16, "UcsXAxis", AcGeVector3d(1, 0, 0)),
          field<&L::ucsYAxis_>(17, "UcsYAxis", AcGeVector3d(0, 1, 0)),
          field<&L::orthoType_>(76, "UcsOrthographicType", 0),
          field<&L::block_>(330, "BlockTableRecord"),
          field<&L::lastViewport_>(331, "LastActiveViewport", {}, kOptional),
          keptGroups<&L::keptLayout_, &L::layoutSchema>(),
      }};
  return s;
}

Acad::ErrorStatus AcDbLayout::dwgOutFields(AcDbDwgFiler* f) const {
  Acad::ErrorStatus es = AcDbPlotSettings::dwgOutFields(f);
  return es != Acad::eOk ? es : layoutSchema().dwgOut(this, f);
}

Acad::ErrorStatus AcDbLayout::dwgInFields(AcDbDwgFiler* f) {
  Acad::ErrorStatus es = AcDbPlotSettings::dwgInFields(f);
  return es != Acad::eOk ? es : layoutSchema().dwgIn(this, f);
}

Acad::ErrorStatus AcDbLayout::dxfOutFields(AcDbDxfFiler* f) const {
  Acad::ErrorStatus es = AcDbPlotSettings::dxfOutFields(f);
  return es != Acad::eOk ? es : layoutSchema().dxfOut(this, f);
}

Acad::ErrorStatus AcDbLayout::dxfInFields(AcDbDxfFiler* f) {
  keptLayout_.clear();
  Acad::ErrorStatus es = AcDbPlotSettings::dxfInFields(f);
  return es != Acad::eOk ? es : layoutSchema().dxfIn(this, f);
}

Acad::ErrorStatus AcDbLayout::getLayoutName(const ACHAR*& name) const {
  name = name_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayout::setLayoutName(const ACHAR* name) {
  if (!name || !*name) return Acad::eInvalidInput;
  if (Acad::ErrorStatus es = writable(this); es != Acad::eOk) return es;
  // "Model" is the model's sheet, and only its.
  bool isModel = sameName(name_, u"Model");
  if (!name_.empty() && (isModel != sameName(name, u"Model"))) return Acad::eInvalidInput;
  if (auto* dict = peek<AcDbDictionary>(ownerId())) {
    std::u16string key;
    if (dict->nameAt(objectId(), key) == Acad::eOk && key != name) {
      AcDbDictionary* w = nullptr;
      Acad::ErrorStatus es = acdbOpenObject(w, ownerId(), AcDb::kForWrite);
      if (es != Acad::eOk) return es;
      es = w->setName(key.c_str(), name);
      w->close();
      if (es != Acad::eOk) return es;
    }
  }
  assertWriteEnabled();
  name_ = name;
  return Acad::eOk;
}

void AcDbLayout::setTabOrder(int order) {
  assertWriteEnabled();
  tabOrder_ = static_cast<Adesk::Int16>(order);
}

Acad::ErrorStatus AcDbLayout::setBlockTableRecordId(AcDbObjectId id) {
  assertWriteEnabled();
  block_ = id;
  return Acad::eOk;
}

void AcDbLayout::setLimits(const AcGePoint2d& min, const AcGePoint2d& max) {
  assertWriteEnabled();
  limMin_ = min;
  limMax_ = max;
}
