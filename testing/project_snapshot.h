#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <projectdb/project_db.h>

namespace test_support {

/// Everything that a project holds and that a project file keeps, in a form that compares and
/// prints. Hash order does not show; empty parameter maps do not count.
struct ProjectSnapshot {
  struct Process {
    std::string name;
    std::string tool_name;
    std::map<std::string, std::map<std::string, std::tuple<std::string, int>>> maps;
    bool operator==(const Process& other) const;
  };

  std::string name;
  std::string current_path;
  std::string software_version;
  std::string last_modify_time;
  std::map<std::string, std::string> properties;
  /// Attributes cannot be listed; those asked for are looked up.
  std::map<std::string, std::string> attributes;
  std::vector<std::vector<std::string>> design_files;
  std::map<std::string, std::vector<std::string>> file_lists;
  std::vector<std::vector<std::string>> ip_instances;
  std::vector<Process> processes;

  bool operator==(const ProjectSnapshot& other) const;

  /// Blanks what differs between a project and its exported and loaded form.
  ProjectSnapshot WithoutStamps() const;
};

/// @param attribute_names the info attributes to look up
ProjectSnapshot TakeSnapshot(const projectdb::KelProjectDatabase& database,
                             const std::vector<std::string>& attribute_names = {});

std::ostream& operator<<(std::ostream& out, const ProjectSnapshot& snapshot);

}  // namespace test_support
