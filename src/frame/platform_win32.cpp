// The platform layer on Windows: the system's own calls.
#include "frame/platform.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

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

}  // namespace platform
}  // namespace ostrel
