#include <memory>
#include <mutex>

#include <projectdb/project_db.h>

#include "benchmarks.h"
#include "entries.h"

namespace bench {
namespace {

using benchmark::State;
using projectdb::KelProjectDatabase;

std::unique_ptr<KelProjectDatabase> NewProject() {
  auto database = std::make_unique<KelProjectDatabase>();
  database->CreateNewProjectDatabase("soc");
  return database;
}

/// Files and parameters as a tool would guard them without the library.
struct GuardedLists {
  std::mutex mutex;
  std::vector<projectdb::DesignFile> files;
  projectdb::ParameterMap parameters;
};

void AddFile(KelProjectDatabase& database, const Entries& entries, std::size_t index) {
  const projectdb::DesignFile& file = entries.files[index];
  database.AddDesignRTLFile(file.name, file.version, file.library);
}

void AddFileToLists(GuardedLists& lists, const Entries& entries, std::size_t index) {
  const std::lock_guard<std::mutex> lock(lists.mutex);
  lists.files.push_back(entries.files[index]);
}

void AddParameter(KelProjectDatabase& database, const Entries& entries, std::size_t index) {
  database.AddSynthesisParameter(entries.parameters[index]);
}

void AddParameterToLists(GuardedLists& lists, const Entries& entries, std::size_t index) {
  const std::lock_guard<std::mutex> lock(lists.mutex);
  lists.parameters.try_emplace(entries.parameters[index].name, entries.parameters[index]);
}

// Adds all entries to a new object, with a call of add(object, entries, index) for each.
template <typename Make, typename Add>
auto AddingAll(const Entries& entries, Make make, Add add) {
  return [&entries, make, add](Stopwatch& watch) {
    const auto object = make();
    watch.Start();
    for (std::size_t i = 0; i < entries.files.size(); ++i) add(*object, entries, i);
    watch.Stop();
  };
}

template <typename Add, typename BareAdd>
void RegisterComparison(const std::string& name, Add add, BareAdd bare_add) {
  Register(name, kListSizes, [=](State& state) {
    const Entries& entries = Cached<Entries>(SizeOf(state));
    Compare(state, SizeOf(state), AddingAll(entries, NewProject, add),
            AddingAll(entries, std::make_unique<GuardedLists>, bare_add));
  });
}

/// The project that all threads of a benchmark add to.
class SharedProject {
 public:
  // Threads wait for each other before their first and after their last iteration.
  explicit SharedProject(const State& state) : is_first_thread_(state.thread_index() == 0) {
    if (is_first_thread_) project_ = NewProject();
  }
  ~SharedProject() {
    if (is_first_thread_) project_.reset();
  }
  SharedProject(const SharedProject&) = delete;
  SharedProject& operator=(const SharedProject&) = delete;

  KelProjectDatabase& database() { return *project_; }

 private:
  inline static std::unique_ptr<KelProjectDatabase> project_;
  bool is_first_thread_;
};

// In each thread, add(project, entries, index) adds one entry.
template <typename Add>
void RegisterAdder(const std::string& name, Add add) {
  for (const std::int64_t count : kListSizes) {
    const auto run = [add](State& state) {
      const Entries& entries = Cached<Entries>(SizeOf(state));
      SharedProject project(state);
      std::size_t index = 0;
      for (auto _ : state) add(project.database(), entries, index++);
      CountElements(state, 1);
    };
    RegisterForThreads(name, {count}, run)->Iterations(count);
  }
}

// In each thread, add(project, entries) adds all entries.
template <typename Add>
void RegisterListAdder(const std::string& name, Add add) {
  const auto run = [add](State& state) {
    Entries& entries = Cached<Entries>(SizeOf(state));
    SharedProject project(state);
    for (auto _ : state) add(project.database(), entries);
    CountElements(state, SizeOf(state));
  };
  RegisterForThreads(name, kListSizes, run)->Iterations(1);
}

void RegisterAdders() {
  RegisterAdder("AddDesignRTLFile", AddFile);
  RegisterAdder("AddSimulationTestBenchFile",
                [](KelProjectDatabase& database, const Entries& entries, std::size_t index) {
                  database.AddSimulationTestBenchFile(entries.names[index], "sv_2012");
                });
  RegisterAdder("AddMiscellaneousFile",
                [](KelProjectDatabase& database, const Entries& entries, std::size_t index) {
                  database.AddMiscellaneousFile(entries.names[index]);
                });
  RegisterAdder("AddTimingConstraintFile",
                [](KelProjectDatabase& database, const Entries& entries, std::size_t index) {
                  database.AddTimingConstraintFile(entries.names[index]);
                });
  RegisterAdder("AddSynthesisParameter", AddParameter);
  RegisterAdder("AddProjectInfoAttribute",
                [](KelProjectDatabase& database, const Entries& entries, std::size_t index) {
                  database.AddProjectInfoAttribute(entries.names[index], "value");
                });
}

void RegisterListAdders() {
  RegisterListAdder("AddDesignRTLFile list", [](KelProjectDatabase& database, Entries& entries) {
    database.AddDesignRTLFile(entries.files);
  });
  RegisterListAdder("AddSimulationTestBenchFile list",
                    [](KelProjectDatabase& database, Entries& entries) {
                      database.AddSimulationTestBenchFile(entries.files);
                    });
  RegisterListAdder("AddMiscellaneousFile list",
                    [](KelProjectDatabase& database, Entries& entries) {
                      database.AddMiscellaneousFile(entries.names);
                    });
  RegisterListAdder("AddTimingConstraintFile list",
                    [](KelProjectDatabase& database, Entries& entries) {
                      database.AddTimingConstraintFile(entries.names);
                    });
  RegisterListAdder("AddSynthesisParameterList",
                    [](KelProjectDatabase& database, Entries& entries) {
                      database.AddSynthesisParameterList(entries.parameters);
                    });
}

}  // namespace

void RegisterAdderBenchmarks() {
  RegisterComparison("AddDesignRTLFile", AddFile, AddFileToLists);
  RegisterComparison("AddSynthesisParameter", AddParameter, AddParameterToLists);
  RegisterAdders();
  RegisterListAdders();
}

}  // namespace bench
