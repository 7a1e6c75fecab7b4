// The thin platform layer: the operating-system services the library uses,
// with a Windows implementation (the real calls) and a POSIX one.
#ifndef OSTREL_FRAME_PLATFORM_H
#define OSTREL_FRAME_PLATFORM_H

namespace ostrel {
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

}  // namespace platform
}  // namespace ostrel

#endif  // OSTREL_FRAME_PLATFORM_H
