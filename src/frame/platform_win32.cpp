// The platform layer on Windows: the system's own calls.
#include "frame/platform.h"

#include "Ostrel.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <atomic>
#include <cstdlib>

#include <stdlib.h>

namespace ostrel {
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

}  // namespace platform
}  // namespace ostrel

OstrelKeyStateQuery SetKeyStateQuery(OstrelKeyStateQuery query) {
  return ostrel::platform::g_keyStateQuery.exchange(query);
}
