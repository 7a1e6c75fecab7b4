// The thin platform layer: the operating-system services the library uses,
// with a Windows implementation (the real calls) and a POSIX one.
#ifndef OSTREL_FRAME_PLATFORM_H
#define OSTREL_FRAME_PLATFORM_H

namespace ostrel {
namespace frame {
namespace platform {

// Processor features, numbered as the Windows processor-feature query
// numbers them.
const unsigned int kFeatureMmx = 3;    // PF_MMX_INSTRUCTIONS_AVAILABLE
const unsigned int kFeatureSse2 = 10;  // PF_XMMI64_INSTRUCTIONS_AVAILABLE
const unsigned int kFeatureSse3 = 13;  // PF_SSE3_INSTRUCTIONS_AVAILABLE

// True when the processor offers the feature. On Windows this is
// IsProcessorFeaturePresent; elsewhere cpuid answers for x86 and every
// feature is absent on other processors.
bool ProcessorFeaturePresent(unsigned int feature);

// ---- Invalid parameters ----------------------------------------------------
// A few exported functions meet some argument errors as the C runtime meets
// an out-of-range checked array access: they call the process's
// invalid-parameter handler, before writing anything, and do not return
// normally. InvalidParameter is that call. In order it runs
//
//   1. the handler the host installed with SetInvalidParameterHandler
//      (Ostrel.h), if any; it may throw, and the exception leaves the
//      exported function;
//   2. the handler the host installed in the C runtime, where the platform
//      has one (RunRuntimeInvalidParameterHandler);
//   3. the default: a CVornelException with code 1, the bare name of file
//      and line, reported through the suite's text manager (or, without
//      one, a line naming function and expression on standard error), then
//      abort().
//
// function is the exported function, expression the condition its arguments
// broke, file and line the place of the check (filled in by
// OSTREL_INVALID_PARAMETER_UNLESS below).
[[noreturn]] void InvalidParameter(const char *function, const char *expression, const char *file,
                                   unsigned int line);

// Runs the invalid-parameter handler that the host installed for the
// process in the C runtime, and returns when it returns. On Windows this is
// the handler of _set_invalid_parameter_handler (called without details, as
// the runtime's release build calls it); if none is installed, nothing
// happens. Elsewhere there is no such handler and nothing happens.
void RunRuntimeInvalidParameterHandler();

// Stops the process the way an integer division by zero does on the
// processor: SIGFPE on POSIX systems, the integer-divide-by-zero exception
// on Windows. For the divisions whose zero divisor is the caller's error, so
// the release build keeps that behaviour without dividing by zero.
[[noreturn]] void RaiseIntegerDivideFault();

// ---- Key polls ---------------------------------------------------------------
// Virtual key code of the Escape key.
const int kVirtualKeyEscape = 0x1B;

// True when the key is down or was pressed since the last poll. The query the
// host installed with SetKeyStateQuery (Ostrel.h) answers if there is one;
// otherwise GetAsyncKeyState on Windows, and elsewhere no key is ever
// reported.
bool KeyPressed(int virtualKey);

// ---- Processors, threads and events -----------------------------------------
// The number of processors the process may run on: the set bits among the
// first 32 positions of its affinity mask (GetProcessAffinityMask on
// Windows, sched_getaffinity elsewhere). At least 1.
unsigned int AffinityProcessorCount();

// An auto-reset event, unnamed: a signal wakes one waiter (or the next one to
// wait) and is consumed by it. On Windows the handle is the system event's
// handle; elsewhere it points to the library's own event (a mutex and a
// condition variable).
typedef void *EventHandle;

// A new event, not signalled; null when it cannot be made.
EventHandle CreateAutoResetEvent();
void SetAutoResetEvent(EventHandle event);
// Waits without time limit until the event is signalled, and resets it.
void WaitAutoResetEvent(EventHandle event);
void CloseAutoResetEvent(EventHandle event);

// Starts a thread (default stack size, no flags) that runs routine(argument)
// and is never joined. False when the thread cannot be started.
bool StartThread(void (*routine)(void *), void *argument);

}  // namespace platform
}  // namespace frame
}  // namespace ostrel

// Calls the invalid-parameter handler for the exported function `function`
// when condition does not hold; in the release build as in the checked one.
#define OSTREL_INVALID_PARAMETER_UNLESS(function, condition) \
  ((condition)                                               \
       ? static_cast<void>(0)                                \
       : ::ostrel::frame::platform::InvalidParameter((function), #condition, __FILE__, __LINE__))

#endif  // OSTREL_FRAME_PLATFORM_H
