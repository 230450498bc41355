#include <filesystem>
#include <stdexcept>
#include <string>

#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>
#include <projectdb/project_file.h>

#include "benchmarks.h"
#include "generator.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::KelProjectDatabase;
using projectdb::ProjectContents;

const std::vector<std::int64_t> kFileSizes = {100, 10'000, 100'000};

/// A project in memory and in its file.
struct SavedProject {
  explicit SavedProject(std::size_t design_files) {
    const test_support::XmlPlatform platform;
    FillDatabase(database, design_files);
    database.ExportProjectData(file);
    contents = projectdb::ReadProjectFile(file, "").contents.value();
  }

  test_support::TemporaryDirectory directory;
  std::string file = directory / "project.xml";
  std::string new_file = directory / "new.xml";
  KelProjectDatabase database;
  ProjectContents contents;
};

/// Does the work once, without what comes before and after it.
template <typename Work>
void Time(Stopwatch& watch, const Work& work) {
  watch.Start();
  const auto result = work();
  watch.Stop();
  benchmark::DoNotOptimize(&result);
}

/// Compares two operations on one project, with the XML library started.
template <typename Library, typename Bare>
void CompareOn(State& state, const Library& library, const Bare& bare) {
  SavedProject& project = Cached<SavedProject>(SizeOf(state));
  const test_support::XmlPlatform platform;
  Compare(
      state, SizeOf(state), [&](Stopwatch& watch) { library(project, watch); },
      [&](Stopwatch& watch) { bare(project, watch); });
}

void Read(const SavedProject& project, Stopwatch& watch) {
  Time(watch, [&] { return projectdb::ReadProjectFile(project.file, ""); });
}

// The destruction of the database is no part of the load.
void LoadAndCopy(const SavedProject& project, Stopwatch& watch) {
  KelProjectDatabase database;
  Time(watch, [&] {
    database.LoadProjectData(project.file, "");
    return projectdb::GetProjectContents(database);
  });
}

void Write(const SavedProject& project, Stopwatch& watch) {
  std::filesystem::remove(project.new_file);
  Time(watch, [&] { return projectdb::WriteProjectFile(project.new_file, project.contents); });
}

void Export(const SavedProject& project, Stopwatch& watch) {
  std::filesystem::remove(project.new_file);
  Time(watch, [&] {
    project.database.ExportProjectData(project.new_file);
    return true;
  });
}

void WriteUnchanged(const SavedProject& project, Stopwatch& watch) {
  Time(watch, [&] {
    if (!projectdb::WriteProjectFile(project.file, project.contents)) return false;
    throw std::logic_error("the project was written");
  });
}

}  // namespace

void RegisterProjectFileBenchmarks() {
  Register("read_project_file", kFileSizes,
           [](State& state) { CompareOn(state, Read, LoadAndCopy); });
  Register("write_project_file", kFileSizes, [](State& state) { CompareOn(state, Write, Export); });
  Register("write_unchanged", kFileSizes,
           [](State& state) { CompareOn(state, WriteUnchanged, Read); });
}

}  // namespace bench
