#include "platform/random_numbers.h"

#include <unistd.h>

#include <sys/random.h>

#include "platform/posix/posix_system.h"

namespace projectdb::files {

std::array<std::uint64_t, 2> RandomNumbers() {
  std::array<std::uint64_t, 2> numbers{};
  RequireSuccess(CallSystem("getentropy", ::getentropy, numbers.data(), sizeof(numbers)));
  return numbers;
}

}  // namespace projectdb::files
