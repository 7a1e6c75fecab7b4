// The component-object basics of the stand-in objects: a reference count
// that deletes the object when its last reference goes, no interfaces beyond
// the one the object is handed out as, and the factory slot through which a
// host replaces the stand-ins with its own objects.
#ifndef OSTREL_SUITE_STAND_IN_H
#define OSTREL_SUITE_STAND_IN_H

#include <atomic>
#include <new>

#include "VornelBase.h"

namespace vornel_stand_in {

// Object is the final class (deleted through its own type), Interface the
// suite interface it implements.
template <class Object, class Interface>
class RefCounted : public Interface {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **object) override {
    if (object != nullptr) *object = nullptr;
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return ++refs_; }
  unsigned long VORNEL_STDCALL Release() override {
    const unsigned long left = --refs_;
    if (left == 0) delete static_cast<Object *>(this);
    return left;
  }

 protected:
  ~RefCounted() = default;

 private:
  std::atomic<unsigned long> refs_{1};
};

// The factory of one kind of object: the host's, once installed, else the
// stand-in's, which creates an Object (Interface being what it is handed out
// as) with one reference for the caller. Creating returns kVornelOk, or a
// negative status with *object set to null: kVornelOutOfMemory when the
// stand-in cannot be allocated, kVornelFail when object is null.
template <class Object, class Interface>
class Factory {
 public:
  using Function = VornelStatus (*)(const char *sourceName, int line, Interface **object);

  VornelStatus Create(const char *sourceName, int line, Interface **object) {
    const Function installed = installed_.load();
    return (installed != nullptr ? installed : CreateStandIn)(sourceName, line, object);
  }
  // Installs function (null: the stand-in's); returns the one before.
  Function Install(Function function) { return installed_.exchange(function); }

 private:
  static VornelStatus CreateStandIn(const char * /*sourceName*/, int /*line*/, Interface **object) {
    if (object == nullptr) return kVornelFail;
    *object = new (std::nothrow) Object;
    return *object != nullptr ? kVornelOk : kVornelOutOfMemory;
  }

  std::atomic<Function> installed_{nullptr};
};

}  // namespace vornel_stand_in

#endif  // OSTREL_SUITE_STAND_IN_H
