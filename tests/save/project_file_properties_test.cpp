#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <projectdb/project_file.h>
#include <projectdb/vocabulary.h>
#include <rapidcheck/gtest.h>

#include "testing/file_state.h"
#include "testing/generated_projects.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/xml_platform.h"

namespace {

using namespace projectdb;
using namespace test_support;

SortedParameters Storable(const SortedParameters& parameters) {
  SortedParameters storable;
  for (const auto& [key, parameter] : parameters) {
    const std::string value = parameter.type == e_noarg ? "" : "=" + parameter.value;
    storable.emplace(key, Parameter(key, value, parameter.type));
  }
  return storable;
}

/// What can be stored of some project in an object.
ProjectContents Storable(ProjectContents project) {
  project.flow_processes.resize(kFlowProcesses.size());
  for (FlowProcessContents& process : project.flow_processes) {
    for (auto& [name, parameters] : process.parameter_maps) parameters = Storable(parameters);
  }
  project.info_attributes.erase("");
  return project;
}

/// All types that have no text are one in a file.
void ForgetUnknownTypes(ProjectContents& project) {
  for (FlowProcessContents& process : project.flow_processes) {
    for (auto& map : process.parameter_maps) {
      for (auto& entry : map.second) {
        entry.second.type = std::min(entry.second.type, kNoParameterType);
      }
    }
  }
}

/// What can be written of it to a file. Its maps come in the order of theirs.
ProjectContents Writable(const ProjectContents& project) {
  ProjectContents writable = Storable(project);
  for (const FlowProcessName& name : kFlowProcesses) {
    FlowProcessContents& process = writable.flow_processes.at(static_cast<std::size_t>(name.type));
    process.name = name.name;
    process.parameters.clear();
    std::map<std::string, SortedParameters> maps;
    auto given = process.parameter_maps.begin();
    for (const ParameterMapName& map : MapsOf(name.type)) {
      if (given == process.parameter_maps.end()) break;
      if (!given->second.empty()) maps[map.name] = given->second;
      ++given;
    }
    process.parameter_maps = std::move(maps);
  }
  // Any text will do for a value, but not for the name of an attribute.
  std::map<std::string, std::string> attributes;
  for (const auto& [name, value] : project.info_attributes) {
    attributes.emplace("info" + std::to_string(attributes.size()), name + value);
  }
  writable.info_attributes = std::move(attributes);
  for (auto* names : {&writable.design_constraint.sdc_files, &writable.design_isf.isf_files}) {
    names->erase(std::remove(names->begin(), names->end(), ""), names->end());
  }
  return writable;
}

ProjectContents PickProject() {
  ProjectContents project = CompleteProject("");
  ChangeParts(project, 20);
  return project;
}

RC_GTEST_PROP(AnyProjectFile, SetProjectContents_GivesThemBack, ()) {
  const ProjectContents project = Storable(PickProject());
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("former");
  SetProjectContents(database, project);
  RC_ASSERT(AllRowsOf(GetProjectContents(database)) == AllRowsOf(project));
}

RC_GTEST_PROP(AnyProjectFile, FormatProjectFile_LoadsWithTheSchemaAsTheSame, ()) {
  ProjectContents project = Writable(PickProject());
  const ProjectFile file = ParseProjectFile(FormatProjectFile(project, {true}), ShippedSchema());
  RC_ASSERT(file.problems.empty());
  RC_ASSERT(FormatProjectFile(*file.contents, {true}) == FormatProjectFile(project, {true}));
  project.current_path.clear();
  ForgetUnknownTypes(project);
  RC_ASSERT(AllRowsOf(*file.contents) == AllRowsOf(project));
}

RC_GTEST_PROP(AnyProjectFile, WriteProjectFile_OfWhatWasRead_ChangesNothing, ()) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  KelProjectDatabase database;
  SetProjectContents(database, Writable(PickProject()));
  database.ExportProjectData(path);
  const FileState before(path);
  RC_ASSERT(!WriteProjectFile(path, ReadProjectFile(path, "").contents.value()));
  RC_ASSERT(before == FileState(path));
}

RC_GTEST_PROP(AnyProjectFile, WriteProjectFile_Again_ChangesNothing, ()) {
  const XmlPlatform platform;
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  const ProjectContents project = Writable(PickProject());
  WriteOptions options;
  options.keep_stamps = *rc::gen::arbitrary<bool>();
  options.canonical = *rc::gen::arbitrary<bool>();
  RC_ASSERT(WriteProjectFile(path, project, options));
  const FileState before(path);
  RC_ASSERT(!WriteProjectFile(path, project, options));
  RC_ASSERT(before == FileState(path));
}

}  // namespace
