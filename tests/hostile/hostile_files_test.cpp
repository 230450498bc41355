#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <projectdb/project_db.h>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/sanitizers.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"

namespace {

using namespace test_support;
using projectdb::KelProjectDatabase;

using Messages = std::vector<MessageRecorder::Message>;

/// Reads a number out of a project that was loaded with these messages.
using Reader = std::size_t (*)(KelProjectDatabase& database, const Messages& messages);

/// A kind of project file that can be made of any size.
struct HostileFile {
  const char* name;
  const char* unit;          ///< What the size counts.
  std::size_t largest_size;  ///< Without a sanitizer.
  void (*write)(std::ostream& file, std::size_t size);
  Reader read;  ///< Gives the size again.
  bool satisfies_schema = true;
  bool result = true;
};

void PrintTo(const HostileFile& file, std::ostream* out) { *out << file.name; }

// ---- What the files say

constexpr char kStart[] = "<project xmlns=\"http://schema.kel.example/wdp_proj\"";
constexpr char kEnd[] = "</project>\n";

void WriteTimes(std::ostream& file, std::size_t times, const char* text) {
  for (std::size_t i = 0; i < times; ++i) file << text;
}

void WriteDesignFiles(std::ostream& file, std::size_t size) {
  file << kStart << "><design_info>";
  for (std::size_t i = 0; i < size; ++i) {
    file << "<design_file name=\"rtl/f" << i << ".v\" version=\"v2k\" library=\"work\"/>";
  }
  file << "</design_info>" << kEnd;
}

std::size_t CountDesignFiles(KelProjectDatabase& database, const Messages& /*messages*/) {
  std::vector<projectdb::DesignFile> files;
  database.GetDesignFileList(files);
  return files.size();
}

void WriteIps(std::ostream& file, std::size_t size) {
  file << kStart << "><ip_info>";
  for (std::size_t i = 0; i < size; ++i) {
    file << "<ip instance_name=\"u" << i << "\" path=\"ip/u.ip\"/>";
  }
  file << "</ip_info>" << kEnd;
}

std::size_t CountIps(KelProjectDatabase& database, const Messages& /*messages*/) {
  std::vector<projectdb::IP> instances;
  database.GetIpInstanceList(instances);
  return instances.size();
}

void WriteParameters(std::ostream& file, std::size_t size) {
  file << kStart << "><synthesis>";
  for (std::size_t i = 0; i < size; ++i) {
    file << "<param name=\"p" << i << "\" value=\"v\" value_type=\"e_string\"/>";
  }
  file << "</synthesis>" << kEnd;
}

std::size_t CountParameters(KelProjectDatabase& database, const Messages& /*messages*/) {
  const auto* map = database.FindFlowProcessParameterMap(projectdb::e_synthesis, "param");
  return map ? map->size() : 0;
}

void WriteUnknownSections(std::ostream& file, std::size_t size) {
  file << kStart << ">";
  WriteTimes(file, size, "<unknown/>");
  file << kEnd;
}

std::size_t CountUnexpected(KelProjectDatabase& /*database*/, const Messages& messages) {
  const auto count = std::count(messages.begin(), messages.end(), UnexpectedMessage("unknown"));
  return static_cast<std::size_t>(count);
}

// The deepest one has as many levels above it as its name has characters.
void WriteNestedElements(std::ostream& file, std::size_t size) {
  file << kStart << "><sim_info>";
  WriteTimes(file, size, "<a>");
  file << "<sim_file name=\"/";
  WriteTimes(file, size - 1, "x");
  file << "\"/>";
  WriteTimes(file, size, "</a>");
  file << "</sim_info>" << kEnd;
}

std::size_t SizeOfOnlySimulationFile(KelProjectDatabase& database, const Messages& /*messages*/) {
  std::vector<std::string> files;
  database.GetSimulationTestBenchFileList(files);
  return files.size() == 1 ? files.front().size() : 0;
}

void WriteLongAttribute(std::ostream& file, std::size_t size) {
  const std::string kilobyte(1000, 'x');
  file << kStart << " name=\"";
  WriteTimes(file, size, kilobyte.c_str());
  file << "\">" << kEnd;
}

std::size_t KilobytesOfProjectName(KelProjectDatabase& database, const Messages& /*messages*/) {
  return database.GetProjectName().size() / 1000;
}

void WriteRootAttributes(std::ostream& file, std::size_t size) {
  file << kStart;
  for (std::size_t i = 0; i < size; ++i) file << " a" << i << "=\"v" << i << "\"";
  file << ">" << kEnd;
}

std::size_t CountInfoAttributes(KelProjectDatabase& database, const Messages& /*messages*/) {
  std::size_t count = 0;
  std::string value;
  while (database.GetProjectInfoAttribute("a" + std::to_string(count), value) &&
         value == "v" + std::to_string(count)) {
    ++count;
  }
  return count;
}

// ---- Measuring

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

/// Loads a file in a process of its own, whose memory is that of this load.
Measured Load(Reader read, const std::string& path, const std::string& schema) {
  std::istringstream text(InChildProcess([&] {
    KelProjectDatabase database;
    const MessageRecorder recorder;
    const auto start = std::chrono::steady_clock::now();
    const bool result = database.LoadProjectData(path, schema);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
    const double peak = PeakMegabytes();
    std::ostringstream out;
    out << result << ' ' << read(database, recorder.messages()) << ' ' << time.count() << ' '
        << peak;
    return out.str();
  }));
  Measured measured;
  if (!(text >> measured.result >> measured.read >> measured.seconds >> measured.peak_megabytes)) {
    throw std::runtime_error("the load came to no end: " + text.str());
  }
  return measured;
}

class Hostile : public testing::TestWithParam<HostileFile> {
 protected:
  /// Loads a file of that size and prints what it took.
  Measured LoadOfSize(std::size_t size, const std::string& schema) {
    const std::string path = directory_ / "p.xml";
    std::ofstream file(path, std::ios::binary);
    GetParam().write(file, size);
    const double megabytes = static_cast<double>(file.tellp()) / (1024 * 1024);
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
    const Measured measured = Load(GetParam().read, path, schema);
    std::cout << std::fixed << std::setprecision(2) << size << ' ' << GetParam().unit << ", file "
              << megabytes << " MB: " << measured.seconds << " s, peak " << measured.peak_megabytes
              << " MB\n";
    return measured;
  }

