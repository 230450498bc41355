#pragma once

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

/// What the fuzz targets check with. A target that finds something ends the process.
namespace fuzz {

[[noreturn]] inline void Report(const std::string& what) {
  std::cerr << "FOUND: " << what << std::endl;
  std::abort();
}

inline void Require(bool condition, const std::string& what) {
  if (!condition) Report(what);
}

/// Requires two texts to be the same; shows the lines in which they differ.
inline void RequireSame(const std::string& expected, const std::string& actual,
                        const std::string& what) {
  if (expected == actual) return;
  std::size_t start = 0;
  while (start < expected.size() && start < actual.size() && expected[start] == actual[start]) {
    ++start;
  }
  const std::size_t line = start == 0 ? std::string::npos : expected.rfind('\n', start - 1);
  const std::size_t begin = line == std::string::npos ? 0 : line + 1;
  Report(what + "\nexpected, from the first line that differs:\n" + expected.substr(begin, 2000) +
         "\nactual:\n" + actual.substr(begin, 2000));
}

inline bool StartsWith(std::string_view text, std::string_view start) {
  return text.substr(0, start.size()) == start;
}

}  // namespace fuzz
