// VornelBase.h - the component-object basics shared by the suite interfaces.
//
// The suite's libraries hand out reference-counted interface objects in the
// component-object style: every interface derives from IUnknown, a call that
// can fail returns a 32-bit status that is negative on failure, and a failed
// status is turned into an exception with MakeException (VornelException.h).
//
// On Windows the real IUnknown of the platform is used. Elsewhere this header
// gives it the same shape: the same three operations in the same order.
#ifndef VORNEL_BASE_H
#define VORNEL_BASE_H

// Symbols of the suite that the portable stand-ins define. They are built
// into the Ostrel library and exported from it, so a host that brings its
// own suite libraries can interpose them, or install its own objects through
// the setters the interfaces provide.
#if defined(_WIN32)
#  if defined(OSTREL_BUILDING_LIBRARY)
#    define VORNEL_API __declspec(dllexport)
#  else
#    define VORNEL_API __declspec(dllimport)
#  endif
#else
#  define VORNEL_API __attribute__((visibility("default")))
#endif

#if defined(_WIN32)
#  include <unknwn.h>
#  define VORNEL_STDCALL __stdcall
typedef long VornelStatus;
#else
#  define VORNEL_STDCALL

// Status of an interface call: 0 or positive for success, negative for
// failure (the component-object HRESULT convention).
typedef long VornelStatus;

// 128-bit interface identifier.
struct _GUID {
  unsigned int Data1;
  unsigned short Data2;
  unsigned short Data3;
  unsigned char Data4[8];
};
typedef _GUID IID;

// The root of every suite interface: reference counting and interface
// queries. Objects are released with Release(), never deleted directly.
struct IUnknown {
  virtual VornelStatus VORNEL_STDCALL QueryInterface(const IID &iid, void **object) = 0;
  virtual unsigned long VORNEL_STDCALL AddRef() = 0;
  virtual unsigned long VORNEL_STDCALL Release() = 0;

 protected:
  ~IUnknown() = default;
};
#endif

// Status values used by the stand-ins (negative: failures), written as the
// signed 32-bit values of their usual hexadecimal codes so that they stay
// negative where long has 64 bits.
const VornelStatus kVornelOk = 0;
const VornelStatus kVornelNoInterface = -2147467262L;  // 0x80004002
const VornelStatus kVornelFail = -2147467259L;         // 0x80004005
const VornelStatus kVornelOutOfMemory = -2147024882L;  // 0x8007000E

#endif  // VORNEL_BASE_H
