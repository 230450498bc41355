#include "written_project.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include <projectdb/vocabulary.h>

#include "checks.h"
#include "project_db/format.h"
#include "testing/project_differences.h"

namespace fuzz {
namespace {

using projectdb::DesignFile;
using projectdb::FlowProcess;
using projectdb::FlowProcessContents;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ProcType;
using projectdb::ProjectContents;

using projectdb::kFlowProcesses;
using projectdb::format::kSections;

bool IsMapOfTheFormat(std::size_t process, std::string_view name) {
  const auto maps = projectdb::MapsOf(static_cast<ProcType>(process));
  return std::any_of(maps.begin(), maps.end(), [=](const auto& map) { return map.name == name; });
}

bool IsProcessOfTheFormat(std::size_t process, std::string_view name) {
  return name.empty() || name == kFlowProcesses.at(process).name;
}

template <typename Visit>
void ForEachProcess(const KelProjectDatabase& database, Visit visit) {
  for (std::size_t type = 0; type < kFlowProcesses.size(); ++type) {
    if (const FlowProcess* process = database.GetFlowProcess(static_cast<ProcType>(type))) {
      visit(type, *process);
    }
  }
}

// A load passes over names that are empty in these lists.
void RemoveEmptyNames(std::vector<std::string>& names) {
  names.erase(std::remove(names.begin(), names.end(), ""), names.end());
}

// Plain parameters are not written, and a type outside the four is written as none.
FlowProcessContents ProcessForFile(FlowProcessContents process, std::size_t type) {
  process.name = kFlowProcesses.at(type).name;
  process.parameters.clear();
  for (auto& [name, parameters] : process.parameter_maps) {
    if (!IsMapOfTheFormat(type, name)) parameters.clear();
    for (auto& [key, parameter] : parameters) {
      const bool has_text = parameter.type >= 0 && parameter.type <= 3;
      if (!has_text) parameter.type = projectdb::kNoParameterType;
    }
  }
  return process;
}

bool IsPlainText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

bool IsPlainName(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(),
                                      [](char c) { return (c >= 'a' && c <= 'z') || c == '_'; });
}

template <typename... Texts>
bool ArePlainTexts(const Texts&... texts) {
  return (IsPlainText(texts) && ...);
}

template <typename Terms, typename Record>
bool HasPlainFields(const Terms& terms, const Record& record);

bool IsPlainField(const std::string& text) { return IsPlainText(text); }
bool IsPlainField(const IPSrcFile& file) { return IsPlainText(file.name); }
bool IsPlainField(const DesignFile& file) {
  return HasPlainFields(projectdb::DesignFileTerms(), file);
}
bool IsPlainField(const IP& ip) { return HasPlainFields(projectdb::IPTerms(), ip); }

bool IsPlainField(const projectdb::InfoAttributes& attributes) {
  return std::all_of(attributes.begin(), attributes.end(), [](const auto& attribute) {
    return IsPlainName(attribute.first) && IsPlainText(attribute.second);
  });
}

template <typename Entry>
bool IsPlainField(const std::vector<Entry>& entries) {
  return std::all_of(entries.begin(), entries.end(),
                     [](const Entry& entry) { return IsPlainField(entry); });
}

// The stamps and the directory are not written as they are.
template <typename Terms, typename Record>
bool HasPlainFields(const Terms& terms, const Record& record) {
  return std::all_of(terms.begin(), terms.end(), [&](const auto& term) {
    const auto is_plain = [&](const auto& access) { return IsPlainField(access(record)); };
    return term.kind != projectdb::TermKind::kValue || std::visit(is_plain, term.access);
  });
}

bool HasPlainTexts(const FlowProcessContents& process) {
  const auto is_plain = [](const auto& entry) {
    return ArePlainTexts(entry.second.name, entry.second.value);
  };
  const auto& maps = process.parameter_maps;
  return (process.name.empty() || IsPlainName(process.name)) && IsPlainText(process.tool_name) &&
         std::all_of(maps.begin(), maps.end(), [&](const auto& map) {
           const auto& [name, parameters] = map;
           return parameters.empty() ||
                  (IsPlainName(name) &&
                   std::all_of(parameters.begin(), parameters.end(), is_plain));
         });
}

bool IsReadAsItIs(const std::pair<const std::string, Parameter>& entry) {
  const auto& [key, parameter] = entry;
  return key == parameter.name && parameter.value.empty() == (parameter.type == projectdb::e_noarg);
}

bool IsReadAsItIs(std::size_t type, const FlowProcessContents& process) {
  const bool is_taken_for_another =
      !IsProcessOfTheFormat(type, process.name) &&
      (std::any_of(kFlowProcesses.begin(), kFlowProcesses.end(),
                   [&](const auto& other) { return process.name == other.name; }) ||
       std::any_of(kSections.begin(), kSections.end(),
                   [&](const auto& section) { return process.name == section.narrow; }));
  const auto& maps = process.parameter_maps;
  return !is_taken_for_another && std::all_of(maps.begin(), maps.end(), [](const auto& map) {
    return std::all_of(map.second.begin(), map.second.end(),
                       [](const auto& entry) { return IsReadAsItIs(entry); });
  });
}

}  // namespace

ProjectContents ContentsForFile(const KelProjectDatabase& database,
                                const KelProjectDatabase& written) {
  ProjectContents project = projectdb::GetProjectContents(database);
  project.current_path.clear();
  project.software_version.clear();
  project.last_modify_time.clear();
  RemoveEmptyNames(project.design_constraint.sdc_files);
  RemoveEmptyNames(project.design_isf.isf_files);
  ForEachProcess(written, [&](std::size_t type, const FlowProcess& process) {
    FlowProcessContents& contents = project.flow_processes.at(type);
    const bool comes_back = IsProcessOfTheFormat(type, process.name);
    contents = comes_back ? ProcessForFile(std::move(contents), type) : FlowProcessContents();
  });
  return project;
}

void RequireSame(const ProjectContents& expected, const ProjectContents& actual,
                 const std::string& what) {
  std::string differences;
  for (const std::string& difference : test_support::AllDifferences(expected, actual)) {
    differences += '\n' + difference;
  }
  Require(differences.empty(), what + differences);
}

bool HasOnlyNamesOfTheFormat(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  bool result = true;
  for (std::size_t type = 0; type < project.flow_processes.size(); ++type) {
    const FlowProcessContents& process = project.flow_processes[type];
    result = result && IsProcessOfTheFormat(type, process.name);
    for (const auto& [name, parameters] : process.parameter_maps) {
      result = result && (parameters.empty() || IsMapOfTheFormat(type, name));
    }
  }
  return result;
}

bool IsReadAsItIs(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  bool result = true;
  for (std::size_t type = 0; type < project.flow_processes.size(); ++type) {
    result = result && IsReadAsItIs(type, project.flow_processes[type]);
  }
  return result;
}

bool IsPlain(const KelProjectDatabase& database) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  const auto& processes = project.flow_processes;
  return database.IsProjectDatabaseExist() && HasPlainFields(projectdb::ProjectTerms(), project) &&
         std::all_of(processes.begin(), processes.end(), HasPlainTexts);
}

}  // namespace fuzz
