#pragma once

#include <cstddef>

namespace projectdb {

/// An ASCII name, spelled once, in the narrow form of the model and the 16-bit form of XML text.
struct Name {
  static constexpr std::size_t kCapacity = 48;

  char narrow[kCapacity] = {};
  char16_t wide[kCapacity] = {};

  constexpr Name(const char* text) {  // NOLINT(google-explicit-constructor): tables read better
    for (std::size_t i = 0; text[i] != '\0'; ++i) {
      narrow[i] = text[i];
      wide[i] = static_cast<char16_t>(text[i]);
    }
  }
};

}  // namespace projectdb
