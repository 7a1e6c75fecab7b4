// The framework base of the module object and the suite's exception handler.
#include <cstdio>
#include <new>

#include "MfcUtilities.h"
#include "VornelException.h"
#include "VornelTextMgr.h"

namespace ostrel {
namespace frame {
namespace {

FrameworkResult FrameworkValueFor(const CFrameworkMessage *msg) {
  return (msg != nullptr && msg->message == kWmCreate) ? -1 : 0;
}

// The exception e as the suite reports it: a CVornelException as it is,
// anything else wrapped in one.
CVornelException AsVornelException(const std::exception_ptr &e) {
  try {
    std::rethrow_exception(e);
  } catch (const CVornelException &vornel) { return vornel; } catch (const std::bad_alloc &) {
    return CVornelException(3, "MfcUtilities", 1358);
  } catch (...) { return CVornelException(1, "MfcUtilities", 1353); }
}

}  // namespace
}  // namespace frame
}  // namespace ostrel

namespace frame = ostrel::frame;

int CWinApp::InitInstance() { return 1; }

FrameworkResult CWinApp::ProcessWndProcException(std::exception_ptr e,
                                                 const CFrameworkMessage *msg) {
  try {
    if (e) std::rethrow_exception(e);
  } catch (const std::exception &ex) {
    std::fprintf(stderr, "Unhandled exception in window procedure: %s\n", ex.what());
  } catch (...) { std::fprintf(stderr, "Unhandled exception in window procedure\n"); }
  return frame::FrameworkValueFor(msg);
}

FrameworkResult CVornelWinAppForRegularDLL::ProcessWndProcException(std::exception_ptr e,
                                                                    const CFrameworkMessage *msg) {
  ITextManager *textManager = DllGetTextMgr();
  if (textManager == nullptr) return CWinApp::ProcessWndProcException(e, msg);

  if (e) textManager->ReportException(frame::AsVornelException(e));
  textManager->Release();

  if (msg != nullptr && msg->message == kWmCommand) return 1;
  return frame::FrameworkValueFor(msg);
}
