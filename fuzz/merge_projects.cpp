// Takes the bytes as edits of a project, of ours and of theirs, each up to a line feed; merges the
// three, and writes and reads the result.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <kel/diag.h>
#include <projectdb/merge.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>
#include <projectdb/vocabulary.h>

#include "checks.h"
#include "contents/record_text.h"
#include "record_input.h"
#include "round_trip.h"
#include "testing/complete_project.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"
#include "written_project.h"

namespace {

using fuzz::Require;
using fuzz::RequireSame;
using projectdb::DesignFile;
using projectdb::InfoAttributes;
using projectdb::IP;
using projectdb::IPSrcFile;
using projectdb::KelProjectDatabase;
using projectdb::MergeConflict;
using projectdb::MergedProjects;
using projectdb::MergeProjects;
using projectdb::Parameter;
using projectdb::ParameterMaps;
using projectdb::ProjectContents;
using projectdb::ProjectFile;

// Where no save waits for a disk, if there is such a place.
std::filesystem::path PlaceOfFiles() {
  const std::filesystem::path memory = "/dev/shm";
  return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
}

// The files of this process. The XML library stays in use: starting it takes longer than the rest.
struct Files {
  Files() { test_support::WriteFile(written, "what was there before"); }

  test_support::XmlPlatform platform;
  test_support::TemporaryDirectory directory{PlaceOfFiles()};
  std::string written = directory / "written.xml";
};

/// Reads edits, and makes them.
class Editing : public fuzz::RecordInput {
 public:
  using fuzz::RecordInput::RecordInput;

  /// Makes edits up to a line feed or the end.
  void EditProject(ProjectContents& project) {
    for (int count = 0; count < kMostEdits && !empty(); ++count) {
      const unsigned char byte = Byte();
      if (byte == '\n') return;
      EditPart(project, byte % 32U);
    }
  }

 private:
  static constexpr int kMostEdits = 50;

  // '@' is the first term of a project, 'A' the second and so on; the processes come behind them.
  void EditPart(ProjectContents& project, std::size_t part) {
    const auto terms = projectdb::ProjectTerms();
    if (part < terms.size()) return EditField(terms.begin()[part], project);
    auto& processes = project.flow_processes;
    EditOneField(projectdb::FlowProcessTerms(), processes.at((part - terms.size()) % 4));
  }

  template <typename Terms, typename Record>
  void EditOneField(const Terms& terms, Record& record) {
    EditField(terms.begin()[Byte() % terms.size()], record);
  }

  template <typename Term, typename Record>
  void EditField(const Term& term, Record& record) {
    std::visit([&](const auto& access) { Edit(access(record)); }, term.access);
  }

  void Edit(std::string& text) { text = Text(); }
  void Edit(IPSrcFile& file) { file.name = Text(); }
  void Edit(DesignFile& file) { EditOneField(projectdb::DesignFileTerms(), file); }
  void Edit(IP& ip) { EditOneField(projectdb::IPTerms(), ip); }
  void Edit(Parameter& parameter) { parameter.value = Text(); }

  void Edit(InfoAttributes& attributes) {
    const std::string name = Text();
    if (IsRemoval()) {
      attributes.erase(name);
    } else {
      attributes[name] = Text();
    }
  }

  void Edit(ParameterMaps& maps) {
    auto& map = maps[Text()];
    if (IsRemoval()) {
      map.erase(Text());
    } else {
      const Parameter parameter = OneParameter();
      map.insert_or_assign(parameter.name, parameter);
    }
  }

  bool IsRemoval() { return Byte() == '-'; }

  /// "+" and a place add an entry there, "-" removes one, ">" moves it to a place, others edit it.
  template <typename Entry>
  void Edit(std::vector<Entry>& entries) {
    const unsigned char what = Byte();
    const auto entry = PlaceIn(entries);
    if (what == '+' || entry == entries.end()) {
      entries.insert(entry, EntryFor(entries));
    } else if (what == '-') {
      entries.erase(entry);
    } else if (what == '>') {
      const Entry moved = *entry;
      entries.erase(entry);
      entries.insert(PlaceIn(entries), moved);
    } else {
      Edit(*entry);
    }
  }

