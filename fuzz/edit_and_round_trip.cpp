// Takes the bytes as operations on one project, each with its arguments, and then exports it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <kel/diag.h>
#include <kel/exception.h>
#include <projectdb/project_db.h>
#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/util/XMLException.hpp>

#include "checks.h"
#include "memory_file.h"
#include "record_input.h"
#include "round_trip.h"
#include "testing/dom_document.h"
#include "testing/project_loading.h"
#include "testing/temporary_directory.h"
#include "testing/xml_platform.h"

namespace {

using fuzz::Require;
using projectdb::DesignFile;
using projectdb::FlowProcess;
using projectdb::KelProjectDatabase;
using projectdb::Parameter;
using projectdb::ParameterMap;
using projectdb::ParameterType;
using projectdb::ProcType;
using xercesc::DOMElement;

// The files of this process. The XML library stays in use: starting it takes longer than the rest.
struct Files {
  test_support::XmlPlatform platform;
  test_support::TemporaryDirectory directory;
  fuzz::MemoryFile loaded{directory / "loaded.xml"};
  fuzz::MemoryFile exported{directory / "exported.xml"};
};

// What the operations work on, and where their arguments come from.
struct Run : fuzz::RecordInput {
  Run(std::string_view bytes, Files& files_of_process)
      : fuzz::RecordInput(bytes), files(files_of_process) {}

  /// Files take long, so an input gets a few only.
  bool MayUseFile() { return files_left-- > 0; }

