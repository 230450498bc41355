#pragma once

#include <chrono>
#include <ctime>

namespace test_support {

/// The second that the library would take. std::time may still be in the one before: it reads a
/// clock that advances in steps of milliseconds.
inline std::time_t Now() {
  return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
}

}  // namespace test_support
