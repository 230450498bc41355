#include "testing/before_lock.h"

#include <utility>

// The linker wants these names.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
extern "C" int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex);

namespace test_support {
namespace {

thread_local BeforeLock* current = nullptr;

}  // namespace

BeforeLock::BeforeLock(const void* object, std::size_t size, int number,
                       std::function<void()> action)
    : begin_(reinterpret_cast<std::uintptr_t>(object)),
      end_(begin_ + size),
      locks_left_(number),
      action_(std::move(action)) {
  current = this;
}

BeforeLock::~BeforeLock() { current = nullptr; }

void BeforeLock::Note(const pthread_mutex_t* mutex) {
  const auto place = reinterpret_cast<std::uintptr_t>(mutex);
  if (place < begin_ || place >= end_ || --locks_left_ > 0) return;
  current = nullptr;  // The action takes locks of its own.
  action_();
}

}  // namespace test_support

int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
  if (test_support::current != nullptr) test_support::current->Note(mutex);
  return __real_pthread_mutex_lock(mutex);
}
// NOLINTEND(bugprone-reserved-identifier)
