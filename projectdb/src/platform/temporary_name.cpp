#include "platform/temporary_name.h"

#include <cstdint>

#include <fmt/format.h>

#include "platform/random_numbers.h"

namespace projectdb::files {
namespace {

constexpr std::size_t kNameSize = kTemporaryPrefix.size() + 32;

}  // namespace

std::string UnforeseeableName() {
  const std::array<std::uint64_t, 2> numbers = RandomNumbers();
  return fmt::format("{}{:016x}{:016x}", kTemporaryPrefix, numbers[0], numbers[1]);
}

bool IsTemporaryName(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  return name.size() == kNameSize && name.substr(0, kTemporaryPrefix.size()) == kTemporaryPrefix &&
         name.find_first_not_of(kDigits, kTemporaryPrefix.size()) == std::string_view::npos;
}

}  // namespace projectdb::files
