#include <cstdio>
#include <memory>
#include <stdexcept>

#include "bare.h"
#include "benchmarks.h"
#include "generator.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"

namespace bench {
namespace {

using benchmark::State;

const std::vector<std::int64_t> kSizes = {100, 10'000, 100'000};

/// A project file.
struct ProjectFile {
  explicit ProjectFile(std::size_t design_files) {
    const test_support::XmlPlatform platform;
    bare::Export(MakeBareProject(design_files), path);
  }

  test_support::TemporaryDirectory directory;
  std::string path = directory / "project.xml";
  std::string written = directory / "written.xml";
};

struct ClosePipe {
  void operator()(std::FILE* pipe) const { pclose(pipe); }
};

// In bytes, of a process of its own with these arguments.
double PeakMemory(const std::string& arguments) {
  const std::string command = PROJECTDB_PEAK_MEMORY " " + arguments;
  const std::unique_ptr<std::FILE, ClosePipe> output(popen(command.c_str(), "r"));
  long bytes = 0;
  if (!output || std::fscanf(output.get(), "%ld", &bytes) != 1) {
    throw std::runtime_error("failed: " + command);
  }
  return static_cast<double>(bytes);
}

// What both sides take on the command line after "work" and "bare_work".
template <typename Arguments>
void Compare(State& state, const std::string& work, Arguments arguments) {
  const ProjectFile& file = Cached<ProjectFile>(SizeOf(state));
  for (auto _ : state) {
    state.counters[kLibrary] = PeakMemory(work + arguments(file));
    state.counters[kBare] = PeakMemory("bare_" + work + arguments(file));
  }
}

void RegisterLoading(const std::string& suffix, const std::string& schema) {
  const auto arguments = [schema](const ProjectFile& file) {
    return " '" + file.path + "' '" + schema + "'";
  };
  Register(kPeakMemory + ("_load" + suffix), kSizes, [=](State& state) {
    Compare(state, "load", arguments);
  })->Iterations(1);
}

void RegisterExporting() {
  Register(kPeakMemory + std::string("_export"), kSizes, [](State& state) {
    Compare(state, "export", [&](const ProjectFile& file) {
      return " '" + file.written + "' " + std::to_string(SizeOf(state));
    });
  })->Iterations(1);
}

}  // namespace

void RegisterMemoryBenchmarks() {
  RegisterLoading("", "");
  RegisterLoading("_with_schema", PROJECTDB_SCHEMA_FILE);
  RegisterExporting();
}

}  // namespace bench
