// MfcUtilities.h - the application-framework base of Ostrel's module object.
//
// The library is a dynamically loaded module with one application object of
// the host framework: it is created when the library is loaded, its
// InitInstance runs once at load, and it reports exceptions that escape a
// window procedure. This header gives that framework a small portable shape:
//
//   CWinApp                     the framework's application base: InitInstance
//                               and the default window-procedure exception
//                               handler.
//   CVornelWinAppForRegularDLL  the suite's base for the application object of
//                               a regular dynamic library: its handler reports
//                               through the suite's text manager.
//
// Exceptions travel as std::exception_ptr. The framework's memory exception is
// std::bad_alloc: a handler that receives a std::bad_alloc treats it as the
// framework's out-of-memory exception.
#ifndef OSTREL_MFC_UTILITIES_H
#define OSTREL_MFC_UTILITIES_H

#include <cstdint>
#include <exception>

// Window messages that the exception handlers tell apart.
const unsigned int kWmCreate = 1;
const unsigned int kWmPaint = 15;
const unsigned int kWmCommand = 273;

// The message being handled when an exception escaped the window procedure.
struct CFrameworkMessage {
  unsigned int message;
  std::uintptr_t wParam;
  std::intptr_t lParam;
};

// What an exception handler returns to the window procedure.
typedef std::intptr_t FrameworkResult;

class CWinApp {
 public:
  CWinApp() = default;
  CWinApp(const CWinApp &) = delete;
  CWinApp &operator=(const CWinApp &) = delete;
  virtual ~CWinApp() = default;

  // Runs once when the module is loaded; nonzero means success.
  virtual int InitInstance();

  // Handles an exception thrown while msg was being handled. The default
  // writes the exception's text to standard error and returns the
  // framework's value for the message: -1 for kWmCreate (the window is not
  // created), 0 for every other message.
  virtual FrameworkResult ProcessWndProcException(std::exception_ptr e,
                                                  const CFrameworkMessage *msg);
};

class CVornelWinAppForRegularDLL : public CWinApp {
 public:
  // Reports the exception through the suite's text manager (DllGetTextMgr).
  // With no text manager the framework's default handler runs instead.
  //
  // A CVornelException is reported as it is. Anything else is wrapped first:
  // std::bad_alloc (the framework's memory exception) becomes
  // CVornelException(3, "MfcUtilities", 1358), any other exception
  // CVornelException(1, "MfcUtilities", 1353).
  //
  // Returns 1 for kWmCommand (the command counts as handled, so it is not
  // routed further); for other messages the framework's value.
  FrameworkResult ProcessWndProcException(std::exception_ptr e,
                                          const CFrameworkMessage *msg) override;
};

#endif  // OSTREL_MFC_UTILITIES_H
