// VornelTextMgr.h - the suite's text manager, as far as Ostrel uses it.
//
// The text manager turns exceptions into reports for the user (in the suite,
// a dialog in the user's language). Ostrel reports through it the exceptions
// that reach a window procedure of its module object (MfcUtilities.h).
#ifndef VORNEL_TEXT_MGR_H
#define VORNEL_TEXT_MGR_H

#include "VornelBase.h"
#include "VornelException.h"

struct ITextManager : public IUnknown {
  // Reports e to the user. Returns a negative status if the report could not
  // be shown.
  virtual VornelStatus VORNEL_STDCALL ReportException(const CVornelException &e) = 0;

 protected:
  ~ITextManager() = default;
};

// The process's text manager with a reference added for the caller, who
// releases it; null when none is installed. Until a host installs its own,
// the stand-in manager writes each report as one line to standard error.
VORNEL_API ITextManager *DllGetTextMgr();

// Installs manager (which may be null: no text manager) as the process's
// text manager, adding a reference to it, and returns the one installed
// before, whose reference passes to the caller (null if there was none).
VORNEL_API ITextManager *DllSetTextMgr(ITextManager *manager);

#endif  // VORNEL_TEXT_MGR_H
