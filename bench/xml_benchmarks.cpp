#include <algorithm>
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

const std::vector<std::int64_t> kSizes = {100, 1'000, 10'000, 100'000};

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
  explicit Sample(std::size_t design_files) : project(MakeBareProject(design_files)) {
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
  bare::Project project;
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

void ParseOnce(const Sample& sample, const std::string& schema, Stopwatch& watch) {
  watch.Start();
  bare::Parse(sample.file, schema);
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

void CompareLoading(State& state, const std::string& schema) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  // Starting the XML library, once in a process, is no part of a load.
  const XmlPlatform platform;
  Compare(
      state, SizeOf(state), [&](Stopwatch& watch) { LoadOnce(sample, schema, watch); },
      [&](Stopwatch& watch) { ParseOnce(sample, schema, watch); });
}

void CompareFirstLoading(State& state, const std::string& schema) {
  const Sample& sample = Cached<Sample>(SizeOf(state));
  Compare(
      state, SizeOf(state), [&](Stopwatch& watch) { LoadOnce(sample, schema, watch); },
      [&](Stopwatch& watch) { StartAndParseOnce(sample, schema, watch); });
}

void CompareExporting(State& state) {
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
        bare::Export(sample.project, sample.exported);
        watch.Stop();
      });
}

void RegisterLoading(const std::string& suffix, const std::string& schema) {
  Register("load" + suffix, kSizes, [schema](State& state) { CompareLoading(state, schema); });
  Register("start_and_load" + suffix, {kSizes.front()},
           [schema](State& state) { CompareFirstLoading(state, schema); });
}

}  // namespace

void RegisterXmlBenchmarks() {
  RegisterLoading("", kNoSchema);
  RegisterLoading("_with_schema", kSchema);
  Register("export", kSizes, CompareExporting);
}

}  // namespace bench
