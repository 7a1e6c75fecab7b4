// Caller-error checks of the checked build.
//
// Some caller errors are, by design, not tested in the release build: a
// region corner outside its buffer, a square size of 0, a zero period. The
// release build keeps the documented behaviour for them (the unsigned
// differences wrap, the division faults). A build configured with
// OSTREL_CHECKED=ON tests them instead and stops the process with a message
// that names the exported function and the failed condition:
//
//   Ostrel: caller error in FillTRCBuffer: left + regionWidth <= width
#ifndef OSTREL_FRAME_CHECKED_H
#define OSTREL_FRAME_CHECKED_H

#ifndef OSTREL_CHECKED
#define OSTREL_CHECKED 0
#endif

namespace ostrel {
namespace frame {

// Writes the message to standard error and aborts.
[[noreturn]] void ReportCallerError(const char *function, const char *condition);

}  // namespace frame
}  // namespace ostrel

// OSTREL_EXPECT(function, condition): in the checked build, reports condition
// as a caller error of function when it does not hold. In the release build
// the condition is not evaluated (only named, so that what it mentions
// counts as used).
//
// function is always the exported function's own __func__: the exported
// function passes it, and every helper that checks on its behalf takes it as
// a `const char *function` parameter and hands it on.
#if OSTREL_CHECKED
#define OSTREL_EXPECT(function, condition) \
  ((condition) ? static_cast<void>(0) : ::ostrel::frame::ReportCallerError((function), #condition))
#else
#define OSTREL_EXPECT(function, condition) \
  static_cast<void>(sizeof(function) + sizeof((condition) ? 1 : 0))
#endif

#endif  // OSTREL_FRAME_CHECKED_H
