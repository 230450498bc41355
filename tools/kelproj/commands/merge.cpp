#include <filesystem>
#include <ostream>
#include <system_error>
#include <utility>

#include <projectdb/merge.h>
#include <projectdb/project_file.h>

#include "commands/git.h"
#include "installed_schema.h"
#include "json.h"
#include "named_files.h"
#include "places.h"
#include "platform/file_names.h"
#include "problems.h"
#include "standard_input.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::MergeConflict;
using projectdb::MergedProjects;
using projectdb::ProjectContents;
using projectdb::ProjectFile;

/// A file to read, of any name, and what people are told that it is.
struct Input {
  std::string file;
  std::string name;
};

struct Inputs {
  Input base;
  Input ours;
  Input theirs;
};

Inputs InputsOf(const MergeArguments& arguments) {
  const auto input = [&](const std::string& file, const char* side) {
    return Input{file, arguments.name ? *arguments.name + " (" + side + ")" : file};
  };
  return {input(arguments.base, "base"), input(arguments.ours, "ours"),
          input(arguments.theirs, "theirs")};
}

// Git leaves the user with the output, which is ours.
std::string NothingIsMerged(const MergeArguments& arguments) {
  if (arguments.output != arguments.ours) return "; nothing is merged";
  return "; nothing is merged, and " + arguments.name.value_or(arguments.ours) + " is ours";
}

[[noreturn]] void RefuseToLoad(const Input& input, const std::string& consequence) {
  throw Trouble(input.name + " does not load" + consequence);
}

// What loads of the base is enough. A part that does not load counts as one that the base lacks, so
// that no side has removed it.
ProjectContents BaseOf(const Input& input, const std::string& consequence, const Console& console) {
  if (IsNoFile(input.file)) return {};
  const std::string bytes = ReadFile(input.file, input.name);
  if (bytes.empty()) return {};
  ProjectFile read = projectdb::ParseProjectFile(bytes, "");
  if (read.contents) return *std::move(read.contents);
  WriteProblems(console.err, input.name, read.problems);
  RefuseToLoad(input, consequence);
}

// What of a side does not load, or is not written again, would be lost.
ProjectContents SideOf(const Input& input, const std::string& consequence, const Console& console) {
  ProjectFile read =
      projectdb::ParseProjectFile(ReadFile(input.file, input.name), InstalledSchema());
  WriteProblems(console.err, input.name, read.problems);
  if (read.contents && !HasError(read.problems)) return *std::move(read.contents);
  RefuseToLoad(input, consequence);
}

MergedProjects Merge(const MergeArguments& arguments, const Console& console) {
  const Inputs inputs = InputsOf(arguments);
  const std::string consequence = NothingIsMerged(arguments);
  const ProjectContents base = BaseOf(inputs.base, consequence, console);
  const ProjectContents ours = SideOf(inputs.ours, consequence, console);
  const ProjectContents theirs = SideOf(inputs.theirs, consequence, console);
  if (arguments.preferred != MergeSide::kTheirs) return MergeProjects(base, ours, theirs);
  // A merge keeps its first side where there is a conflict.
  MergedProjects merged = MergeProjects(base, theirs, ours);
  for (MergeConflict& conflict : merged.conflicts) std::swap(conflict.ours, conflict.theirs);
  return merged;
}

std::string TextOf(const std::optional<std::string>& value) {
  if (!value) return "(none)";
  return value->empty() ? "\"\"" : *value;
}

void WriteConflicts(const MergeArguments& arguments, const std::vector<MergeConflict>& conflicts,
                    const Console& console) {
  if (conflicts.empty()) return;
  const std::string name = arguments.name.value_or(arguments.output.value_or(arguments.ours));
  const std::string count =
      std::to_string(conflicts.size()) + (conflicts.size() == 1 ? " conflict" : " conflicts");
  const char* const kept = arguments.preferred == MergeSide::kTheirs ? "theirs" : "ours";
  WriteMessage(console.err,
               arguments.preferred ? Diag::MessageType::kWarning : Diag::MessageType::kError,
               name + ": " + count + " (base / ours / theirs); " + kept + " is kept");
  for (const MergeConflict& conflict : conflicts) {
    console.err << Printable(PlaceText(conflict.what, conflict.where) + ": " +
                             TextOf(conflict.base) + " / " + TextOf(conflict.ours) + " / " +
                             TextOf(conflict.theirs))
                << '\n';
  }
}

void WriteReport(const MergeArguments& arguments, const std::vector<MergeConflict>& conflicts,
                 const Console& console) {
  if (!arguments.json) return WriteConflicts(arguments, conflicts, console);
  WriteJson(console.out, {{"base", arguments.base},
                          {"ours", arguments.ours},
                          {"theirs", arguments.theirs},
                          {"conflicts", ToJson(conflicts)}});
}

// The same three projects give the same bytes, whoever merges them.
constexpr bool kKeepStamps = true;

MergedProjects MergeIntoFile(const MergeArguments& arguments, const std::string& output,
                             const Console& console) {
  RequireWritable(output);
  // The output may be an input: it stays as it is from before it is read until it is written.
  std::optional<projectdb::ProjectFileLock> lock;
  projectdb::WriteOptions options{kKeepStamps, projectdb::ProjectFileVersion(), true};
  std::error_code error;
  if (std::filesystem::is_regular_file(PathFrom(output), error)) {
    lock.emplace(output);
    options.expected = projectdb::ReadProjectFile(output, "").version;
  }
  MergedProjects merged = Merge(arguments, console);
  projectdb::WriteProjectFile(output, merged.contents, options);
  return merged;
}

MergedProjects MergeToStandardOutput(const MergeArguments& arguments, const Console& console) {
  MergedProjects merged = Merge(arguments, console);
  const std::string bytes = projectdb::FormatProjectFile(merged.contents, {kKeepStamps});
  if (!arguments.json) console.out << bytes;
  return merged;
}

}  // namespace

ExitStatus Run(const MergeArguments& arguments, const Console& console) {
  if (arguments.name) RequireName(*arguments.name);
  const MergedProjects merged = arguments.output
                                    ? MergeIntoFile(arguments, *arguments.output, console)
                                    : MergeToStandardOutput(arguments, console);
  WriteReport(arguments, merged.conflicts, console);
  return merged.conflicts.empty() || arguments.preferred ? ExitStatus::kYes : ExitStatus::kNo;
}

}  // namespace kelproj
