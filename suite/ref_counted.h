// The component-object basics of the stand-in objects: a reference count
// that deletes the object when its last reference goes, and no interfaces
// beyond the one the object is handed out as.
#ifndef OSTREL_SUITE_REF_COUNTED_H
#define OSTREL_SUITE_REF_COUNTED_H

#include <atomic>

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

}  // namespace vornel_stand_in

#endif  // OSTREL_SUITE_REF_COUNTED_H
