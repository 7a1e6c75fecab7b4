// Small helpers shared by the example programs' command lines.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <string>

namespace ostrel_examples {

// Parses all of text as a decimal integer / a finite double.
inline bool ParseInt(const std::string &text, long *value) {
  if (text.empty()) return false;
  char *end = nullptr;
  errno = 0;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (errno != 0 || *end != '\0') return false;
  *value = v;
  return true;
}

inline bool ParseDouble(const std::string &text, double *value) {
  if (text.empty()) return false;
  char *end = nullptr;
  errno = 0;
  const double v = std::strtod(text.c_str(), &end);
  if (errno != 0 || *end != '\0' || !(v == v) || v > 1e300 || v < -1e300) return false;
  *value = v;
  return true;
}

// Parses "A<sep>B" into two integers.
inline bool ParsePair(const std::string &text, char sep, long *a, long *b) {
  const std::size_t at = text.find(sep);
  return at != std::string::npos && ParseInt(text.substr(0, at), a) &&
         ParseInt(text.substr(at + 1), b);
}

}  // namespace ostrel_examples
