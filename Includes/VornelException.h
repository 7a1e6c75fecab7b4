// VornelException.h - the suite's exception class and its status raiser.
#ifndef VORNEL_EXCEPTION_H
#define VORNEL_EXCEPTION_H

#include <exception>
#include <string>

#include "VornelBase.h"

// The exception that suite libraries, Ostrel among them, throw for their own
// failures. It carries a code, the name of the source file that raised it and
// the line there:
//
//   code 1  general failure (for example a scratch buffer that cannot be sized)
//   code 3  out of memory
//
// The source file is kept as its bare name: everything up to and including
// the last '/' or '\' of the path given to the constructor is dropped, so
// "C:\\build\\Ostrel" and "src/frame/Ostrel" are both kept as "Ostrel".
//
// An exception made by MakeException from a failed interface call also
// carries that call's status (0 otherwise).
class VORNEL_API CVornelException : public std::exception {
 public:
  CVornelException(int code, const char *sourceFile, int line);
  CVornelException(int code, const char *sourceFile, int line, VornelStatus status);

  int GetCode() const noexcept { return code_; }
  const char *GetSourceFile() const noexcept { return file_.c_str(); }
  int GetLine() const noexcept { return line_; }
  VornelStatus GetStatus() const noexcept { return status_; }

  // "Vornel exception 1 (Ostrel, line 9870)", with the status in hex when
  // there is one.
  const char *what() const noexcept override;

 private:
  int code_;
  std::string file_;
  int line_;
  VornelStatus status_;
  std::string what_;
};

// Turns the status of a call on a suite interface into an exception: a
// negative status throws CVornelException with code 1 and that status,
// naming the interface's origin "MakeException"; zero or positive returns.
// source is the interface whose call failed (it may be null).
VORNEL_API void MakeException(long status, IUnknown *source);

#endif  // VORNEL_EXCEPTION_H
