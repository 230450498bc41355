#pragma once

#include <cstdint>
#include <functional>

#include <pthread.h>

/// Programs that link before_lock.cpp with the option --wrap=pthread_mutex_lock can act between two
/// stretches in which an operation holds a lock.
namespace test_support {

/// Runs an action once, while no other such object lives, before this thread takes a lock of an
/// object for the given time, the first being number 1. The action may use the object.
class BeforeLock {
 public:
  template <typename Object>
  BeforeLock(const Object& object, int number, std::function<void()> action)
      : BeforeLock(&object, sizeof(object), number, std::move(action)) {}
  ~BeforeLock();
  BeforeLock(const BeforeLock&) = delete;
  BeforeLock& operator=(const BeforeLock&) = delete;

  bool happened() const { return locks_left_ == 0; }

  /// Called before each lock that this thread takes.
  void Note(const pthread_mutex_t* mutex);

 private:
  BeforeLock(const void* object, std::size_t size, int number, std::function<void()> action);

  std::uintptr_t begin_;
  std::uintptr_t end_;
  int locks_left_;
  std::function<void()> action_;
  pthread_t thread_;
};

}  // namespace test_support
