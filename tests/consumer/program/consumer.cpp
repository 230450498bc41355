// Uses what a program and a shared library have to share: operations, constants, the one
// diagnostics service, exceptions and the schema. Usage: consumer SCHEMA
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include <kel/diag.h>
#include <kel/exception.h>
#include <kel/version.h>
#include <projectdb/durable_export.h>
#include <projectdb/project_db.h>

namespace {

using projectdb::KelProjectDatabase;

bool Expect(bool holds, const char* what) {
  if (!holds) std::cerr << "consumer: it does not hold that " << what << '\n';
  return holds;
}

bool ReceivesMessages() {
  std::vector<std::string> messages;
  Diag::GlobalInst().SetHandler(
      [&messages](const Diag::DiagStorage& message) { messages.push_back(message.text()); });
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("consumer");
  database.CreateNewProjectDatabase("consumer");
  Diag::GlobalInst().SetHandler({});
  return Expect(messages.size() == 1, "a message of the library reaches the handler");
}

bool CatchesTheSuitesException() {
  try {
    KelProjectDatabase::ParseMaxThreads("4", 0);
  } catch (const kel_exception&) {
    return true;
  }
  return Expect(false, "a thread count of 0 is refused");
}

bool ReadsWhatItWrites(const std::string& schema_file) {
  const std::string path = "consumer" + KelProjectDatabase::XML_FILE_EXT;
  KelProjectDatabase written;
  written.CreateNewProjectDatabase("consumer");
  written.AddTimingConstraintFile("consumer" + KelProjectDatabase::SDC_FILE_EXT);
  projectdb::ExportProjectDataDurably(written, path);

  bool schema_is_there = true;
  Diag::GlobalInst().SetHandler([&schema_is_there](const Diag::DiagStorage& message) {
    if (message.type() != Diag::MessageType::kInfo) schema_is_there = false;
  });
  KelProjectDatabase read;
  const bool is_read = read.LoadProjectData(path, schema_file);
  Diag::GlobalInst().SetHandler({});
  return Expect(is_read, "the project file can be loaded") &&
         Expect(schema_is_there, "the schema is where the library says") &&
         Expect(read.GetProjectName() == "consumer", "the project has its name") &&
         Expect(read.GetProjectSoftwareVersion() == KEL_VERSION_NO, "the version is the library's");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  try {
    return ReceivesMessages() && CatchesTheSuitesException() && ReadsWhatItWrites(argv[1]) ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "consumer: " << error.what() << '\n';
    return 1;
  }
}
