#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

#include <sys/resource.h>

#include "testing/child_process.h"
#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "tests/hostile/hostile_texts.h"

namespace {

using namespace test_support;
using namespace projectdb;

using Messages = std::vector<MessageRecorder::Message>;

/// Reads a number out of a project that was loaded with these messages.
using Reader = std::size_t (*)(KelProjectDatabase& database, const Messages& messages);

/// A kind of project file that can be made of any size.
struct HostileFile {
  const char* name;
  const char* unit;          ///< What the size counts.
  std::size_t largest_size;  ///< Without a sanitizer.
  hostile::Text text;
  Reader read;  ///< Gives the size again.
  bool satisfies_schema = true;
  bool result = true;
};

std::size_t CountDesignFiles(KelProjectDatabase& database, const Messages& /*messages*/) {
  return GetProjectContents(database).design_info.design_files.size();
}

std::size_t CountParameters(KelProjectDatabase& database, const Messages& /*messages*/) {
  const auto* map = database.FindFlowProcessParameterMap(e_synthesis, "param");
  return map ? map->size() : 0;
}

const HostileFile kHostileFiles[] = {
    {"DesignFiles", "elements", 1'000'000, hostile::kDesignFiles, CountDesignFiles},
    {"Ips", "elements", 1'000'000, hostile::kIps,
     [](auto& database, auto&) { return GetProjectContents(database).ip_info.ips.size(); }},
    {"Parameters", "elements", 1'000'000, hostile::kParameters, CountParameters},
    {"UnknownSections", "elements", 1'000'000, hostile::kUnknownSections,
     [](auto&, auto& messages) -> std::size_t {
       return static_cast<std::size_t>(
           std::count(messages.begin(), messages.end(), UnexpectedMessage("unknown")));
     },
     false, false},
    {"NestedElements", "levels", 100'000, hostile::kNestedElements,
     [](auto& database, auto&) -> std::size_t {
       const auto files = GetProjectContents(database).sim_files;
       return files.size() == 1 ? std::stoul(files[0].name) : 0;
     },
     false, true},
    {"LongAttribute", "kB of text", 100'000, hostile::kLongAttribute,
     [](auto& database, auto&) { return database.GetProjectName().size() / 1000; }},
    {"RootAttributes", "attributes", 100'000, hostile::kRootAttributes,
     [](auto& database, auto&) { return GetProjectContents(database).info_attributes.size(); }}};

struct Measured {
  bool result = false;
  std::size_t read = 0;
  double seconds = 0;
  double peak_megabytes = 0;
};

double PeakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
}

/// Does work in a process of its own, whose memory is that of this work.
/// @param work gives a result and a number
template <typename Work>
Measured Measure(const Work& work) {
  std::istringstream text(InChildProcess([&] {
    const auto start = std::chrono::steady_clock::now();
    const auto [result, number] = work();
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    std::ostringstream out;
    out << result << ' ' << number << ' ' << time.count() << ' ' << PeakMegabytes();
    return out.str();
  }));
  Measured measured;
  if (!(text >> measured.result >> measured.read >> measured.seconds >> measured.peak_megabytes)) {
    throw std::runtime_error("the work came to no end: " + text.str());
  }
  return measured;
}

Measured Load(Reader read, const std::string& path, const std::string& schema) {
  return Measure([&] {
    KelProjectDatabase database;
    const MessageRecorder recorder;
    const bool result = database.LoadProjectData(path, schema);
    return std::pair(result, read(database, recorder.messages()));
  });
}

/// Its number is that of the contents.
Measured ReadWhole(const std::string& path, const std::string& schema) {
  return Measure([&] {
    const ProjectFile file = ReadProjectFile(path, schema);
    const bool result = std::none_of(file.problems.begin(), file.problems.end(), IsError);
    return std::pair(result, file.contents ? 1 : 0);
  });
}

class Hostile : public testing::TestWithParam<HostileFile> {
 protected:
  /// Loads a file of that size and prints what it took.
  Measured LoadOfSize(std::size_t size, const std::string& schema) {
    const std::string path = directory_ / "p.xml";
    std::ofstream file(path, std::ios::binary);
    GetParam().text.Write(file, size);
    const double megabytes = static_cast<double>(file.tellp()) / (1024 * 1024);
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
    const Measured measured = Load(GetParam().read, path, schema);
    std::cout << std::fixed << std::setprecision(2) << size << ' ' << GetParam().unit << ", file "
              << megabytes << " MB: " << measured.seconds << " s, peak " << measured.peak_megabytes
              << " MB\n";
    return measured;
  }

  /// Writes the file of that size.
  std::string WriteOfSize(std::size_t size) const {
    std::string path = directory_ / "p.xml";
    std::ofstream file(path, std::ios::binary);
    GetParam().text.Write(file, size);
    return path;
  }

