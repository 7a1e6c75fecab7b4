// VornelCoordPair.h - the suite's coordinate-pair objects, as far as Ostrel
// uses them.
//
// A coordinate pair is a reference-counted object holding one point (x, y)
// in doubles. Ostrel writes results into pairs that its host hands it
// (GetPosition in Ostrel.h) and creates pairs through the factory below.
#ifndef VORNEL_COORD_PAIR_H
#define VORNEL_COORD_PAIR_H

#include "VornelBase.h"

struct ICoordPair : public IUnknown {
  // Sets the point. Returns a negative status if the pair refuses it.
  virtual VornelStatus VORNEL_STDCALL SetXY(double x, double y) = 0;
  // Reads the point into *x and *y.
  virtual VornelStatus VORNEL_STDCALL GetXY(double *x, double *y) = 0;

 protected:
  ~ICoordPair() = default;
};

// Creates a coordinate pair holding (0, 0) and stores it in *pair, with one
// reference that passes to the caller, who releases it. sourceName and line
// tag the object with the place that asked for it (Ostrel passes its own
// name, "Ostrel", and a line number), so that the suite can say where an
// object that is never released came from. Returns kVornelOk, or a negative
// status with *pair set to null: kVornelOutOfMemory when the object cannot
// be allocated, kVornelFail when pair is null.
//
// Until a host installs its own factory, the stand-in creates plain pairs
// that keep no tag.
VORNEL_API VornelStatus DllGetCoordPairSetRes(const char *sourceName, int line, ICoordPair **pair);

// A factory for DllGetCoordPairSetRes to call, with the same arguments and
// the same contract.
using VornelCoordPairFactory = VornelStatus (*)(const char *sourceName, int line,
                                                ICoordPair **pair);

// Installs factory (null: the stand-in's) as the one DllGetCoordPairSetRes
// calls, and returns the one installed before (null for the stand-in's).
VORNEL_API VornelCoordPairFactory DllSetCoordPairFactory(VornelCoordPairFactory factory);

#endif  // VORNEL_COORD_PAIR_H
