#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include <kel/diag.h>

#include "bare.h"
#include "generator.h"
#include "testing/xml_platform.h"

// The most memory that one piece of work takes in a process of its own:
//   peak_memory load|bare_load|bare_load_without_text FILE SCHEMA      SCHEMA may be ""
//   peak_memory export|bare_export|bare_export_of_utf8 FILE COUNT     COUNT design files
namespace {

using projectdb::KelProjectDatabase;

// In bytes. The resource usage of the process would not do: it starts with what the parent had.
long PeakMemory() {
  std::ifstream status("/proc/self/status");
  const std::string title = "VmHWM:";
  for (std::string word; status >> word;) {
    long kilobytes = 0;
    if (word == title && status >> kilobytes) return kilobytes * 1024;
  }
  throw std::runtime_error("the system does not tell the peak memory");
}

void Load(const std::string& file, const std::string& schema) {
  KelProjectDatabase database;
  if (!database.LoadProjectData(file, schema)) throw std::runtime_error("cannot load " + file);
}

void Export(const std::string& file, const std::string& count) {
  KelProjectDatabase database;
  bench::FillDatabase(database, std::stoul(count));
  database.ExportProjectData(file);
}

void BareLoad(const std::string& file, const std::string& schema) {
  bench::bare::Parse(file, schema);
}

void BareLoadWithoutText(const std::string& file, const std::string& schema) {
  bench::bare::Parse(file, schema, bench::bare::TextBetweenTags::kLeftOut);
}

template <typename Text>
void BareExport(const std::string& file, const std::string& count) {
  bench::bare::Export(bench::MakeBareProject<Text>(std::stoul(count)), file);
}

const std::map<std::string, std::function<void(const std::string&, const std::string&)>> kWork = {
    {"load", Load},
    {"bare_load", BareLoad},
    {"bare_load_without_text", BareLoadWithoutText},
    {"export", Export},
    {"bare_export", BareExport<std::u16string>},
    {"bare_export_of_utf8", BareExport<std::string>}};

int Run(int argument_count, char** arguments) {
  if (argument_count != 4 || kWork.count(arguments[1]) == 0) {
    std::cerr << "usage: peak_memory WORK FILE SCHEMA-OR-COUNT\n";
    return 2;
  }
  Diag::GlobalInst().SetHandler([](const Diag::DiagStorage&) {});
  const test_support::XmlPlatform platform;
  kWork.at(arguments[1])(arguments[2], arguments[3]);
  std::cout << PeakMemory() << '\n';
  return 0;
}

}  // namespace

int main(int argument_count, char** arguments) {
  try {
    return Run(argument_count, arguments);
  } catch (const std::exception& exception) {
    std::cerr << exception.what() << '\n';
    return 1;
  }
}
