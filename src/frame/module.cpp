#include "frame/module.h"

#include "frame/platform.h"

namespace ostrel {
namespace frame {

int g_fastFormFlag = 0;

int QueryMmx() { return platform::ProcessorFeaturePresent(platform::kFeatureMmx) ? 1 : 0; }
int QuerySse2() { return platform::ProcessorFeaturePresent(platform::kFeatureSse2) ? 1 : 0; }
int QuerySse3() { return platform::ProcessorFeaturePresent(platform::kFeatureSse3) ? 1 : 0; }

void SetFastFormFlagForTesting(int value) { g_fastFormFlag = value; }

int COstrelApp::InitInstance() {
  g_fastFormFlag = QueryMmx();
  return CVornelWinAppForRegularDLL::InitInstance();
}

namespace {

// The application object, and its start-up as the framework runs it when the
// library is loaded (in this order: the object first, then InitInstance).
COstrelApp theApp;
[[maybe_unused]] const int g_started = theApp.InitInstance();

}  // namespace
}  // namespace frame
}  // namespace ostrel
