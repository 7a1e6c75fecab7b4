// The platform layer on POSIX systems.
#include <pthread.h>
#include <sched.h>

#include <atomic>
#include <condition_variable>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <new>

#include "Ostrel.h"
#include "frame/cpu_features.h"
#include "frame/platform.h"

namespace ostrel {
namespace frame {
namespace platform {

bool ProcessorFeaturePresent(unsigned int feature) {
  const CpuFeatures f = ReadCpuFeatures();
  switch (feature) {
    case kFeatureMmx: return f.mmx;
    case kFeatureSse2: return f.sse2;
    case kFeatureSse3: return f.sse3;
    default: return false;
  }
}

void RunRuntimeInvalidParameterHandler() {}

void RaiseIntegerDivideFault() {
  std::raise(SIGFPE);
  std::abort();  // SIGFPE was ignored or its handler returned
}

namespace {
std::atomic<OstrelKeyStateQuery> g_keyStateQuery{nullptr};
}  // namespace

bool KeyPressed(int virtualKey) {
  if (const OstrelKeyStateQuery query = g_keyStateQuery.load()) return query(virtualKey) != 0;
  return false;
}

unsigned int AffinityProcessorCount() {
  cpu_set_t set;
  CPU_ZERO(&set);
  if (sched_getaffinity(0, sizeof set, &set) != 0) return 1;
  unsigned int count = 0;
  for (int cpu = 0; cpu < 32; ++cpu) {
    if (CPU_ISSET(cpu, &set)) ++count;
  }
  return count != 0 ? count : 1;
}

namespace {

// The auto-reset event. Events live as long as the process (the pool never
// closes its own), and every live event is kept on one list reachable from a
// global, so leak checkers at exit see them as in use even after the pool's
// arrays that pointed to them are freed.
struct AutoResetEvent {
  std::mutex mutex;
  std::condition_variable wake;
  bool signalled = false;
  AutoResetEvent *next = nullptr;
};

std::mutex g_eventListMutex;
AutoResetEvent *g_eventList = nullptr;

struct ThreadStart {
  void (*routine)(void *);
  void *argument;
};

void *RunThread(void *start) {
  const ThreadStart s = *static_cast<ThreadStart *>(start);
  delete static_cast<ThreadStart *>(start);
  s.routine(s.argument);
  return nullptr;
}

}  // namespace

EventHandle CreateAutoResetEvent() {
  AutoResetEvent *event = new (std::nothrow) AutoResetEvent;
  if (event == nullptr) return nullptr;
  std::lock_guard<std::mutex> lock(g_eventListMutex);
  event->next = g_eventList;
  g_eventList = event;
  return event;
}

void SetAutoResetEvent(EventHandle handle) {
  AutoResetEvent *event = static_cast<AutoResetEvent *>(handle);
  std::lock_guard<std::mutex> lock(event->mutex);
  event->signalled = true;
  event->wake.notify_one();
}

void WaitAutoResetEvent(EventHandle handle) {
  AutoResetEvent *event = static_cast<AutoResetEvent *>(handle);
  std::unique_lock<std::mutex> lock(event->mutex);
  event->wake.wait(lock, [event] { return event->signalled; });
  event->signalled = false;
}

void CloseAutoResetEvent(EventHandle handle) {
  AutoResetEvent *event = static_cast<AutoResetEvent *>(handle);
  {
    std::lock_guard<std::mutex> lock(g_eventListMutex);
    for (AutoResetEvent **link = &g_eventList; *link != nullptr; link = &(*link)->next) {
      if (*link == event) {
        *link = event->next;
        break;
      }
    }
  }
  delete event;
}

bool StartThread(void (*routine)(void *), void *argument) {
  ThreadStart *start = new (std::nothrow) ThreadStart{routine, argument};
  if (start == nullptr) return false;
  pthread_t thread;
  if (pthread_create(&thread, nullptr, RunThread, start) != 0) {
    delete start;
    return false;
  }
  pthread_detach(thread);
  return true;
}

}  // namespace platform
}  // namespace frame
}  // namespace ostrel

OstrelKeyStateQuery SetKeyStateQuery(OstrelKeyStateQuery query) {
  return ostrel::frame::platform::g_keyStateQuery.exchange(query);
}