  /// Expects that loads of a quarter and the whole of the size give what they are to give and that
  /// their memory grows with the file. Their time is printed only.
  void ExpectProportional(std::size_t largest_size, const std::string& schema) {
    const bool is_valid = schema.empty() || GetParam().satisfies_schema;
    double former_peak = 0;
    for (const std::size_t size : {largest_size / 4, largest_size}) {
      const Measured measured = LoadOfSize(size, schema);
      EXPECT_EQ(measured.result, is_valid && GetParam().result);
      EXPECT_EQ(measured.read, is_valid ? size : 0);
      if (former_peak > 0) {
        EXPECT_LE(measured.peak_megabytes, former_peak * kGrowthOfFourTimes);
      }
      former_peak = measured.peak_megabytes;
    }
  }

  /// Expects that a reading of the whole file comes to what a load comes to, and with memory in
  /// proportion.
  void ExpectAsALoad(std::size_t size, const std::string& schema) const {
    const std::string path = WriteOfSize(size);
    const Measured load = Load(GetParam().read, path, schema);
    const Measured read = ReadWhole(path, schema);
    std::cout << std::fixed << std::setprecision(2) << "load " << load.seconds << " s, peak "
              << load.peak_megabytes << " MB; read " << read.seconds << " s, peak "
              << read.peak_megabytes << " MB\n";
    EXPECT_EQ(read.result, load.result);
    EXPECT_EQ(read.read, schema.empty() || GetParam().satisfies_schema ? 1U : 0U);
    // A problem of each element takes more than the element.
    EXPECT_LE(read.peak_megabytes, 3 * load.peak_megabytes);
  }

  /// What memory may grow by when a file becomes four times as large: tables grow in steps.
  static constexpr double kGrowthOfFourTimes = 5;

  /// What part of the sizes a sanitizer has time and memory for.
  static constexpr std::size_t kPart = kSanitized ? 20 : 1;

  TemporaryDirectory directory_;
};

TEST_P(Hostile, LoadProjectData_WithoutSchema_TakesMemoryInProportion) {
  ExpectProportional(GetParam().largest_size / kPart, "");
}

TEST_P(Hostile, LoadProjectData_WithSchema_TakesMemoryInProportion) {
  ExpectProportional(GetParam().largest_size / kPart / 4, ShippedSchema());
}

TEST_P(Hostile, ReadProjectFile_WithoutSchema_TakesMemoryAsALoadDoes) {
  ExpectAsALoad(GetParam().largest_size / kPart / 4, "");
}

TEST_P(Hostile, ReadProjectFile_WithSchema_TakesMemoryAsALoadDoes) {
  ExpectAsALoad(GetParam().largest_size / kPart / 16, ShippedSchema());
}

TEST(HostileProject, ReadProjectFile_ATerabyteOfZerosBehindAProject_TakesNoMoreMemory) {
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  WriteFile(path, ProjectXml(""));
  std::error_code error;
  std::filesystem::resize_file(path, std::uintmax_t{1} << 40U, error);
  if (error) GTEST_SKIP() << "no file can be so large";
  const Measured load = Load(CountDesignFiles, path, "");
  const Measured measured = ReadWhole(path, "");
  EXPECT_EQ(measured.result, load.result);
  EXPECT_LT(measured.peak_megabytes, 200);
}

// The XML library itself would write beyond its memory there.
TEST(HostileProject, Any_ManyLevelsAboveTheFirstInTheSchema_IsRefused) {
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  constexpr int kLevels = 100'000;
  {
    std::ofstream file(path);
    for (int level = 0; level < kLevels; ++level) file << "<a>";
    file << ProjectXml("");
    for (int level = 0; level < kLevels; ++level) file << "</a>";
  }
  EXPECT_FALSE(ReadWhole(path, ShippedSchema()).result);
  const std::string loaded = InChildProcess([&] {
    KelProjectDatabase database;
    const MessageRecorder recorder;
    return database.LoadProjectData(path, ShippedSchema()) ? "whole" : "not whole";
  });
  EXPECT_EQ(loaded, "not whole");
}

INSTANTIATE_TEST_SUITE_P(Files, Hostile, testing::ValuesIn(kHostileFiles), ByName());

TEST(HostileSchema, LoadProjectData_HintToAFileOfATerabyte_TakesMemoryForTheLargestSchemaOnly) {
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  WriteFile(path,
            ProjectXml("", "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj s.xsd\""));
  WriteFile(directory / "s.xsd", DeviceOnlySchema());
  std::error_code error;
  std::filesystem::resize_file(directory / "s.xsd", std::uintmax_t{1} << 40U, error);
  if (error) GTEST_SKIP() << "no file can be so large";
  const Measured measured = Load(CountDesignFiles, path, "");
  std::cout << measured.seconds << " s, peak " << measured.peak_megabytes << " MB\n";
  EXPECT_FALSE(measured.result);
  EXPECT_LT(measured.peak_megabytes, 200);
}

}  // namespace
