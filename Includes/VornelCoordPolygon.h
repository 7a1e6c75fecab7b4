// VornelCoordPolygon.h - the suite's coordinate-polygon objects, as far as
// Ostrel uses them.
//
// A coordinate polygon is a reference-counted object holding a list of
// vertices (x, y) in doubles, grouped into figures: consecutive runs of the
// vertex list, each one closed path. Ostrel writes outlines into polygons
// that its host hands it (GetContourPolygonFromBuffer2 in Ostrel.h) and
// creates polygons through the factory below.
//
// Every call returns a status, negative on failure, and leaves the polygon
// as it was when it fails.
#ifndef VORNEL_COORD_POLYGON_H
#define VORNEL_COORD_POLYGON_H

#include "VornelBase.h"

struct ICoordPolygon : public IUnknown {
  // Appends the vertex (x, y) to the current figure; the first vertex after
  // CloseFigure (or in an empty polygon) starts a new figure.
  virtual VornelStatus VORNEL_STDCALL AddXY(double x, double y) = 0;
  // Ends the current figure: the next vertex starts a new one. Ending a
  // figure that has no vertex does nothing.
  virtual VornelStatus VORNEL_STDCALL CloseFigure() = 0;
  // Removes every vertex and figure.
  virtual VornelStatus VORNEL_STDCALL RemoveAll() = 0;
  // The number of figures, the one still open included.
  virtual VornelStatus VORNEL_STDCALL GetFigureCount(long *count) = 0;
  // Figure index (0 .. count - 1) as a range of the vertex list: its first
  // vertex's index and its number of vertices.
  virtual VornelStatus VORNEL_STDCALL GetFigure(long index, long *first, long *count) = 0;
  // The number of vertices of all figures.
  virtual VornelStatus VORNEL_STDCALL GetPointCount(long *count) = 0;
  // Vertex index (0 .. count - 1) of the whole list.
  virtual VornelStatus VORNEL_STDCALL GetXY(long index, double *x, double *y) = 0;

 protected:
  ~ICoordPolygon() = default;
};

// Creates an empty coordinate polygon and stores it in *polygon, with one
// reference that passes to the caller, who releases it. sourceName and line
// tag the object with the place that asked for it, as for coordinate pairs
// (VornelCoordPair.h). Returns kVornelOk, or a negative status with *polygon
// set to null: kVornelOutOfMemory when the object cannot be allocated,
// kVornelFail when polygon is null.
//
// Until a host installs its own factory, the stand-in creates plain polygons
// that keep no tag. A stand-in polygon refuses (kVornelOutOfMemory) a vertex
// it has no memory for, and a count or index that a long cannot hold
// (kVornelFail).
VORNEL_API VornelStatus DllGetCoordPolygonSetRes(const char *sourceName, int line,
                                                 ICoordPolygon **polygon);

// A factory for DllGetCoordPolygonSetRes to call, with the same arguments and
// the same contract.
using VornelCoordPolygonFactory = VornelStatus (*)(const char *sourceName, int line,
                                                   ICoordPolygon **polygon);

// Installs factory (null: the stand-in's) as the one DllGetCoordPolygonSetRes
// calls, and returns the one installed before (null for the stand-in's).
VORNEL_API VornelCoordPolygonFactory DllSetCoordPolygonFactory(VornelCoordPolygonFactory factory);

#endif  // VORNEL_COORD_POLYGON_H
