#include "testing/project_differences.h"

#include <optional>

namespace test_support {
namespace {

using namespace projectdb;

std::string Show(const std::optional<std::string>& text) {
  return text ? '"' + *text + '"' : "nothing";
}

std::string PlaceOf(const ProjectDifference& difference) {
  return difference.what + (difference.where.empty() ? "" : '[' + difference.where + ']') + ": ";
}

// Seen as attributes, the stamps count.
ProjectContents WithStamps(ProjectContents project) {
  project.info_attributes["sw_version"] = project.software_version;
  project.info_attributes["last_change_date"] = project.last_modify_time;
  return project;
}

}  // namespace

Lines Show(const std::vector<ProjectDifference>& differences) {
  Lines lines;
  for (const ProjectDifference& difference : differences) {
    lines.push_back(PlaceOf(difference) + Show(difference.before) + " -> " +
                    Show(difference.after));
  }
  return lines;
}

Lines DifferencesButStamps(const ProjectContents& before, const ProjectContents& after) {
  auto differences = CompareProjects(before, after);
  if (before.current_path != after.current_path) {
    differences.push_back({"directory", "", before.current_path, after.current_path});
  }
  return Show(differences);
}

Lines AllDifferences(const ProjectContents& before, const ProjectContents& after) {
  return DifferencesButStamps(WithStamps(before), WithStamps(after));
}

Lines AllDifferences(const ProjectContents& before, const KelProjectDatabase& after) {
  return AllDifferences(before, GetProjectContents(after));
}

Lines ProjectLines(const KelProjectDatabase& database) {
  if (!database.IsProjectDatabaseExist()) return {"no project"};
  ProjectContents empty;
  empty.flow_processes.assign(4, FlowProcessContents());
  Lines lines;
  for (const auto& difference :
       CompareProjects(WithStamps(empty), WithStamps(GetProjectContents(database)))) {
    lines.push_back(PlaceOf(difference) + difference.after.value_or("nothing"));
  }
  return lines;
}

}  // namespace test_support
