// Caller-error checks of the checked build.
//
// Some caller errors are, by design, not tested in the release build: a
// region corner outside its buffer, a square size of 0, a zero period. The
// release build keeps the documented behaviour for them (a corner outside its
// buffer makes an empty region, a zero divisor raises the divide fault). A
// build configured with OSTREL_CHECKED=ON tests them instead and stops the
// process with a message that names the exported function, the caller's
// argument as the header names it, its value and what was expected:
//
//   Ostrel: caller error in FillTRCBuffer: regionWidth is 7, expected at most width - left (6)
//   Ostrel: caller error in kgV: b is 0, expected not 0
#ifndef OSTREL_FRAME_CHECKED_H
#define OSTREL_FRAME_CHECKED_H

#include <cstdint>
#include <type_traits>

#ifndef OSTREL_CHECKED
#define OSTREL_CHECKED 0
#endif

namespace ostrel {
namespace frame {

// An argument's value as a report prints it: any integer, a double, a
// pointer, or a description (a string literal, printed as it stands).
class ArgValue {
 public:
  template <class T, std::enable_if_t<std::is_integral<T>::value, int> = 0>
  ArgValue(T v)  // NOLINT: implicit on purpose, so that any argument converts
      : kind_(std::is_signed<T>::value ? kSigned : kUnsigned) {
    if (std::is_signed<T>::value) {
      signed_ = static_cast<std::int64_t>(v);
    } else {
      unsigned_ = static_cast<std::uint64_t>(v);
    }
  }
  ArgValue(double v) : kind_(kDouble), double_(v) {}         // NOLINT
  ArgValue(const void *v) : kind_(kPointer), pointer_(v) {}  // NOLINT
  ArgValue(const char *v) : kind_(kText), text_(v) {}        // NOLINT

  // Writes the value into text (at least 32 bytes).
  void Format(char *text, unsigned size) const;

 private:
  enum Kind { kSigned, kUnsigned, kDouble, kPointer, kText } kind_;
  union {
    std::int64_t signed_;
    std::uint64_t unsigned_;
    double double_;
    const void *pointer_;
    const char *text_;
  };
};

// The name of a caller's argument, in two pieces: a buffer's prefix as the
// header spells it ("src", "alpha", "mask", or "" for a one-buffer function)
// and the field ("Left", "Width", ...). With an empty prefix the field's first
// letter is written in lower case: "left".
struct ArgName {
  const char *prefix;
  const char *field;
};

// Writes the argument's name into text: "srcLeft", or "left" for the empty
// prefix.
void ComposeName(ArgName name, char *text, unsigned size);

// Writes "Ostrel: caller error in <function>: <argument> is <value>, expected
// <expected>" to standard error and aborts.
[[noreturn]] void ReportCallerError(const char *function, ArgName argument, ArgValue value,
                                    const char *expected);

}  // namespace frame
}  // namespace ostrel

// OSTREL_EXPECT(function, argument, value, condition, expected): in the
// checked build, reports the argument named `argument` (a string literal, as
// the header names it) with its value as a caller error of function when
// condition does not hold; expected says what was expected ("not 0", "at
// least 1"). In the release build nothing is evaluated (the operands are only
// named, so that what they mention counts as used).
//
// function is always the exported function's own __func__: the exported
// function passes it, and every helper that checks on its behalf takes it as
// a `const char *function` parameter and hands it on.
#if OSTREL_CHECKED
#define OSTREL_EXPECT(function, argument, value, condition, expected)                           \
  ((condition)                                                                                  \
       ? static_cast<void>(0)                                                                   \
       : ::ostrel::frame::ReportCallerError((function), ::ostrel::frame::ArgName{"", argument}, \
                                            ::ostrel::frame::ArgValue(value), (expected)))
#else
#define OSTREL_EXPECT(function, argument, value, condition, expected)     \
  static_cast<void>(sizeof(function) + sizeof(argument) + sizeof(value) + \
                    sizeof((condition) ? 1 : 0) + sizeof(expected))
#endif

#endif  // OSTREL_FRAME_CHECKED_H
