// The platform layer on POSIX systems.
#include "frame/cpu_features.h"
#include "frame/platform.h"

#include "Ostrel.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

namespace ostrel {
namespace platform {

bool ProcessorFeaturePresent(unsigned int feature) {
  const frame::CpuFeatures f = frame::ReadCpuFeatures();
  switch (feature) {
    case kFeatureMmx:
      return f.mmx;
    case kFeatureSse2:
      return f.sse2;
    case kFeatureSse3:
      return f.sse3;
    default:
      return false;
  }
}

void RunRuntimeInvalidParameterHandler() {}

void RaiseIntegerDivideFault() {
  std::raise(SIGFPE);
  std::abort();  // SIGFPE was ignored or its handler returned
}

namespace {
std::atomic<OstrelKeyStateQuery> g_keyStateQuery{nullptr};
}  // namespace

bool KeyPressed(int virtualKey) {
  if (const OstrelKeyStateQuery query = g_keyStateQuery.load()) return query(virtualKey) != 0;
  return false;
}

}  // namespace platform
}  // namespace ostrel

OstrelKeyStateQuery SetKeyStateQuery(OstrelKeyStateQuery query) {
  return ostrel::platform::g_keyStateQuery.exchange(query);
}
