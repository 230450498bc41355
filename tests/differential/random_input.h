#pragma once

#include <cstddef>
#include <initializer_list>
#include <random>
#include <string>
#include <vector>

namespace differential {

/// What chance gives, the same for the same seed with every standard library.
class RandomInput {
 public:
  explicit RandomInput(unsigned seed) : engine_(seed) {}

  /// Less than the limit.
  std::size_t Number(std::size_t limit) { return engine_() % limit; }
  bool OneIn(std::size_t chances) { return Number(chances) == 0; }

  template <typename Value>
  Value OneOf(std::initializer_list<Value> values) {
    return *(values.begin() + Number(values.size()));
  }

  std::string Text() {
    return OneOf<std::string>({"",
                               "a",
                               "rtl/top.v",
                               "größe",
                               "日本",
                               "𝒳",
                               "𝒳𝒴𝒵 😀😁😂 𝒳𝒴𝒵",
                               "a b",
                               "a\"b",
                               "x<y",
                               "a&b",
                               "it's",
                               "1>0",
                               "tab\there",
                               "line\nend",
                               "line\r\nend\r",
                               "\x7F",
                               "\u0085",
                               "\uD7FF",
                               "\uE000",
                               "\uFFFD",
                               std::string(300, 'n')});
  }

 private:
  std::mt19937 engine_;
};

}  // namespace differential
