#include <gtest/gtest.h>

#include "frame/module.h"
#include "frame/platform.h"

TEST(Module, Placeholder) {
  EXPECT_EQ(ostrel::frame::g_fastFormFlag,
            ostrel::platform::ProcessorFeaturePresent(ostrel::platform::kFeatureMmx) ? 1 : 0);
}
