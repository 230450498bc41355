#include <algorithm>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include <projectdb/project_db.h>

#include "bare.h"
#include "benchmarks.h"
#include "generator.h"
#include "testing/files.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::KelProjectDatabase;
using test_support::XmlPlatform;

const std::vector<std::int64_t> kProjectSizes = {100, 1'000, 10'000, 100'000, 1'000'000};

constexpr char kNoSchema[] = "";
constexpr char kSchema[] = PROJECTDB_SCHEMA_FILE;

// All lines but those of the root, which has a time stamp, in an order that no hash map decides.
std::vector<std::string> SortedLines(const std::string& path) {
  std::istringstream text(test_support::ReadFile(path));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) {
    if (line.find("<kel:project ") == std::string::npos) lines.push_back(line);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

/// A project in memory and in a file.
struct Sample {
  explicit Sample(std::size_t design_files)
      : project(MakeBareProject<std::u16string>(design_files)),
        utf8_project(MakeBareProject<std::string>(design_files)) {
    const XmlPlatform platform;
    FillDatabase(database, design_files);
    database.ExportProjectData(exported);
    bare::Export(project, file);
    if (SortedLines(file) != SortedLines(exported)) {
      throw std::logic_error("the bare export is another than the library's");
    }
  }

  test_support::TemporaryDirectory directory;
  std::string file = directory / "project.xml";
  std::string exported = directory / "exported.xml";
  bare::WideProject project;
  bare::Utf8Project utf8_project;
  KelProjectDatabase database;
};

// The destruction of the database is no part of the load.
void LoadOnce(const Sample& sample, const std::string& schema, Stopwatch& watch) {
  KelProjectDatabase database;
  watch.Start();
  const bool loaded = database.LoadProjectData(sample.file, schema);
  watch.Stop();
  if (!loaded) throw std::runtime_error("the project cannot be loaded");
}

void ParseOnce(const Sample& sample, const std::string& schema, bare::TextBetweenTags text,
               Stopwatch& watch) {
  watch.Start();
  bare::Parse(sample.file, schema, text);
  watch.Stop();
}

void StartAndParseOnce(const Sample& sample, const std::string& schema, Stopwatch& watch) {
  watch.Start();
  {
    const XmlPlatform platform;
    bare::Parse(sample.file, schema);
  }
  watch.Stop();
}

void CompareLoading(State& state, const std::string& schema, bare::TextBetweenTags text) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  // Starting the XML library, once in a process, is no part of a load.
  const XmlPlatform platform;
  Compare(
      state, SizeOf(state), [&](Stopwatch& watch) { LoadOnce(sample, schema, watch); },
      [&](Stopwatch& watch) { ParseOnce(sample, schema, text, watch); });
}

void CompareFirstLoading(State& state, const std::string& schema) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  Compare(
      state, SizeOf(state), [&](Stopwatch& watch) { LoadOnce(sample, schema, watch); },
      [&](Stopwatch& watch) { StartAndParseOnce(sample, schema, watch); });
}

template <typename Text>
void CompareExporting(State& state, const bare::Project<Text> Sample::*project) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  const XmlPlatform platform;
  Compare(
      state, SizeOf(state),
      [&](Stopwatch& watch) {
        watch.Start();
        sample.database.ExportProjectData(sample.exported);
        watch.Stop();
      },
      [&](Stopwatch& watch) {
        watch.Start();
        bare::Export(sample.*project, sample.exported);
        watch.Stop();
      });
}

/// Loads as many files as there are threads, in wall time.
void LoadInEachThread(State& state) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  const XmlPlatform platform;
  const test_support::TemporaryDirectory directory;
  const std::string file = directory / "project.xml";
  std::filesystem::copy_file(sample.file, file);
  for (auto _ : state) {
    KelProjectDatabase database;
    if (!database.LoadProjectData(file, kNoSchema)) state.SkipWithError("not loaded");
  }
  CountElements(state, SizeOf(state));
}

void RegisterLoading(const std::string& suffix, const std::string& schema) {
  Register("load" + suffix, kProjectSizes,
           [schema](State& state) { CompareLoading(state, schema, bare::TextBetweenTags::kKept); });
  Register("load" + suffix + kWithoutText, kProjectSizes, [schema](State& state) {
    CompareLoading(state, schema, bare::TextBetweenTags::kLeftOut);
  });
  Register("start_and_load" + suffix, {kProjectSizes.front()},
           [schema](State& state) { CompareFirstLoading(state, schema); });
}

}  // namespace

void RegisterXmlBenchmarks() {
  RegisterLoading("", kNoSchema);
  RegisterLoading("_with_schema", kSchema);
  Register("export", kProjectSizes,
           [](State& state) { CompareExporting(state, &Sample::project); });
  Register("export_of_utf8", kProjectSizes,
           [](State& state) { CompareExporting(state, &Sample::utf8_project); });
  RegisterForThreads(kApart, {10'000}, LoadInEachThread);
}

}  // namespace bench
