#include "round_trip.h"

#include <stdexcept>

#include <kel/version.h>

#include "checks.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "written_project.h"

namespace fuzz {
namespace {

using projectdb::GetProjectContents;
using projectdb::KelProjectDatabase;
using test_support::MalformedMessage;
using test_support::MessageRecorder;
using test_support::MissingMessage;

bool LoadsAs(KelProjectDatabase& database, const std::string& path, const std::string& schema,
             bool& refused) {
  const MessageRecorder recorder;
  try {
    const bool result = database.LoadProjectData(path, schema);
    const auto messages = recorder.messages();
    refused = path.empty() || (!messages.empty() && (messages.back() == MalformedMessage(path) ||
                                                     messages.back() == MissingMessage(path)));
    return result;
  } catch (const std::runtime_error&) {
    refused = true;
    return false;
  }
}

void RequireSameProject(const KelProjectDatabase& written, const std::string& path,
                        const std::string& schema) {
  const bool is_read_as_it_is = IsReadAsItIs(written);
  const bool is_whole = is_read_as_it_is && HasOnlyNamesOfTheFormat(written);
  // A schema refuses names outside the format, and parameters that no map would take.
  if (!is_whole && !schema.empty()) return;
  const std::string with = schema.empty() ? " without the schema" : " with the schema";
  KelProjectDatabase read;
  const Loaded loaded = LoadAndCheck(read, path, schema);
  Require(loaded != Loaded::kRefused, "an exported file is refused" + with);
  Require(loaded == Loaded::kWhole || !is_whole, "an exported file is not read whole" + with);
  if (is_read_as_it_is) {
    RequireSame(ContentsForFile(written, written), ContentsForFile(read, written),
                "an exported project does not come back" + with);
  }
  Require(read.GetProjectSoftwareVersion() == KEL_VERSION_NO, "the version is not the writer's");
  Require(!read.GetProjectLastModifyTime().empty(), "there is no time stamp");
}

}  // namespace

Loaded LoadAndCheck(KelProjectDatabase& database, const std::string& path,
                    const std::string& schema) {
  const auto before = GetProjectContents(database);
  bool refused = false;
  const bool result = LoadsAs(database, path, schema, refused);
  if (!refused) {
    Require(database.IsProjectDatabaseExist(), "a load that is not refused gives no project");
    return result ? Loaded::kWhole : Loaded::kInPart;
  }
  Require(!result, "a load that is refused gives true");
  RequireSame(before, GetProjectContents(database), "a refused load changes the project");
  return Loaded::kRefused;
}

bool ExportAndCheck(const KelProjectDatabase& database, MemoryFile& file) {
  const std::string former = "what was there before";
  file.Write(former);
  const auto before = GetProjectContents(database);
  bool written = database.IsProjectDatabaseExist();
  try {
    database.ExportProjectData(file.path());
  } catch (const std::runtime_error& error) {
    written = false;
    Require(StartsWith(error.what(), "Failed writing XML file " + file.path() + ": "),
            std::string("an export fails with ") + error.what());
    Require(!IsPlain(database), std::string("a plain project is not exported: ") + error.what());
  }
  RequireSame(before, GetProjectContents(database), "an export changes the project");
  if (!written) {
    RequireSame(former, file.Read(), "an export that writes nothing changes the file");
    return false;
  }
  RequireSameProject(database, file.path(), "");
  RequireSameProject(database, file.path(), SchemaPath());
  return true;
}

const std::string& SchemaPath() {
  static const std::string path = PROJECTDB_SCHEMA_FILE;
  return path;
}

}  // namespace fuzz
