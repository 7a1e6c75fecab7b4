// Stand-in for the text-manager part of the suite's globals library.
#include <cstdio>

#include "VornelTextMgr.h"
#include "process_object.h"

namespace {

// Writes each report as one line to standard error.
class StandardErrorTextManager final : public vornel_suite::ProcessObject<ITextManager> {
 public:
  VornelStatus VORNEL_STDCALL ReportException(const CVornelException &e) override {
    std::fprintf(stderr, "%s\n", e.what());
    return kVornelOk;
  }
};

StandardErrorTextManager g_standardErrorTextManager;
vornel_suite::InstalledObject<ITextManager> g_textManager(&g_standardErrorTextManager);

}  // namespace

ITextManager *DllGetTextMgr() { return g_textManager.Get(); }

ITextManager *DllSetTextMgr(ITextManager *manager) { return g_textManager.Set(manager); }
