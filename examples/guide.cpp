// The pieces of code that docs/guide.md shows; each stands between two marks.
#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <kel/diag.h>
#include <projectdb/compare.h>
#include <projectdb/durable_export.h>
#include <projectdb/merge.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>
#include <projectdb/vocabulary.h>

namespace {

void CreateAndRead() {
  // [lifecycle]
  projectdb::KelProjectDatabase database;
  if (!database.CreateNewProjectDatabase("lantern")) {
    std::cerr << "the object holds another project\n";
  }
  database.SetDeviceFamily("Varel");
  database.AddDesignRTLFile("rtl/lantern_top.v", "verilog_2001", "work");

  std::vector<projectdb::DesignFile> files;
  database.GetDesignFileList(files);  // appends; the names are absolute paths now
  for (const projectdb::DesignFile& file : files) std::cout << file.name << "\n";
  // [lifecycle]
}

void UseThreads(projectdb::KelProjectDatabase& database) {
  // [threads]
  std::thread reader([&database] { std::cout << database.GetProjectName() << "\n"; });
  database.AddMiscellaneousFile("notes.txt");
  reader.join();
  // [threads]
}

void KeepMessages() {
  // [messages]
  std::vector<std::string> errors;
  Diag::DiagService::Handler former =
      Diag::GlobalInst().SetHandler([&errors](const Diag::DiagStorage& message) {
        if (message.type() == Diag::MessageType::kError) errors.push_back(message.text());
      });
  projectdb::KelProjectDatabase database;
  database.LoadProjectData("no_such_project.xml", "");  // false
  Diag::GlobalInst().SetHandler(std::move(former));
  for (const std::string& error : errors) std::cout << error << "\n";
  // [messages]
}

// [errors]
bool Open(projectdb::KelProjectDatabase& database, const std::string& path) {
  try {
    return database.LoadProjectData(path, "");
  } catch (const std::runtime_error& error) {
    std::cerr << error.what();  // ends in a line feed
    return false;
  }
}
// [errors]

void SetParameters(projectdb::KelProjectDatabase& database) {
  // [parameters]
  database.AddSynthesisParameter("effort", "high", projectdb::e_option);
  database.AddSynthesisParameter("keep_hierarchy", "", projectdb::e_noarg);
  database.AddSynthesisVerilogMacro("FAST_BOOT", "1");
  database.AddPlaceAndRouteParameter("max_threads", "8", projectdb::e_string);

  // Refused: a parameter keeps its type, and only e_noarg goes without a value.
  const bool changed = database.AddSynthesisParameter("effort", "1", projectdb::e_string);
  std::cout << changed << " " << database.GetSynthesisParameterValue("effort") << " "
            << database.GetPnRMaxThreads(1) << "\n";  // 0 high 8
  // [parameters]
}

void SaveSafely(const projectdb::KelProjectDatabase& database, const std::string& path) {
  // [saving]
  try {
    projectdb::ExportProjectDataDurably(database, path);
  } catch (const std::runtime_error& error) {
    std::cerr << error.what();  // the file is whole
  }
  // [saving]
}

void ChangeFile(const std::string& path) {
  // [changing]
  const auto change = [](projectdb::ProjectContents& project) {
    project.device_info.device = "Q8R60";
    project.misc_files.emplace_back("todo.txt", "", "default");
    project.flow_processes.at(projectdb::e_synthesis)
        .parameter_maps[projectdb::kParameterMap]
        .insert_or_assign("effort", projectdb::Parameter("effort", "low", projectdb::e_option));
  };
  try {
    const bool written = projectdb::UpdateProjectFile(path, change);
    std::cout << (written ? "changed" : "nothing to change") << "\n";
  } catch (const std::runtime_error& error) {
    std::cerr << error.what();  // the file is whole
  }
  // [changing]
}

void EditAsValue(const std::string& path) {
  // [editing]
  projectdb::ProjectFile file = projectdb::ReadProjectFile(path, "");
  bool is_read_whole = file.contents.has_value();
  for (const projectdb::FileProblem& problem : file.problems) {
    std::cerr << path << ":" << problem.line << ": " << problem.message << "\n";
    if (problem.severity == projectdb::ProblemSeverity::kError) is_read_whole = false;
  }
  if (!is_read_whole) return;  // writing would lose what was not read
  std::vector<projectdb::DesignFile>& files = file.contents->misc_files;
  std::reverse(files.begin(), files.end());
  file.contents->design_isf.isf_files.push_back("isf/lantern.isf");

  projectdb::WriteOptions options;
  options.expected = file.version;  // a change by anybody else is ProjectFileChanged
  projectdb::WriteProjectFile(path, *file.contents, options);
  std::cout << projectdb::FormatProjectFile(*file.contents).size() << " bytes\n";
  // [editing]
}

void ShowChanges(const projectdb::KelProjectDatabase& before,
                 const projectdb::KelProjectDatabase& after) {
  // [comparing]
  for (const projectdb::ProjectDifference& difference : projectdb::CompareProjects(before, after)) {
    std::cout << difference.what << " " << difference.where << ": "
              << difference.before.value_or("(none)") << " -> "
              << difference.after.value_or("(none)") << "\n";
  }
  // [comparing]
}

projectdb::ProjectContents BringTogether(const projectdb::ProjectContents& base,
                                         const projectdb::ProjectContents& ours,
                                         const projectdb::ProjectContents& theirs) {
  // [merging]
  const projectdb::MergedProjects merged = projectdb::MergeProjects(base, ours, theirs);
  for (const projectdb::MergeConflict& conflict : merged.conflicts) {
    std::cout << conflict.what << " " << conflict.where << ": " << conflict.base.value_or("(none)")
              << " became " << conflict.ours.value_or("(none)") << ", not "
              << conflict.theirs.value_or("(none)") << "\n";
  }
  // [merging]
  return merged.contents;
}

}  // namespace

int main() {
  CreateAndRead();
  KeepMessages();

  projectdb::KelProjectDatabase database;
  database.CreateNewProjectDatabase("lantern");
  UseThreads(database);
  SetParameters(database);
  SaveSafely(database, "lantern.xml");

  projectdb::KelProjectDatabase loaded;
  if (!Open(loaded, "lantern.xml")) return 1;
  loaded.SetDeviceModel("Q8R60");
  ShowChanges(database, loaded);

  ChangeFile("lantern.xml");
  EditAsValue("lantern.xml");

  const projectdb::ProjectContents base = projectdb::GetProjectContents(database);
  projectdb::ProjectContents theirs = base;
  theirs.device_info.device = "Q8R40";
  theirs.misc_files.emplace_back("todo.txt", "", "");
  const auto merged = BringTogether(base, projectdb::GetProjectContents(loaded), theirs);
  std::cout << merged.misc_files.size() << " files\n";
  return 0;
}
