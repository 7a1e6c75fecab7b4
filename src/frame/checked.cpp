#include "frame/checked.h"

#include <cctype>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace ostrel {
namespace frame {

void ArgValue::Format(char *text, unsigned size) const {
  switch (kind_) {
    case kSigned: std::snprintf(text, size, "%" PRId64, signed_); break;
    case kUnsigned: std::snprintf(text, size, "%" PRIu64, unsigned_); break;
    case kDouble: std::snprintf(text, size, "%.17g", double_); break;
    case kPointer:
      if (pointer_) {
        // Not %p, whose form differs between C runtimes (no 0x on Windows).
        std::snprintf(text, size, "0x%" PRIxPTR, reinterpret_cast<std::uintptr_t>(pointer_));
      } else {
        std::snprintf(text, size, "null");
      }
      break;
    case kText: std::snprintf(text, size, "%s", text_); break;
  }
}

void ComposeName(ArgName name, char *text, unsigned size) {
  std::snprintf(text, size, "%s%s", name.prefix, name.field);
  if (name.prefix[0] == '\0') text[0] = static_cast<char>(std::tolower(text[0]));
}

void ReportCallerError(const char *function, ArgName argument, ArgValue value,
                       const char *expected) {
  char name[64], shown[48];
  ComposeName(argument, name, sizeof name);
  value.Format(shown, sizeof shown);
  std::fprintf(stderr, "Ostrel: caller error in %s: %s is %s, expected %s\n", function, name, shown,
               expected);
  std::fflush(stderr);
  std::abort();
}

}  // namespace frame
}  // namespace ostrel