  /// A digit stands for the position.
  template <typename Entry>
  typename std::vector<Entry>::iterator PlaceIn(std::vector<Entry>& entries) {
    const auto place = static_cast<unsigned>(Byte() - '0') % (entries.size() + 1);
    return entries.begin() + static_cast<std::ptrdiff_t>(place);
  }

  std::string EntryFor(const std::vector<std::string>&) { return Text(); }
  IPSrcFile EntryFor(const std::vector<IPSrcFile>&) { return {Text()}; }
  DesignFile EntryFor(const std::vector<DesignFile>&) { return OneFile(); }
  IP EntryFor(const std::vector<IP>&) { return OneIp(); }
  Parameter EntryFor(const std::vector<Parameter>&) { return OneParameter(); }
};

struct ThreeProjects {
  ProjectContents base;
  ProjectContents ours;
  ProjectContents theirs;
};

ThreeProjects ReadProjects(std::string_view bytes) {
  Editing editing(bytes);
  ThreeProjects projects{test_support::CompleteProject(), {}, {}};
  editing.EditProject(projects.base);
  projects.ours = projects.theirs = projects.base;
  editing.EditProject(projects.ours);
  editing.EditProject(projects.theirs);
  return projects;
}

void RequireMerged(const ProjectContents& expected, const MergedProjects& merged,
                   const std::string& what) {
  RequireSame(expected, merged.contents, what);
  Require(merged.conflicts.empty(), what + ": there are conflicts");
}

// A list that merges have brought into an order of their own is compared as a set.

template <typename Entry>
void SortEntries(std::vector<Entry>& entries) {
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return projectdb::TextOf(a) < projectdb::TextOf(b);
  });
}

template <typename Terms, typename Record>
void SortLists(const Terms& terms, Record& record);

template <typename Field>
void SortField(Field&) {}

template <typename Entry>
void SortField(std::vector<Entry>& entries) {
  SortEntries(entries);
}

void SortField(std::vector<IP>& ips) {
  for (IP& ip : ips) SortLists(projectdb::IPTerms(), ip);
  SortEntries(ips);
}

template <typename Terms, typename Record>
void SortLists(const Terms& terms, Record& record) {
  for (const auto& term : terms) {
    std::visit([&](const auto& access) { SortField(access(record)); }, term.access);
  }
}

/// Without order, stamps and directory.
ProjectContents Unordered(ProjectContents project) {
  SortLists(projectdb::ProjectTerms(), project);
  for (auto& process : project.flow_processes) SortLists(projectdb::FlowProcessTerms(), process);
  project.current_path.clear();
  project.software_version.clear();
  project.last_modify_time.clear();
  return project;
}

void CheckConflicts(const std::vector<MergeConflict>& conflicts) {
  for (const MergeConflict& conflict : conflicts) {
    Require(conflict.ours != conflict.base && conflict.theirs != conflict.base &&
                conflict.ours != conflict.theirs,
            "a conflict where one side alone has changed something: " + conflict.what);
  }
}

void CheckLaws(const ThreeProjects& projects, const MergedProjects& merged) {
  const auto& [base, ours, theirs] = projects;
  RequireMerged(ours, MergeProjects(base, ours, base), "a merge with the base changes ours");
  RequireMerged(theirs, MergeProjects(base, base, theirs), "a merge with the base changes theirs");
  RequireMerged(ours, MergeProjects(base, ours, ours), "a merge of equal sides changes them");
  CheckConflicts(merged.conflicts);
  const MergedProjects exchanged = MergeProjects(base, theirs, ours);
  Require(exchanged.conflicts.size() == merged.conflicts.size(),
          "there are other conflicts if the sides are exchanged");
  if (merged.conflicts.empty()) {
    RequireSame(Unordered(merged.contents), Unordered(exchanged.contents),
                "a merge is another if the sides are exchanged");
  }
}

bool Accepts(KelProjectDatabase& database, const ProjectContents& contents) {
  try {
    projectdb::SetProjectContents(database, contents);
    return true;
  } catch (const std::invalid_argument&) {
    return false;
  }
}

