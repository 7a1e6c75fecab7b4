// The invalid-parameter path shared by every platform, and the host's hook.
#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "Ostrel.h"
#include "VornelException.h"
#include "VornelTextMgr.h"
#include "frame/platform.h"

namespace ostrel {
namespace frame {
namespace platform {
namespace {

std::atomic<OstrelInvalidParameterHandler> g_hostHandler{nullptr};

// Reports through the text manager; true if the report was shown.
bool ReportThroughTextManager(const char *file, unsigned int line) {
  ITextManager *textManager = DllGetTextMgr();
  if (textManager == nullptr) return false;
  const VornelStatus status =
      textManager->ReportException(CVornelException(1, file, static_cast<int>(line)));
  textManager->Release();
  return status >= 0;
}

}  // namespace

void InvalidParameter(const char *function, const char *expression, const char *file,
                      unsigned int line) {
  if (const OstrelInvalidParameterHandler handler = g_hostHandler.load()) {
    handler(function, expression, file, line);
  }
  RunRuntimeInvalidParameterHandler();
  if (!ReportThroughTextManager(file, line)) {
    std::fprintf(stderr, "Ostrel: invalid parameter in %s: %s\n", function, expression);
  }
  std::fflush(stderr);
  std::abort();
}

}  // namespace platform
}  // namespace frame
}  // namespace ostrel

namespace frame = ostrel::frame;

OstrelInvalidParameterHandler SetInvalidParameterHandler(OstrelInvalidParameterHandler handler) {
  return frame::platform::g_hostHandler.exchange(handler);
}
