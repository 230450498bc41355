#pragma once

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace test_support {

/// Runs the same work in several threads, which begin together.
/// @param work is given the thread's number, from 0
inline void InThreads(int count, const std::function<void(int thread)>& work) {
  std::atomic<int> waiting{count};
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int thread = 0; thread < count; ++thread) {
    threads.emplace_back([&, thread] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      work(thread);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace test_support
