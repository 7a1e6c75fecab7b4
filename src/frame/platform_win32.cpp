// The platform layer on Windows: the system's own calls.
#include "Ostrel.h"
#include "frame/platform.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <stdlib.h>
#include <windows.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace ostrel {
namespace frame {
namespace platform {

bool ProcessorFeaturePresent(unsigned int feature) {
  return IsProcessorFeaturePresent(static_cast<DWORD>(feature)) != FALSE;
}

void RunRuntimeInvalidParameterHandler() {
  if (const _invalid_parameter_handler handler = _get_invalid_parameter_handler()) {
    handler(nullptr, nullptr, nullptr, 0, 0);
  }
}

void RaiseIntegerDivideFault() {
  RaiseException(EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  std::abort();
}

namespace {
std::atomic<OstrelKeyStateQuery> g_keyStateQuery{nullptr};
}  // namespace

bool KeyPressed(int virtualKey) {
  if (const OstrelKeyStateQuery query = g_keyStateQuery.load()) return query(virtualKey) != 0;
  return GetAsyncKeyState(virtualKey) != 0;
}

unsigned int AffinityProcessorCount() {
  DWORD_PTR processMask = 0;
  DWORD_PTR systemMask = 0;
  if (!GetProcessAffinityMask(GetCurrentProcess(), &processMask, &systemMask)) return 1;
  unsigned int count = 0;
  for (unsigned int bit = 0; bit < 32; ++bit) {
    if ((processMask >> bit) & 1) ++count;
  }
  return count != 0 ? count : 1;
}

EventHandle CreateAutoResetEvent() { return CreateEventW(nullptr, FALSE, FALSE, nullptr); }

void SetAutoResetEvent(EventHandle event) { SetEvent(event); }

void WaitAutoResetEvent(EventHandle event) { WaitForSingleObject(event, INFINITE); }

void CloseAutoResetEvent(EventHandle event) { CloseHandle(event); }

namespace {

struct ThreadStart {
  void (*routine)(void *);
  void *argument;
};

DWORD WINAPI RunThread(LPVOID start) {
  const ThreadStart s = *static_cast<ThreadStart *>(start);
  delete static_cast<ThreadStart *>(start);
  s.routine(s.argument);
  return 0;
}

}  // namespace

bool StartThread(void (*routine)(void *), void *argument) {
  ThreadStart *start = new (std::nothrow) ThreadStart{routine, argument};
  if (start == nullptr) return false;
  const HANDLE thread = CreateThread(nullptr, 0, RunThread, start, 0, nullptr);
  if (thread == nullptr) {
    delete start;
    return false;
  }
  CloseHandle(thread);  // the thread runs on; the pool never waits for it
  return true;
}

}  // namespace platform
}  // namespace frame
}  // namespace ostrel

OstrelKeyStateQuery SetKeyStateQuery(OstrelKeyStateQuery query) {
  return ostrel::frame::platform::g_keyStateQuery.exchange(query);
}
