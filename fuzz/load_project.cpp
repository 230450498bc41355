// Takes the bytes as a project file.

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <string_view>

#include <projectdb/project_db.h>

#include "checks.h"
#include "memory_file.h"
#include "round_trip.h"
#include "testing/checking.h"
#include "testing/temporary_directory.h"
#include "written_project.h"

namespace {

using fuzz::ExportAndCheck;
using fuzz::LoadAndCheck;
using fuzz::Loaded;
using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;

// The files of this process.
struct Files {
  test_support::TemporaryDirectory directory;
  fuzz::MemoryFile project{directory / "project.xml"};
  fuzz::MemoryFile exported{directory / "exported.xml"};
};

// A project with something in every part that a load changes.
void FillProject(KelProjectDatabase& database) {
  database.CreateNewProjectDatabase("former");
  database.AddProjectInfoAttribute("owner", "nobody");
  database.SetDesignTopModuleName("former_top");
  database.AddDesignRTLFile("former.v", "v2k", "work");
  database.AddSimulationTestBenchFile("former_tb.v", "v2k");
  database.AddMiscellaneousFile("former.txt");
  database.AddTimingConstraintFile("former.sdc");
  database.SetInterfaceConstraint("former.interface.csv");
  database.SetSynthesisExecutableName("former_syn");
  database.AddSynthesisParameter("mode", "former", projectdb::e_string);
  database.AddSynthesisVerilogMacro("FORMER", "1");
  database.AddDebuggerParameter("quiet", "", projectdb::e_noarg);
}

// Loads the file into a project that is there and, if that works, exports the result.
Loaded LoadOverProject(Files& files, const std::string& schema) {
  KelProjectDatabase database;
  FillProject(database);
  const Loaded loaded = LoadAndCheck(database, files.project.path(), schema);
  const bool is_accepted = test_support::CheckAccepts(files.project.path(), schema);
  fuzz::Require(is_accepted == (loaded == Loaded::kWhole), "a check and a load disagree");
  if (loaded != Loaded::kRefused) ExportAndCheck(database, files.exported);
  return loaded;
}

// What a file gives does not depend on whether the schema, which accepts it, was given.
void RequireSameWithAndWithoutSchema(const Files& files) {
  KelProjectDatabase without_schema;
  KelProjectDatabase with_schema;
  LoadAndCheck(without_schema, files.project.path(), "");
  LoadAndCheck(with_schema, files.project.path(), fuzz::SchemaPath());
  fuzz::RequireSame(GetProjectContents(without_schema), GetProjectContents(with_schema),
                    "a file gives another project with the schema than without");
}

// Most files are refused for a reason that has nothing to do with the schema. Trying the schema on
// every eighth of them finds what there is to find and leaves time for the others.
bool IsOneOfEight(std::string_view bytes) {
  const auto sum = std::accumulate(bytes.begin(), bytes.end(), 0U, [](unsigned a, char c) {
    return a * 31U + static_cast<unsigned char>(c);
  });
  return sum % 8U == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Files files;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  files.project.Write(bytes);
  const Loaded without_schema = LoadOverProject(files, "");
  if (without_schema == Loaded::kRefused && !IsOneOfEight(bytes)) return 0;
  const Loaded with_schema = LoadOverProject(files, fuzz::SchemaPath());
  if (without_schema == Loaded::kWhole && with_schema == Loaded::kWhole) {
    RequireSameWithAndWithoutSchema(files);
  }
  return 0;
}
