#include "frame/checked.h"

#include <cstdio>
#include <cstdlib>

namespace ostrel {
namespace frame {

void ReportCallerError(const char *function, const char *condition) {
  std::fprintf(stderr, "Ostrel: caller error in %s: %s\n", function, condition);
  std::fflush(stderr);
  std::abort();
}

}  // namespace frame
}  // namespace ostrel
