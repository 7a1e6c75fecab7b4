// Pieces the suite stand-ins share: objects that live as long as the process,
// and the process-wide slot a host can install its own object in.
#ifndef OSTREL_SUITE_PROCESS_OBJECT_H
#define OSTREL_SUITE_PROCESS_OBJECT_H

#include <mutex>

#include "VornelBase.h"

namespace vornel_suite {

// A stand-in object that lives as long as the process: its reference count
// is only nominal, and it offers no other interface.
template <class Interface>
class ProcessObject : public Interface {
 public:
  VornelStatus VORNEL_STDCALL QueryInterface(const IID &, void **object) override {
    if (object != nullptr) *object = nullptr;
    return kVornelNoInterface;
  }
  unsigned long VORNEL_STDCALL AddRef() override { return 1; }
  unsigned long VORNEL_STDCALL Release() override { return 1; }
};

// The process's object of one interface: the stand-in until a host installs
// its own (or none). Constant-initialised, so it can be used from any static
// initialiser.
template <class Interface>
class InstalledObject {
 public:
  constexpr explicit InstalledObject(Interface *standIn) : current_(standIn) {}

  // The installed object with a reference added for the caller (or null).
  Interface *Get() {
    std::lock_guard<std::mutex> lock(mutex_);
    if (current_ != nullptr) current_->AddRef();
    return current_;
  }

  // Installs next (adding a reference to it) and returns the object
  // installed before, whose reference passes to the caller.
  Interface *Set(Interface *next) {
    if (next != nullptr) next->AddRef();
    std::lock_guard<std::mutex> lock(mutex_);
    Interface *previous = current_;
    current_ = next;
    return previous;
  }

 private:
  std::mutex mutex_;
  Interface *current_;
};

}  // namespace vornel_suite

#endif  // OSTREL_SUITE_PROCESS_OBJECT_H
