// Stand-in for the text-manager part of the suite's globals library.
#include "VornelTextMgr.h"

#include <cstdio>
#include <mutex>

namespace {

// Writes each report as one line to standard error. It lives as long as the
// process, so its reference count is only nominal.
class StandardErrorTextManager final : public ITextManager {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **object) override {
    if (object != nullptr) *object = nullptr;
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
  VornelStatus VORNEL_STDCALL ReportException(const CVornelException &e) override {
    std::fprintf(stderr, "%s\n", e.what());
    return kVornelOk;
  }
};

StandardErrorTextManager g_standardErrorTextManager;

std::mutex &TextManagerMutex() {
  static std::mutex mutex;
  return mutex;
}

ITextManager *g_textManager = &g_standardErrorTextManager;

}  // namespace

ITextManager *DllGetTextMgr() {
  std::lock_guard<std::mutex> lock(TextManagerMutex());
  if (g_textManager != nullptr) g_textManager->AddRef();
  return g_textManager;
}

ITextManager *DllSetTextMgr(ITextManager *manager) {
  if (manager != nullptr) manager->AddRef();
  std::lock_guard<std::mutex> lock(TextManagerMutex());
  ITextManager *previous = g_textManager;
  g_textManager = manager;
  return previous;
}
