#include <cstdlib>
#include <exception>
#include <ostream>

#include <projectdb/compare.h>
#include <projectdb/project_contents.h>

#include "commands/asking.h"
#include "json.h"
#include "places.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::ProjectContents;
using projectdb::ProjectDifference;

/// One of the two projects.
struct Side {
  std::string name;  ///< For people.
  std::string file;
};

struct Comparison {
  Side before;
  Side after;
  std::vector<ProjectDifference> differences;
};

ProjectContents Contents(const std::string& file, const Console& console) {
  if (IsNoFile(file)) return {};
  return ReadProject(file, console);
}

Comparison Compare(const Side& before, const Side& after, const Console& console) {
  Comparison comparison{
      before, after,
      projectdb::CompareProjects(Contents(before.file, console), Contents(after.file, console))};
  // Without a file there are no empty values either.
  for (ProjectDifference& difference : comparison.differences) {
    if (IsNoFile(before.file)) difference.before.reset();
    if (IsNoFile(after.file)) difference.after.reset();
  }
  return comparison;
}

void WriteLine(const Console& console, Style style, const std::string& text) {
  console.out << Styled(console, style, Printable(text)) << '\n';
}

void WriteDifference(const Console& console, const ProjectDifference& difference) {
  const std::string place = PlaceText(difference.what, difference.where);
  const auto write = [&](Style style, const char* sign, const std::string& text) {
    WriteLine(console, style, sign + place + (text.empty() ? ":" : ": " + text));
  };
  if (difference.before) write(Style::kRemoved, "- ", *difference.before);
  if (difference.after) write(Style::kAdded, "+ ", *difference.after);
}

void Write(const Console& console, const Comparison& comparison, bool json) {
  if (json) {
    return WriteJson(console.out, {{"before", comparison.before.name},
                                   {"after", comparison.after.name},
                                   {"differences", ToJson(comparison.differences)}});
  }
  if (comparison.differences.empty()) return;
  WriteLine(console, Style::kHeading, "--- " + comparison.before.name);
  WriteLine(console, Style::kHeading, "+++ " + comparison.after.name);
  for (const ProjectDifference& difference : comparison.differences) {
    WriteDifference(console, difference);
  }
}

ExitStatus CompareFiles(const DiffArguments& arguments, const Console& console) {
  const std::string& before = arguments.operands[0];
  const std::string& after = arguments.operands[1];
  const Comparison comparison = Compare({before, before}, {after, after}, console);
  Write(console, comparison, arguments.json);
  return comparison.differences.empty() ? ExitStatus::kYes : ExitStatus::kNo;
}

/// What git gives an external diff: PATH OLD-FILE OLD-HEX OLD-MODE NEW-FILE NEW-HEX NEW-MODE, of a
/// renamed file also its new path and a text; of an unmerged one the path alone.
struct GitCall {
  std::string path;
  std::string old_file;
  std::string new_file;
  std::string new_path;

  bool is_unmerged() const { return old_file.empty(); }
  std::string PathForPeople() const { return path == new_path ? path : path + " => " + new_path; }
};

std::optional<GitCall> CallOfGit(const std::vector<std::string>& operands) {
  const bool is_started_by_git = std::getenv("GIT_DIFF_PATH_COUNTER") != nullptr;
  if (operands.size() == 1 && is_started_by_git) return GitCall{operands[0], "", "", operands[0]};
  if (operands.size() != 7 && operands.size() != 9) return std::nullopt;
  const std::string& new_path = operands.size() == 9 ? operands[7] : operands[0];
  return GitCall{operands[0], operands[1], operands[4], new_path};
}

Side SideOf(const std::string& path, const std::string& file) {
  return {IsNoFile(file) ? kNoFile : path, file};
}

void CompareForGit(const GitCall& call, const Console& console, bool json) {
  const auto note = [&](const char* text) {
    if (!json) WriteLine(console, Style::kHeading, call.PathForPeople() + ": " + text);
  };
  if (call.is_unmerged()) return note("unmerged");
  try {
    const Comparison comparison =
        Compare(SideOf(call.path, call.old_file), SideOf(call.new_path, call.new_file), console);
    if (comparison.differences.empty()) note("the projects are equal");
    Write(console, comparison, json);
  } catch (const std::exception& exception) {
    // With another status git would end without the files that follow.
    WriteMessage(console.err, Diag::MessageType::kError, exception.what());
    note("not compared; git diff --no-ext-diff shows the text");
  }
}

}  // namespace

ExitStatus Run(const DiffArguments& arguments, const Console& console) {
  if (const auto call = CallOfGit(arguments.operands)) {
    CompareForGit(*call, console, arguments.json);
    return ExitStatus::kYes;
  }
  if (arguments.operands.size() != 2) throw Trouble("a comparison takes two project files");
  return CompareFiles(arguments, console);
}

}  // namespace kelproj
