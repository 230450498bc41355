#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <projectdb/compare.h>

namespace test_support {

inline std::string Show(const std::optional<std::string>& text) {
  return text ? '"' + *text + '"' : "nothing";
}

/// 'design.files[0]: "a.v" -> nothing'
inline std::string Show(const projectdb::ProjectDifference& difference) {
  const std::string place = difference.where.empty() ? "" : '[' + difference.where + ']';
  return difference.what + place + ": " + Show(difference.before) + " -> " + Show(difference.after);
}

inline std::vector<std::string> Show(const std::vector<projectdb::ProjectDifference>& differences) {
  std::vector<std::string> lines;
  std::transform(differences.begin(), differences.end(), std::back_inserter(lines),
                 [](const projectdb::ProjectDifference& difference) { return Show(difference); });
  return lines;
}

}  // namespace test_support
