#include <cstdio>
#include <functional>
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

const std::vector<std::int64_t> kMemorySizes = {100, 10'000, 100'000, 1'000'000};

/// A project file.
struct ProjectFile {
  explicit ProjectFile(std::size_t design_files) {
    const test_support::XmlPlatform platform;
    bare::Export(MakeBareProject<std::u16string>(design_files), path);
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

/// Arguments of both sides behind their names.
using Arguments = std::function<std::string(const ProjectFile& file, std::size_t size)>;

void RegisterComparison(const std::string& name, const std::string& work,
                        const std::string& bare_work, const Arguments& arguments) {
  Register(kPeakMemory + ("_" + name), kMemorySizes, [=](State& state) {
    const ProjectFile& file = Cached<ProjectFile>(SizeOf(state));
    for (auto _ : state) {
      state.counters[kLibrary] = PeakMemory(work + arguments(file, SizeOf(state)));
      state.counters[kBare] = PeakMemory(bare_work + arguments(file, SizeOf(state)));
    }
  })->Iterations(1);
}

void RegisterLoading(const std::string& suffix, const std::string& schema) {
  const Arguments arguments = [schema](const ProjectFile& file, std::size_t /*size*/) {
    return " '" + file.path + "' '" + schema + "'";
  };
  RegisterComparison("load" + suffix, "load", "bare_load", arguments);
  RegisterComparison("load" + suffix + kWithoutText, "load", "bare_load_without_text", arguments);
}

void RegisterExporting() {
  const Arguments arguments = [](const ProjectFile& file, std::size_t size) {
    return " '" + file.written + "' " + std::to_string(size);
  };
  RegisterComparison("export", "export", "bare_export_of_utf8", arguments);
  RegisterComparison("export_of_16_bits", "export", "bare_export", arguments);
}

}  // namespace

void RegisterMemoryBenchmarks() {
  RegisterLoading("", "");
  RegisterLoading("_with_schema", PROJECTDB_SCHEMA_FILE);
  RegisterExporting();
}

}  // namespace bench
