// The module object and the state the library sets when it is loaded.
#ifndef OSTREL_FRAME_MODULE_H
#define OSTREL_FRAME_MODULE_H

#include "MfcUtilities.h"
#include "frame/blend.h"

namespace ostrel {
namespace frame {

// The library's one application object. It is a static object, so it is
// created when the library is loaded, and its InitInstance runs right after:
// it sets the module-wide fast-form flag (frame/blend.h) from the
// processor-feature query
// (MMX) and does nothing else; no thread is started at load.
class COstrelApp : public CVornelWinAppForRegularDLL {
 public:
  int InitInstance() override;
};

// The library's processor-feature queries: MMX (which sets the flag), and
// SSE2 and SSE3, which nothing in the library depends on. Each is nonzero
// when the feature is present.
int QueryMmx();
int QuerySse2();
int QuerySse3();

// Sets the fast-form flag, for tests that run the exact form on a processor
// with MMX. Not exported.
void SetFastFormFlagForTesting(int value);

}  // namespace frame
}  // namespace ostrel

#endif  // OSTREL_FRAME_MODULE_H
