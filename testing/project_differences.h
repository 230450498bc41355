#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include <projectdb/compare.h>
#include <projectdb/project_contents.h>

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

/// All differences but those of the stamps.
inline std::vector<std::string> DifferencesButStamps(const projectdb::ProjectContents& before,
                                                     const projectdb::ProjectContents& after) {
  auto differences = projectdb::CompareProjects(before, after);
  if (before.current_path != after.current_path) {
    differences.push_back({"directory", "", before.current_path, after.current_path});
  }
  return Show(differences);
}

/// All differences, the stamps and the directory included.
inline std::vector<std::string> AllDifferences(const projectdb::ProjectContents& before,
                                               const projectdb::ProjectContents& after) {
  // Seen as attributes, they count.
  const auto with_stamps = [](projectdb::ProjectContents project) {
    project.info_attributes["sw_version"] = project.software_version;
    project.info_attributes["last_change_date"] = project.last_modify_time;
    return project;
  };
  return DifferencesButStamps(with_stamps(before), with_stamps(after));
}

}  // namespace test_support
