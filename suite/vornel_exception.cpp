// Stand-in for the suite's utilities library: the exception class and the
// status raiser.
#include <cstdio>
#include <cstring>

#include "VornelException.h"

namespace {

// Everything after the last '/' or '\' of path.
std::string BareFileName(const char *path) {
  if (path == nullptr) return std::string();
  const char *name = path;
  for (const char *p = path; *p != '\0'; ++p) {
    if (*p == '/' || *p == '\\') name = p + 1;
  }
  return std::string(name);
}

}  // namespace

CVornelException::CVornelException(int code, const char *sourceFile, int line)
    : CVornelException(code, sourceFile, line, 0) {}

CVornelException::CVornelException(int code, const char *sourceFile, int line, VornelStatus status)
    : code_(code), file_(BareFileName(sourceFile)), line_(line), status_(status) {
  char text[160];
  if (status_ != 0) {
    std::snprintf(text, sizeof text, "Vornel exception %d (%s, line %d, status 0x%08lX)", code_,
                  file_.c_str(), line_, static_cast<unsigned long>(status_) & 0xFFFFFFFFul);
  } else {
    std::snprintf(text, sizeof text, "Vornel exception %d (%s, line %d)", code_, file_.c_str(),
                  line_);
  }
  what_ = text;
}

const char *CVornelException::what() const noexcept { return what_.c_str(); }

void MakeException(long status, IUnknown * /*source*/) {
  if (status < 0) throw CVornelException(1, "MakeException", 0, status);
}
