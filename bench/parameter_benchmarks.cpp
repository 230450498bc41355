#include <mutex>

#include <projectdb/project_db.h>

#include "benchmarks.h"
#include "entries.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterMap;

constexpr char kMapName[] = "param";

/// A process of so many parameters.
struct Process {
  explicit Process(std::size_t count) : parameters(Cached<Entries>(count).parameters) {
    database.CreateNewProjectDatabase("soc");
    database.AddSynthesisParameterList(parameters);
    map = database.FindFlowProcessParameterMap(projectdb::e_synthesis, kMapName);
  }

  std::string Value(const std::string& name) const {
    return database.GetFlowProcessParameterValue(projectdb::e_synthesis, kMapName, name);
  }

  // The same without the library.
  std::string BareValue(const std::string& name) {
    const std::lock_guard<std::mutex> lock(mutex);
    const auto entry = map->find(name);
    return entry == map->end() ? std::string() : entry->second.value;
  }

  const std::vector<Parameter>& parameters;
  KelProjectDatabase database;
  const ParameterMap* map = nullptr;
  std::mutex mutex;
};

// Calls get(name) for each parameter.
template <typename Get>
void GetAll(const Process& process, Stopwatch& watch, Get get) {
  watch.Start();
  for (const Parameter& parameter : process.parameters) {
    benchmark::DoNotOptimize(get(parameter.name));
  }
  watch.Stop();
}

void CompareValues(State& state) {
  auto& process = Cached<Process>(SizeOf(state));
  Compare(
      state, SizeOf(state),
      [&](Stopwatch& watch) {
        GetAll(process, watch, [&](const std::string& name) { return process.Value(name); });
      },
      [&](Stopwatch& watch) {
        GetAll(process, watch, [&](const std::string& name) { return process.BareValue(name); });
      });
}

// Calls get(process, index) in each thread.
template <typename Get>
void RegisterGetter(const std::string& name, Get get) {
  RegisterForThreads(name, kListSizes, [get](State& state) {
    const auto& process = Cached<Process>(SizeOf(state));
    std::size_t index = 0;
    for (auto _ : state) benchmark::DoNotOptimize(get(process, index++));
    CountElements(state, 1);
  });
}

}  // namespace

void RegisterParameterBenchmarks() {
  Register("GetFlowProcessParameterValue", kListSizes, CompareValues);
  RegisterGetter("GetFlowProcessParameterValue", [](const Process& process, std::size_t index) {
    return process.Value(process.parameters[index % process.parameters.size()].name);
  });
  RegisterGetter("GetProjectName", [](const Process& process, std::size_t /*index*/) {
    return process.database.GetProjectName();
  });
}

}  // namespace bench
