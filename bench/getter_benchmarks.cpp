#include <filesystem>

#include <projectdb/project_db.h>

#include "benchmarks.h"
#include "entries.h"
#include "testing/xml_platform.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::DesignFile;
using projectdb::KelProjectDatabase;

constexpr char kDirectory[] = "/designs/soc";

/// A project that has something in every list.
struct FullLists {
  explicit FullLists(std::size_t design_files) {
    const test_support::XmlPlatform platform;
    FillDatabase(database, design_files);
    database.SetProjectCurrentPath(kDirectory);
    auto& names = Cached<Entries>(design_files).names;
    database.AddTimingConstraintFile(names);
    database.AddMiscellaneousFile(names);
  }

  KelProjectDatabase database;
};

template <typename Record>
void RegisterGetter(const std::string& name,
                    void (KelProjectDatabase::*getter)(std::vector<Record>&) const) {
  RegisterForThreads(name, kListSizes, [getter](State& state) {
    const KelProjectDatabase& database = Cached<FullLists>(SizeOf(state)).database;
    std::size_t count = 0;
    for (auto _ : state) {
      std::vector<Record> records;
      (database.*getter)(records);
      benchmark::DoNotOptimize(records.data());
      count = records.size();
    }
    CountElements(state, count);
  });
}

// The records as they are stored, with a copy of each name joined to the directory.
std::vector<DesignFile> JoinPaths(const std::vector<DesignFile>& stored) {
  const std::filesystem::path directory = kDirectory;
  std::vector<DesignFile> files;
  files.reserve(stored.size());
  for (const DesignFile& file : stored) {
    files.emplace_back((directory / file.name).string(), file.version, file.library);
  }
  return files;
}

void CompareDesignFileLists(State& state) {
  const KelProjectDatabase& database = Cached<FullLists>(SizeOf(state)).database;
  const std::vector<DesignFile>& stored = Cached<Entries>(SizeOf(state)).files;
  Compare(
      state, SizeOf(state),
      [&](Stopwatch& watch) {
        watch.Start();
        std::vector<DesignFile> files;
        database.GetDesignFileList(files);
        watch.Stop();
      },
      [&](Stopwatch& watch) {
        watch.Start();
        const std::vector<DesignFile> files = JoinPaths(stored);
        watch.Stop();
      });
}

}  // namespace

void RegisterGetterBenchmarks() {
  Register("GetDesignFileList", kListSizes, CompareDesignFileLists);
  RegisterGetter("GetDesignFileList", &KelProjectDatabase::GetDesignFileList);
  RegisterGetter("GetSimulationTestBenchFileList",
                 &KelProjectDatabase::GetSimulationTestBenchFileList);
  RegisterGetter("GetMiscellaneousFileList", &KelProjectDatabase::GetMiscellaneousFileList);
  RegisterGetter("GetTimingConstraintFileList", &KelProjectDatabase::GetTimingConstraintFileList);
  RegisterGetter("GetIpSrcFileList", &KelProjectDatabase::GetIpSrcFileList);
  RegisterGetter("GetIpInstanceList", &KelProjectDatabase::GetIpInstanceList);
  RegisterGetter("GetSynthesisParameterList", &KelProjectDatabase::GetSynthesisParameterList);
}

}  // namespace bench
