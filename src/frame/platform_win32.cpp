// The platform layer on Windows: the system's own calls.
#include "frame/platform.h"

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace ostrel {
namespace platform {

bool ProcessorFeaturePresent(unsigned int feature) {
  return IsProcessorFeaturePresent(static_cast<DWORD>(feature)) != FALSE;
}

}  // namespace platform
}  // namespace ostrel