bool HasNamelessFiles(const ProjectContents& project) {
  const auto has_empty_name = [](const std::vector<std::string>& names) {
    return std::find(names.begin(), names.end(), "") != names.end();
  };
  return has_empty_name(project.design_constraint.sdc_files) ||
         has_empty_name(project.design_isf.isf_files);
}

/// Whether nothing in the project can be a reason not to write it.
bool IsWritable(const KelProjectDatabase& database) {
  return fuzz::IsPlain(database) && fuzz::HasOnlyNamesOfTheFormat(database) &&
         fuzz::IsReadAsItIs(database) && !HasNamelessFiles(projectdb::GetProjectContents(database));
}

/// The bytes of a project's file; nothing for a project that no file can hold.
std::optional<std::string> Format(const ProjectContents& project) {
  try {
    return projectdb::FormatProjectFile(project);
  } catch (const std::runtime_error& error) {
    Require(fuzz::StartsWith(error.what(), "Failed writing XML file: "),
            std::string("formatting fails with ") + error.what());
    return std::nullopt;
  }
}

/// The text of the error that writing ends in; "" if it ends well.
std::string ErrorOfWriting(const ProjectContents& project, const std::string& path) {
  try {
    projectdb::WriteProjectFile(path, project);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

void RequireRefused(const ProjectContents& project, const std::string& path) {
  const std::string former = test_support::ReadFile(path);
  const std::string error = ErrorOfWriting(project, path);
  Require(fuzz::StartsWith(error, "Failed writing XML file " + path + ": "),
          "writing what cannot be formatted ends in \"" + error + "\"");
  RequireSame(former, test_support::ReadFile(path), "a write that fails changes the file");
}

void RequireRead(const KelProjectDatabase& written, const ProjectFile& file,
                 const std::string& what) {
  for (const projectdb::FileProblem& problem : file.problems) {
    fuzz::Report(what + " has a problem: " + problem.message);
  }
  Require(file.contents.has_value(), what + " has no contents");
  KelProjectDatabase read;
  projectdb::SetProjectContents(read, *file.contents);
  RequireSame(fuzz::ContentsForFile(written, written), fuzz::ContentsForFile(read, written),
              what + " holds another project");
}

/// @param path of a file, which becomes that of the project if there can be one
void WriteAndRead(const KelProjectDatabase& database, const std::string& path) {
  const ProjectContents project = projectdb::GetProjectContents(database);
  const std::optional<std::string> bytes = Format(project);
  Require(bytes.has_value() || !IsWritable(database), "a plain project is not formatted");
  if (!bytes) return RequireRefused(project, path);
  RequireRead(database, projectdb::ParseProjectFile(*bytes, fuzz::SchemaPath()), "its bytes");
  projectdb::WriteProjectFile(path, project);
  const ProjectFile file = projectdb::ReadProjectFile(path, "");
  RequireRead(database, file, "its file");
  Require(!projectdb::WriteProjectFile(path, *file.contents), "writing what was read changes it");
}

void WriteAndRead(const ThreeProjects& projects, const ProjectContents& merged,
                  const std::string& path) {
  KelProjectDatabase database;
  const bool are_accepted = Accepts(database, projects.base) && Accepts(database, projects.ours) &&
                            Accepts(database, projects.theirs);
  const bool is_accepted = Accepts(database, merged);
  Require(is_accepted || !are_accepted, "a merge of projects is none");
  if (!is_accepted) return;
  RequireSame(merged, projectdb::GetProjectContents(database), "another project is set");
  WriteAndRead(database, path);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Files files;
  static const auto former_handler = Diag::GlobalInst().SetHandler([](const Diag::DiagStorage&) {});
  const ThreeProjects projects = ReadProjects({reinterpret_cast<const char*>(data), size});
  const MergedProjects merged = MergeProjects(projects.base, projects.ours, projects.theirs);
  CheckLaws(projects, merged);
  WriteAndRead(projects, merged.contents, files.written);
  return 0;
}
