#include <ostream>
#include <string_view>
#include <variant>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

#include "commands/asking.h"
#include "json.h"
#include "shown_terms.h"
#include "stored_project.h"
#include "table.h"

namespace kelproj {
namespace {

using projectdb::Access;
using projectdb::DesignFile;
using projectdb::FlowProcessContents;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;

std::string OrNone(const std::string& text) { return text.empty() ? "(none)" : text; }

class Report {
 public:
  explicit Report(const Console& console) : console_(console) {}

  void Values(std::string_view title, TextTable table) {
    for (auto& row : table) row.back() = OrNone(row.back());
    Section(std::string(title), table);
  }

  void List(std::string_view title, std::size_t count, const TextTable& table) {
    Section(std::string(title) + " (" + std::to_string(count) + ")", table);
  }

 private:
  void Section(const std::string& title, const TextTable& table) {
    if (!is_first_) console_.out << '\n';
    is_first_ = false;
    console_.out << Styled(console_, Style::kHeading, title) << '\n';
    WriteTable(console_, table);
  }

  const Console& console_;
  bool is_first_ = true;
};

TextTable Rows(const projectdb::InfoAttributes& attributes) {
  TextTable table;
  for (const auto& [name, value] : attributes) table.push_back({name, value});
  return table;
}

TextTable Rows(const std::vector<std::string>& names) {
  TextTable table;
  for (const std::string& name : names) table.push_back({name});
  return table;
}

// The texts of an entry, side by side.
template <typename Terms, typename Record>
std::vector<std::string> Row(const Terms& terms, const Record& record) {
  std::vector<std::string> row;
  for (const auto& term : terms) {
    const auto* access = std::get_if<Access<Record, std::string>>(&term.access);
    if (access) row.push_back((*access)(record));
  }
  return row;
}

TextTable Rows(const std::vector<DesignFile>& files) {
  TextTable table;
  for (const DesignFile& file : files) {
    table.push_back(Row(projectdb::DesignFileTerms(), file));
    table.back().front() = OrNone(file.name);
  }
  return table;
}

TextTable Rows(const std::vector<projectdb::IP>& ips) {
  TextTable table;
  for (const projectdb::IP& ip : ips) {
    table.push_back(Row(projectdb::IPTerms(), ip));
    for (const projectdb::IPSrcFile& file : ip.src_files) table.push_back({"", file.name});
  }
  return table;
}

TextTable Rows(const projectdb::SortedParameters& parameters) {
  TextTable table;
  for (const auto& [name, parameter] : parameters) {
    table.push_back({name, parameter.value, projectdb::TextOf(parameter.type)});
  }
  return table;
}

// Each text of the terms that the condition takes, behind its title.
template <typename Terms, typename Record, typename Condition>
TextTable Texts(const Terms& terms, const Record& record, Condition condition) {
  TextTable table;
  for (const auto& term : terms) {
    const auto* access = std::get_if<Access<Record, std::string>>(&term.access);
    if (access && condition(term)) table.push_back({std::string(term.title), (*access)(record)});
  }
  return table;
}

/// Shows all of a project but its flow processes, term by term.
class ProjectReport {
 public:
  ProjectReport(Report& report, const ProjectContents& project)
      : report_(report), project_(project) {}

  void Show() {
    for (const ProjectTerm& term : terms_) {
      std::visit([&](const auto& access) { Show(term, access(project_)); }, term.access);
    }
  }

 private:
  // The texts of a group stand in one section.
  void Show(const ProjectTerm& term, const std::string& text) {
    if (term.group.empty()) return report_.Values(term.title, {{text}});
    if (term.group == shown_group_) return;
    shown_group_ = term.group;
    report_.Values(term.group, Texts(terms_, project_, [&](const ProjectTerm& other) {
                     return other.group == term.group;
                   }));
  }

  template <typename List>
  void Show(const ProjectTerm& term, const List& list) {
    report_.List(term.title, list.size(), Rows(list));
  }

  Report& report_;
  const ProjectContents& project_;
  const std::vector<ProjectTerm> terms_ = ShownTerms();
  std::string_view shown_group_;
};

void ShowProcess(Report& report, const std::string& title, const FlowProcessContents& process) {
  report.Values(title, Texts(projectdb::FlowProcessTerms(), process, [](const auto& term) {
                  return term.kind == projectdb::TermKind::kValue;
                }));
  const std::string prefix = title + ": ";
  for (const auto& [map, parameters] : process.parameter_maps) {
    report.List(prefix + map, parameters.size(), Rows(parameters));
  }
}

}  // namespace

ExitStatus Run(const ShowArguments& arguments, const Console& console) {
  const ProjectContents project = ReadProject(arguments.file, console);
  if (arguments.json) {
    WriteJson(console.out, ToJson(project));
    return ExitStatus::kYes;
  }
  Report report(console);
  ProjectReport(report, project).Show();
  for (const projectdb::FlowProcessName& process : projectdb::kFlowProcesses) {
    ShowProcess(report, process.title,
                project.flow_processes.at(static_cast<std::size_t>(process.type)));
  }
  return ExitStatus::kYes;
}

}  // namespace kelproj