  /// Expects that loads of a quarter, a half and the whole of the size give what they are to give
  /// and that their memory grows with the file. Their time is printed only.
  void ExpectProportional(std::size_t largest_size, const std::string& schema) {
    const bool is_valid = schema.empty() || GetParam().satisfies_schema;
    double former_peak = 0;
    for (const std::size_t size : {largest_size / 4, largest_size / 2, largest_size}) {
      const Measured measured = LoadOfSize(size, schema);
      EXPECT_EQ(measured.result, is_valid && GetParam().result);
      EXPECT_EQ(measured.read, is_valid ? size : 0);
      if (former_peak > 0) {
        EXPECT_LE(measured.peak_megabytes, former_peak * kGrowthOfTwice);
      }
      former_peak = measured.peak_megabytes;
    }
  }

  /// What memory may grow by when a file becomes twice as large: tables grow in steps.
  static constexpr double kGrowthOfTwice = 2.5;

  /// What part of the sizes a sanitizer has time and memory for.
  static constexpr std::size_t kPart = kSanitized ? 10 : 1;

  TemporaryDirectory directory_;
};

TEST_P(Hostile, LoadProjectData_WithoutSchema_TakesMemoryInProportion) {
  ExpectProportional(GetParam().largest_size / kPart, "");
}

TEST_P(Hostile, LoadProjectData_WithSchema_TakesMemoryInProportion) {
  ExpectProportional(GetParam().largest_size / kPart / 4, ShippedSchema());
}

INSTANTIATE_TEST_SUITE_P(
    Files, Hostile,
    testing::Values(
        HostileFile{"DesignFiles", "elements", 1'000'000, WriteDesignFiles, CountDesignFiles},
        HostileFile{"Ips", "elements", 1'000'000, WriteIps, CountIps},
        HostileFile{"Parameters", "elements", 1'000'000, WriteParameters, CountParameters},
        HostileFile{"UnknownSections", "elements", 1'000'000, WriteUnknownSections, CountUnexpected,
                    false, false},
        HostileFile{"NestedElements", "levels", 100'000, WriteNestedElements,
                    SizeOfOnlySimulationFile, false},
        HostileFile{"LongAttribute", "kB of text", 100'000, WriteLongAttribute,
                    KilobytesOfProjectName},
        HostileFile{"RootAttributes", "attributes", 100'000, WriteRootAttributes,
                    CountInfoAttributes}),
    [](const auto& test_info) { return test_info.param.name; });

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
