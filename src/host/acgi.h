// The graphics interface through which entities draw themselves: an
// entity's worldDraw is handed an AcGiWorldDraw and describes its picture
// as primitives (polylines, circles, arcs, filled polygons, text, shells)
// in world coordinates, with the traits (colour, layer, linetype,
// lineweight, fill) of what follows. The host's sinks behind it: the
// picture renderer, an extents sink, test recorders.
//
// Traits set to ByLayer (colour 256, linetype and lineweight ByLayer) or
// ByBlock (colour 0) are resolved by the sink against the layer and the
// block reference being drawn, as the host resolves an entity's own.
#pragma once

#include <cstdint>

#include "host/dbcolor.h"
#include "host/dbents.h"
#include "host/dbid.h"
#include "host/gemat3d.h"
#include "host/gepnt3d.h"
#include "host/gevec3d.h"

enum AcGiFillType { kAcGiFillAlways = 1, kAcGiFillNever = 2 };
enum AcGiArcType { kAcGiArcSimple = 0, kAcGiArcSector = 1, kAcGiArcChord = 2 };
enum AcGiRegenType { kAcGiStandardDisplay = 2, kAcGiHideOrShadeCommand = 3, kAcGiShadedDisplay = 4 };

class AcGiSubEntityTraits {
 public:
  virtual ~AcGiSubEntityTraits() = default;
  // An index colour (0 ByBlock, 256 ByLayer) or a true colour.
  virtual void setColor(Adesk::UInt16 color) = 0;
  virtual void setTrueColor(const AcCmEntityColor& color) = 0;
  virtual void setLayer(AcDbObjectId layerId) = 0;
  virtual void setLineType(AcDbObjectId linetypeId) = 0;
  virtual void setLineWeight(AcDb::LineWeight lineWeight) = 0;
  virtual void setLineTypeScale(double scale) = 0;
  virtual void setFillType(AcGiFillType type) = 0;

  virtual Adesk::UInt16 color() const = 0;
  virtual AcCmEntityColor trueColor() const = 0;
  virtual AcDbObjectId layerId() const = 0;
  virtual AcDbObjectId lineTypeId() const = 0;
  virtual AcDb::LineWeight lineWeight() const = 0;
  virtual double lineTypeScale() const = 0;
  virtual AcGiFillType fillType() const = 0;
};

class AcGiWorldGeometry {
 public:
  virtual ~AcGiWorldGeometry() = default;
  // Each returns true when the sink asks the entity to stop (regen abort).
  virtual Adesk::Boolean circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) const = 0;
  // The arc from center + startVector (its length is ignored; radius is
  // the radius) through sweepAngle radians counterclockwise about normal.
  virtual Adesk::Boolean circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                                     const AcGeVector3d& startVector, double sweepAngle,
                                     AcGiArcType arcType = kAcGiArcSimple) const = 0;
  // An elliptical arc: center + cos(t) majorAxis + sin(t) minorAxis for t
  // from startParam to endParam. (A host addition: the full interface
  // draws ellipses through NURBS curves.)
  virtual Adesk::Boolean ellipticalArc(const AcGePoint3d& center, const AcGeVector3d& majorAxis,
                                       const AcGeVector3d& minorAxis, double startParam, double endParam) const = 0;
  virtual Adesk::Boolean polyline(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList,
                                  const AcGeVector3d* pNormal = nullptr, Adesk::LongPtr lBaseSubEntMarker = -1) const = 0;
  // A closed polygon; filled when the fill type is kAcGiFillAlways.
  virtual Adesk::Boolean polygon(Adesk::UInt32 nbPoints, const AcGePoint3d* pVertexList) const = 0;
  // Several closed loops filled together by the even-odd rule, so that
  // inner loops are holes (a host addition, for hatches and regions).
  virtual Adesk::Boolean polyPolygon(Adesk::UInt32 nbLoops, const Adesk::UInt32* pLoopSizes,
                                     const AcGePoint3d* pVertexList) const = 0;
  // Faces as in a shell: faceList holds, per face, the count of its
  // vertices and their indexes into vertexList.
  virtual Adesk::Boolean shell(Adesk::UInt32 nbVertex, const AcGePoint3d* pVertexList, Adesk::UInt32 faceListSize,
                               const Adesk::Int32* pFaceList) const = 0;
  // Text on its baseline from position, in the host's text font: height is
  // the height of capitals, width the width factor, oblique the slant in
  // radians from the vertical.
  virtual Adesk::Boolean text(const AcGePoint3d& position, const AcGeVector3d& normal,
                              const AcGeVector3d& direction, double height, double width, double oblique,
                              const ACHAR* pMsg) const = 0;
  // What follows is drawn through the matrix (block references); the
  // transforms nest.
  virtual Adesk::Boolean pushModelTransform(const AcGeMatrix3d& xMat) = 0;
  virtual Adesk::Boolean popModelTransform() = 0;
};

class AcGiWorldDraw {
 public:
  virtual ~AcGiWorldDraw() = default;
  virtual AcGiWorldGeometry& geometry() const = 0;
  virtual AcGiSubEntityTraits& subEntityTraits() const = 0;
  virtual AcGiRegenType regenType() const { return kAcGiStandardDisplay; }
  virtual Adesk::Boolean regenAbort() const { return false; }
  // How large a drawing unit is on the output, in pixels, where the sink
  // knows it (0 otherwise): entities choose how finely to draw curves.
  virtual double deviation() const { return 0.0; }
};
