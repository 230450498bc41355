#include "testing/before_lock.h"

#include <atomic>
#include <utility>

// To the linker they have the names that it gives to a wrapped function and to its wrapper.
extern "C" int LockWithoutNote(pthread_mutex_t* mutex) asm("__real_pthread_mutex_lock");
extern "C" int LockWithNote(pthread_mutex_t* mutex) asm("__wrap_pthread_mutex_lock");

namespace test_support {
namespace {

// Not one for each thread: on some systems what is one for each thread takes a lock itself.
std::atomic<BeforeLock*> current{nullptr};

}  // namespace

BeforeLock::BeforeLock(const void* object, std::size_t size, int number,
                       std::function<void()> action)
    : begin_(reinterpret_cast<std::uintptr_t>(object)),
      end_(begin_ + size),
      locks_left_(number),
      action_(std::move(action)),
      thread_(pthread_self()) {
  current = this;
}

BeforeLock::~BeforeLock() { current = nullptr; }

void BeforeLock::Note(const pthread_mutex_t* mutex) {
  if (pthread_equal(thread_, pthread_self()) == 0) return;
  const auto place = reinterpret_cast<std::uintptr_t>(mutex);
  if (place < begin_ || place >= end_ || --locks_left_ > 0) return;
  current = nullptr;  // The action takes locks of its own.
  action_();
}

}  // namespace test_support

int LockWithNote(pthread_mutex_t* mutex) {
  if (test_support::BeforeLock* const before_lock = test_support::current) before_lock->Note(mutex);
  return LockWithoutNote(mutex);
}
