#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "testing/project_loading.h"
#include "testing/test.h"

/// Lists of files and what is added to them.
namespace test_support::file_lists {

using Strings = std::vector<std::string>;

/// A design file in a form that compares.
using Row = std::tuple<std::string, std::string, std::string>;

inline std::vector<Row> RowsOfFiles(const std::vector<projectdb::DesignFile>& files) {
  std::vector<Row> rows;
  rows.reserve(files.size());
  for (const projectdb::DesignFile& file : files)
    rows.emplace_back(file.name, file.version, file.library);
  return rows;
}

/// A list of files whose getter delivers resolved names.
struct PathList {
  const char* name;
  std::function<void(projectdb::KelProjectDatabase&, const std::string&)> add;
  std::function<void(const projectdb::KelProjectDatabase&, Strings&)> append_to;
};

inline void AppendDesignFiles(const projectdb::KelProjectDatabase& database, Strings& names) {
  std::vector<projectdb::DesignFile> files;
  for (const std::string& name : names) files.emplace_back(name, "", "");
  const auto keep = [&] {
    names.clear();
    for (const projectdb::DesignFile& file : files) names.push_back(file.name);
  };
  try {
    database.GetDesignFileList(files);
  } catch (...) {
    keep();
    throw;
  }
  keep();
}

inline const PathList kPathLists[] = {
    {"Design", [](auto& db, auto& name) { db.AddDesignRTLFile(name, "v2001", "work"); },
     AppendDesignFiles},
    {"SimulationTestBench",
     [](auto& db, auto& name) { db.AddSimulationTestBenchFile(name, "v2001"); },
     [](auto& db, auto& names) { db.GetSimulationTestBenchFileList(names); }},
    {"Miscellaneous", [](auto& db, auto& name) { db.AddMiscellaneousFile(name); },
     [](auto& db, auto& names) { db.GetMiscellaneousFileList(names); }},
    {"TimingConstraint",
     [](auto& db, auto& name) { ASSERT_TRUE(db.AddTimingConstraintFile(name)) << name; },
     [](auto& db, auto& names) { db.GetTimingConstraintFileList(names); }}};

class FileLists : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker"));
    database_.SetProjectCurrentPath("/work/proj");
  }

  Strings TimingConstraints() const {
    Strings names;
    database_.GetTimingConstraintFileList(names);
    return names;
  }

  projectdb::KelProjectDatabase database_;
};

class PathListTest : public FileLists, public testing::WithParamInterface<PathList> {
 protected:
  void Add(const std::string& name) { GetParam().add(database_, name); }
  Strings List() const {
    Strings names;
    GetParam().append_to(database_, names);
    return names;
  }
  /// The only entry of a list to which the name is added.
  std::string Resolved(const std::string& name) {
    Add(name);
    const Strings names = List();
    return names.empty() ? "nothing" : names.back();
  }
};

/// Names that no conversion to a path takes, each of which would end in an extension.
inline Strings NamesThatAreNotUtf8(const std::string& extension) {
  Strings names;
  for (const char* stem : {"\xFF", "a\xC3", "\xE6\x9C/x", "\xC0\xAF", "\xED\xA0\x80"}) {
    names.push_back(stem + extension);
  }
  return names;
}

/// A project read from a file with the given sections.
class LoadedLists : public testing::Test, protected Loading {
 protected:
  void Load(const std::string& sections) { ASSERT_TRUE(LoadBytes(ProjectXml(sections))); }
  void LoadTwoInstances() {
    Load(R"(<ip_info><ip instance_name="fifo_0" path="ip/fifo/fifo.ipx">)"
         R"(<ip_src_file name="rtl/fifo.v"/><ip_src_file name="../shared/ram.v"/></ip>)"
         R"(<ip instance_name="pll_0" path="pll.ipx"/>)"
         R"(<ip instance_name="uart_0" path="/opt/ip/uart.ipx">)"
         R"(<ip_src_file name="uart.v"/><ip_src_file name="/lib/sync.v"/></ip></ip_info>)");
  }
  Strings IpSources(Strings names = {}) const {
    database.GetIpSrcFileList(names);
    return names;
  }
};

}  // namespace test_support::file_lists