  Files& files;
  KelProjectDatabase database;
  int files_left = 4;
};

using Operation = void (*)(Run&);

// Runs an action that may end in an exception of the given kind, and in no other.
template <typename Exception, typename Action>
void Allowing(Action action) {
  try {
    action();
  } catch (
      const Exception&) {  // NOLINT(bugprone-empty-catch): one of the two ends that it may have
  }
}

// Forms of operations.

template <void (KelProjectDatabase::*set)(const std::string&)>
void Set(Run& run) {
  (run.database.*set)(run.Text());
}

template <bool (KelProjectDatabase::*add)(const Parameter&)>
void AddRecord(Run& run) {
  (run.database.*add)(run.OneParameter());
}

template <bool (KelProjectDatabase::*add)(const std::string&, const std::string&, ParameterType)>
void AddTyped(Run& run) {
  const Parameter parameter = run.OneParameter();
  (run.database.*add)(parameter.name, parameter.value, parameter.type);
}

template <bool (KelProjectDatabase::*add)(const std::string&, const std::string&)>
void AddPair(Run& run) {
  const std::string name = run.Text();
  (run.database.*add)(name, run.Text());
}

template <bool (KelProjectDatabase::*add)(const std::vector<Parameter>&)>
void AddList(Run& run) {
  (run.database.*add)(run.Parameters());
}

// Lifecycle.

void Setup(Run& run) {
  const bool had_project = run.database.IsProjectDatabaseExist();
  Require(run.database.SetupProjectDatabase() != had_project, "a second project is set up");
}

void Create(Run& run) {
  const bool had_project = run.database.IsProjectDatabaseExist();
  Require(run.database.CreateNewProjectDatabase(run.Text()) != had_project,
          "a second project is created");
}

void Clean(Run& run) {
  run.database.CleanProjectDatabase();
  Require(!run.database.IsProjectDatabaseExist(), "a project is left after cleaning");
}

// Files.

void AddDesignFile(Run& run) {
  const DesignFile file = run.OneFile();
  run.database.AddDesignRTLFile(file.name, file.version, file.library);
}

void AddDesignFiles(Run& run) {
  auto files = run.DesignFiles();
  run.database.AddDesignRTLFile(files);
}

void AddTestBench(Run& run) {
  const std::string name = run.Text();
  run.database.AddSimulationTestBenchFile(name, run.Text());
}

void AddTestBenches(Run& run) {
  auto files = run.DesignFiles();
  run.database.AddSimulationTestBenchFile(files);
}

void AddMiscellaneous(Run& run) { run.database.AddMiscellaneousFile(run.Text()); }

void AddMiscellaneousList(Run& run) {
  auto names = run.Texts();
  run.database.AddMiscellaneousFile(names);
}

// Names that are not UTF-8, and names whose status cannot be read.
template <typename Action>
void AllowingBadNames(Action action) {
  Allowing<std::range_error>([&] { Allowing<std::filesystem::filesystem_error>(action); });
}

void AddConstraint(Run& run) {
  AllowingBadNames([&] { run.database.AddTimingConstraintFile(run.Text()); });
}

void AddConstraints(Run& run) {
  AllowingBadNames([&] { run.database.AddTimingConstraintFile(run.Texts()); });
}

void SetInterfaceConstraint(Run& run) {
  const std::string name = run.Text();
  const std::string former = run.database.GetInterfaceConstraint();
  bool stored = false;
  Allowing<std::range_error>([&] { stored = run.database.SetInterfaceConstraint(name); });
  Require(run.database.GetInterfaceConstraint() == (stored ? name : former),
          "another interface constraint is stored");
}

// Attributes.

void AddAttribute(Run& run) {
  const std::string name = run.Text();
  Require(run.database.AddProjectInfoAttribute(name, run.Text()) ==
              run.database.IsProjectDatabaseExist(),
          "an attribute is refused");
}

void InsertAttribute(Run& run) {
  const std::string name = run.Text();
  run.database.InsertOrAssignProjectAttribute(name, run.Text());
}

// Flow processes.

void SetProcessName(Run& run) {
  const ProcType type = run.Process();
  const std::string name = run.Text();
  run.database.SetFlowProcessName(type, name == "e_noarg" ? nullptr : name.c_str());
}

void SetExecutable(Run& run) {
  const ProcType type = run.Process();
  const std::string name = run.Text();
  run.database.SetFlowProcessExecutableName(type, name);
  const std::string stored = run.database.GetFlowProcessExecutableName(type);
  Require(stored == (run.database.GetFlowProcess(type) ? name : ""), "another tool is stored");
}

void AddMap(Run& run) {
  const ProcType type = run.Process();
  const std::string name = run.Text();
  const ParameterMap* map = run.database.AddFlowProcessParameterMap(type, name);
  Require(run.database.FindFlowProcessParameterMap(type, name) == map, "a map is not found");
}

void InsertIntoMap(Run& run) {
  const ProcType type = run.Process();
  ParameterMap* map = run.database.FindFlowProcessParameterMap(type, run.Text());
  const std::string key = run.Text();
  const Parameter parameter = run.OneParameter();
  if (map) KelProjectDatabase::InsertOrAssignParameterToMap(*map, key, parameter);
}

void AddParameter(Run& run) {
  const ProcType type = run.Process();
  std::string map_name = run.Text();
  const Parameter parameter = run.OneParameter();
  const bool added = run.database.AddFlowProcessParameter(type, map_name, parameter);
  const auto stored = run.database.GetFlowProcessParameter(type, map_name, parameter.name);
  Require(!added || (stored && stored->value == parameter.value && stored->type == parameter.type),
          "another parameter is stored");
}

void AddTypedParameter(Run& run) {
  const ProcType type = run.Process();
  std::string map_name = run.Text();
  const Parameter parameter = run.OneParameter();
  run.database.AddFlowProcessParameter(type, std::move(map_name), parameter.name, parameter.value,
                                       parameter.type);
}

void AddParameters(Run& run) {
  const ProcType type = run.Process();
  std::string map_name = run.Text();
  run.database.AddFlowProcessParameterList(type, std::move(map_name), run.Parameters());
}

// What callers can do through the pointers that they are given.

void ChangeProcess(Run& run) {
  FlowProcess* process = run.database.GetFlowProcess(run.Process());
  if (!process) return;
  process->name = run.Text();
  process->tool_name = run.Text();
  process->parameters.push_back(run.OneParameter());
}

void ChangeMap(Run& run) {
  const ProcType type = run.Process();
  ParameterMap* map = run.database.FindFlowProcessParameterMap(type, run.Text());
  if (map) map->insert_or_assign(run.Text(), run.OneParameter());
}

void ChangeMapIndex(Run& run) {
  FlowProcess* process = run.database.GetFlowProcess(run.Process());
  if (!process) return;
  if (process->parameter_maps.size() < 10) process->parameter_maps.emplace_back();
  process->parameter_map_index[run.Text()] = static_cast<std::int16_t>(run.Number());
}

void EraseFromMap(Run& run) {
  const ProcType type = run.Process();
  ParameterMap* map = run.database.FindFlowProcessParameterMap(type, run.Text());
  if (map) map->erase(run.Text());
}

// Getters.

void GetProperties(Run& run) {
  const KelProjectDatabase& database = run.database;
  const std::vector<std::string> texts = {
      database.GetProjectName(),
      database.GetProjectCurrentPath(),
      database.GetProjectSoftwareVersion(),
      database.GetProjectLastModifyTime(),
      database.GetDeviceFamily(),
      database.GetDeviceModel(),
      database.GetDeviceTimingModel(),
      database.GetDesignTopModuleName(),
      database.GetDesignTopVHDLArchitecture(),
      database.GetInterfaceConstraint(),
      database.GetSynthesisExecutableName(),
      database.GetPlaceAndRouteExecutableName(),
      database.GetBitstreamGenerateExecutableName(),
  };
  for (const std::string& text : texts) {
    Require(text.empty() || database.IsProjectDatabaseExist(), "there is a text without a project");
  }
}

void GetAttribute(Run& run) {
  const std::string name = run.Text();
  std::string value = "untouched";
  const bool found = run.database.GetProjectInfoAttribute(name, value);
  Require(found || value == "untouched", "an attribute that is missing changes the value");
}

void GetFileLists(Run& run) {
  using Getter = void (KelProjectDatabase::*)(std::vector<std::string>&) const;
  constexpr std::array<Getter, 4> kGetters = {&KelProjectDatabase::GetSimulationTestBenchFileList,
                                              &KelProjectDatabase::GetMiscellaneousFileList,
                                              &KelProjectDatabase::GetTimingConstraintFileList,
                                              &KelProjectDatabase::GetIpSrcFileList};
  for (const Getter getter : kGetters) {
    std::vector<std::string> paths = {"first"};
    Allowing<std::range_error>([&] { (run.database.*getter)(paths); });
    Require(paths.front() == "first", "a getter does not append");
    for (std::size_t i = 1; i < paths.size(); ++i) {
      Require(fuzz::StartsWith(paths[i], "/"), "a path is not absolute: " + paths[i]);
    }
  }
  std::vector<DesignFile> files;
  Allowing<std::range_error>([&] { run.database.GetDesignFileList(files); });
  std::vector<projectdb::IP> instances;
  run.database.GetIpInstanceList(instances);
}

void GetParameters(Run& run) {
  const ProcType type = run.Process();
  const std::string map_name = run.Text();
  const std::string name = run.Text();
  std::vector<Parameter> parameters;
  run.database.GetFlowProcessParameterList(type, map_name, parameters);
  const auto parameter = run.database.GetFlowProcessParameter(type, map_name, name);
  const std::string value = run.database.GetFlowProcessParameterValue(type, map_name, name);
  Require(value == (parameter ? parameter->value : ""), "a parameter has two values");
  Require(!parameter || !parameters.empty(), "a parameter is not listed");
}

void GetToolParameters(Run& run) {
  const KelProjectDatabase& database = run.database;
  const std::string name = run.Text();
  std::vector<Parameter> parameters;
  database.GetSynthesisParameterList(parameters);
  database.GetSynthesisVerilogDefineParameterList(parameters);
  database.GetSynthesisVerilogMacroList(parameters);
  database.GetPlaceAndRouteParameterList(parameters);
  database.GetBitstreamGenerateParameterList(parameters);
  database.GetDebuggerParameterList(parameters);
  std::size_t size = database.GetSynthesisParameterValue(name).size() +
                     database.GetSynthesisVerilogDefineParameterValue(name).size() +
                     database.GetSynthesisVerilogMacroValue(name).size() +
                     database.GetPlaceAndRouteParameterValue(name).size() +
                     database.GetBitstreamGenerateParameterValue(name).size() +
                     database.GetDebuggerParameterValue(name).size();
  if (const auto parameter = database.GetPlaceAndRouteParameter(name)) size += 1;
  if (const auto parameter = database.GetDebuggerParameter(name)) size += 1;
  Require(size == 0 || !parameters.empty(), "a parameter of a tool is not listed");
}

void GetThreadCounts(Run& run) {
  const std::string text = run.Text();
  const auto default_number = static_cast<std::uint64_t>(run.Number());
  const auto check = [&](std::uint64_t count) {
    Require(count != 0 && (count <= 65535 || count == default_number), "a thread count is wrong");
  };
  try {
    check(KelProjectDatabase::ParseMaxThreads(text, default_number));
    check(run.database.GetSynthesisMaxThreads(default_number));
    check(run.database.GetPnRMaxThreads(default_number));
  } catch (const kel_exception&) {
    Require(default_number == 0, "a thread count is refused");
  }
}

void ConvertTypes(Run& run) {
  const ParameterType type = run.Type();
  const std::string text = KelProjectDatabase::getParameterTypeStr(type);
  const ParameterType back = KelProjectDatabase::getParameterTypeFromStr(text);
  Require(text.empty() ? back == projectdb::kNoParameterType : back == type,
          "a type's text is another type's");
  const std::string other = run.Text();
  const ParameterType from_other = KelProjectDatabase::getParameterTypeFromStr(other);
  Require(from_other == projectdb::kNoParameterType ||
              KelProjectDatabase::getParameterTypeStr(from_other) == other,
          "a text is a type's that has another");
}

// Project files.

void Load(Run& run, const std::string& bytes, const std::string& schema) {
  if (!run.MayUseFile()) return;
  run.files.loaded.Write(bytes);
  fuzz::LoadAndCheck(run.database, run.files.loaded.path(), schema);
}

void LoadBytes(Run& run) { Load(run, run.Text(), ""); }

void LoadSections(Run& run) {
  const std::string sections = run.Text();
  Load(run, test_support::ProjectXml(sections, run.Text()), "");
}

void LoadCompleteProject(Run& run) {
  Load(run, test_support::CompleteProjectXml(), fuzz::SchemaPath());
}

void LoadWithStrangeSchema(Run& run) {
  const std::string bytes = run.Text();
  const std::string schema = run.Text();
  Load(run, test_support::ProjectXml(bytes), run.files.directory / "no_" + schema);
}

void LoadFromStrangePath(Run& run) {
  if (!run.MayUseFile()) return;
  fuzz::LoadAndCheck(run.database, run.files.directory / "no_" + run.Text() + ".xml", "");
}

void Export(Run& run) {
  if (run.MayUseFile()) fuzz::ExportAndCheck(run.database, run.files.exported);
}

void ExportAndMerge(Run& run) {
  if (!run.MayUseFile() || !fuzz::ExportAndCheck(run.database, run.files.exported)) return;
  const auto loaded = fuzz::LoadAndCheck(run.database, run.files.exported.path(), "");
  Require(loaded != fuzz::Loaded::kRefused, "an exported file cannot be merged");
}

// Paths that nothing can be written to; the empty one is passed over.
void ExportToStrangePath(Run& run) {
  for (const std::string& path : {std::string(), run.files.directory / "no/" + run.Text()}) {
    try {
      run.database.ExportProjectData(path);
      Require(path.empty() || !run.database.IsProjectDatabaseExist(),
              "an export into no directory works");
    } catch (const xercesc::XMLException&) {
      Require(!path.empty() && run.database.IsProjectDatabaseExist(), "no export fails");
    } catch (const std::runtime_error& error) {
      // what() ends at a zero in the path.
      const std::string start = "Failed writing XML file " + path + ": ";
      Require(fuzz::StartsWith(error.what(), start.c_str()),
              std::string("an export fails with ") + error.what());
    }
  }
}

// Writers of DOM elements, each with a parent, a namespace and a prefix of which any may be null.

std::optional<std::u16string> WideText(Run& run) {
  if (run.Byte() % 4U == 0) return std::nullopt;
  std::u16string text;
  for (const char c : run.Text()) text += static_cast<char16_t>(static_cast<unsigned char>(c));
  return text;
}

template <typename Write>
void WriteElement(Run& run, Write write) {
  const test_support::DomDocument document;
  DOMElement* const parent = run.Byte() % 8U == 0 ? nullptr : document.root();
  const auto uri = WideText(run);
  const auto prefix = WideText(run);
  bool written = false;
  try {
    written = write(parent, uri ? uri->c_str() : nullptr, prefix ? prefix->c_str() : nullptr);
  } catch (const std::runtime_error&) {
    Require(parent, "a writer throws without a parent");
  }
  Require(parent || !written, "an element is written to no parent");
  Require(written == (document.root()->getFirstChild() != nullptr),
          "a writer appends something else than it says");
}

// For writers that take one record, and for those that take a tag first.
template <auto write, typename Record>
void WriteRecord(Run& run, Record record) {
  WriteElement(run, [&](DOMElement* parent, const char16_t* uri, const char16_t* prefix) {
    return (run.database.*write)(parent, record, uri, prefix);
  });
}
template <auto write, typename Record>
void WriteTaggedRecord(Run& run, Record record) {
  const std::string tag = run.Text();
  WriteElement(run, [&](DOMElement* parent, const char16_t* uri, const char16_t* prefix) {
    return (run.database.*write)(parent, tag.c_str(), record, uri, prefix);
  });
}

void WriteDeviceInfo(Run& run) {
  std::string family = run.Text();
  std::string device = run.Text();
  std::string model = run.Text();
  WriteRecord<&KelProjectDatabase::AppendDeviceInfoToDOMElement>(
      run, projectdb::DeviceInfo(family, device, model));
}

void WriteDesignInfo(Run& run) {
  projectdb::DesignInfo info;
  info.top_module = run.Text();
  info.top_vhdl_arch = run.Text();
  info.def_veri_version = run.Text();
  info.def_vhdl_version = run.Text();
  info.design_files = run.DesignFiles();
  WriteRecord<&KelProjectDatabase::AppendDesignInfoToDOMElement>(run, info);
}

void WriteConstraint(Run& run) {
  projectdb::DesignConstraint constraint;
  constraint.sdc_files = run.Texts();
  constraint.inter_file = run.Text();
  WriteRecord<&KelProjectDatabase::AppendDesignConstraintToDOMElement>(run, constraint);
}

void WriteIsf(Run& run) {
  projectdb::DesignISF isf;
  isf.isf_files = run.Texts();
  WriteRecord<&KelProjectDatabase::AppendISFToDOMElement>(run, isf);
}

void WriteDesignFileList(Run& run) {
  auto files = run.DesignFiles();
  const std::string list_tag = run.Text();
  const std::string item_tag = run.Text();
  WriteElement(run, [&](DOMElement* parent, const char16_t* uri, const char16_t* prefix) {
    return run.database.AppendDesignFileListToDOMElement(parent, list_tag.c_str(), item_tag.c_str(),
                                                         files, uri, prefix);
  });
}

void WriteDesignFile(Run& run) {
  WriteTaggedRecord<&KelProjectDatabase::AppendDesignFileToDOMElement>(run, run.OneFile());
}

void WriteIpInfo(Run& run) {
  projectdb::IPInfo info;
  info.ips.push_back(run.OneIp());
  WriteRecord<&KelProjectDatabase::AppendIPInfoToDOMElement>(run, info);
}

void WriteIp(Run& run) {
  WriteTaggedRecord<&KelProjectDatabase::AppendIPInstanceToDOMElement>(run, run.OneIp());
}

void WriteIpFile(Run& run) {
  WriteTaggedRecord<&KelProjectDatabase::AppendIPSrcFileToDOMElement>(
      run, projectdb::IPSrcFile{run.Text()});
}

void WriteParameter(Run& run) {
  const Parameter parameter = run.OneParameter();
  const std::string tag = run.Text();
  WriteElement(run, [&](DOMElement* parent, const char16_t* uri, const char16_t* prefix) {
    return run.database.AppendProcessParameterToDOMElement(parent, parameter, tag.c_str(), uri,
                                                           prefix);
  });
}

void WriteProcess(Run& run) {
  FlowProcess process;
  process.name = run.Text();
  process.tool_name = run.Text();
  process.parameter_maps.emplace_back();
  for (const Parameter& parameter : run.Parameters()) {
    process.parameter_maps.front().insert_or_assign(parameter.name, parameter);
  }
  process.parameter_map_index[run.Text()] = static_cast<std::int16_t>(run.Number());
  WriteRecord<&KelProjectDatabase::AppendFlowProcessToDOMElement>(run, process);
}

void WriteSynthesis(Run& run) {
  projectdb::SynthesisProcess process{run.Text(), run.Text(), {}, {}, {}};
  process.params = run.Parameters();
  process.dyn_params = run.Parameters();
  process.def_macros = run.Parameters();
  WriteRecord<&KelProjectDatabase::AppendSynthesisProcessToDOMElement>(run, process);
}

using Database = KelProjectDatabase;

// By the byte that stands for it: files in the corpus go by these positions, so a new operation
// comes last.
constexpr std::array<Operation, 81> kOperations = {
    // From 0.
    Setup, Create, Clean, Export, ExportAndMerge, ExportToStrangePath, LoadBytes, LoadSections,
    LoadCompleteProject, LoadWithStrangeSchema, LoadFromStrangePath,
    // From 11.
    Set<&Database::SetProjectName>, Set<&Database::SetProjectCurrentPath>,
    Set<&Database::SetProjectSoftwareVersion>, Set<&Database::SetDeviceFamily>,
    Set<&Database::SetDeviceModel>, Set<&Database::SetDeviceTimingModel>,
    Set<&Database::SetDesignTopModuleName>, Set<&Database::SetDesignTopVHDLArchitecture>,
    // From 19.
    AddDesignFile, AddDesignFiles, AddTestBench, AddTestBenches, AddMiscellaneous,
    AddMiscellaneousList, AddConstraint, AddConstraints, SetInterfaceConstraint, AddAttribute,
    InsertAttribute,
    // From 30.
    SetProcessName, SetExecutable, AddMap, InsertIntoMap, AddParameter, AddTypedParameter,
    AddParameters, ChangeProcess, ChangeMap, ChangeMapIndex, EraseFromMap,
    // From 41.
    Set<&Database::SetSynthesisExecutableName>, AddRecord<&Database::AddSynthesisParameter>,
    AddTyped<&Database::AddSynthesisParameter>, AddList<&Database::AddSynthesisParameterList>,
    AddRecord<&Database::AddSynthesisVerilogDefineParameter>,
    AddPair<&Database::AddSynthesisVerilogDefineParameter>,
    AddList<&Database::AddSynthesisVerilogDefineParameterList>,
    AddRecord<&Database::AddSynthesisVerilogMacro>, AddPair<&Database::AddSynthesisVerilogMacro>,
    AddList<&Database::AddSynthesisVerilogMacroList>,
    // From 51.
    Set<&Database::SetPlaceAndRouteExecutableName>, AddRecord<&Database::AddPlaceAndRouteParameter>,
    AddTyped<&Database::AddPlaceAndRouteParameter>,
    AddList<&Database::AddPlaceAndRouteParameterList>,
    // From 55.
    Set<&Database::SetBitstreamGenerateExecutableName>,
    AddRecord<&Database::AddBitstreamGenerateParameter>,
    AddTyped<&Database::AddBitstreamGenerateParameter>,
    AddList<&Database::AddBitstreamGenerateParameterList>,
    // From 59.
    AddRecord<&Database::AddDebuggerParameter>, AddTyped<&Database::AddDebuggerParameter>,
    AddList<&Database::AddDebuggerParameterList>,
    // From 62.
    GetProperties, GetAttribute, GetFileLists, GetParameters, GetToolParameters, GetThreadCounts,
    ConvertTypes,
    // From 69.
    WriteDeviceInfo, WriteDesignInfo, WriteConstraint, WriteIsf, WriteDesignFileList,
    WriteDesignFile, WriteIpInfo, WriteIp, WriteIpFile, WriteParameter, WriteProcess,
    WriteSynthesis};

constexpr int kMostOperations = 200;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Files files;
  static const auto former_handler = Diag::GlobalInst().SetHandler([](const Diag::DiagStorage&) {});
  Run run({reinterpret_cast<const char*>(data), size}, files);
  for (int count = 0; count < kMostOperations && !run.empty(); ++count) {
    const std::size_t operation = run.Byte() % 128U;
    if (operation < kOperations.size()) kOperations.at(operation)(run);
  }
  fuzz::ExportAndCheck(run.database, files.exported);
  return 0;
}
