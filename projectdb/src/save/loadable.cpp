#include "save/loadable.h"

#include <algorithm>
#include <cstddef>

#include <fmt/format.h>
#include <projectdb/vocabulary.h>

#include "base/failure.h"
#include "project_db/format.h"

namespace projectdb {
namespace {

// A process under the name of another, or of a section, would be read as that and change it.
void RequireOwnName(const FlowProcess& process, std::size_t type) {
  const auto is_its_name = [&process](const Name& name) { return process.name == name.narrow; };
  if (is_its_name(format::kProcesses[type])) return;
  if (std::any_of(format::kProcesses.begin(), format::kProcesses.end(), is_its_name) ||
      std::any_of(format::kSections.begin(), format::kSections.end(), is_its_name)) {
    throw Failure(fmt::format("the flow process {:?} is named {:?}", kFlowProcesses[type].name,
                              process.name));
  }
}

// What a caller changed through a pointer into a map may be something that no load would give back.
void RequireLoadableParameters(const FlowProcess& process) {
  for (const ParameterMap& map : process.parameter_maps) {
    for (const auto& [key, parameter] : map) {
      if (key != parameter.name) {
        throw Failure(
            fmt::format("the parameter {:?} is stored under the name {:?}", parameter.name, key));
      }
      if (!HasValueForItsType(parameter)) {
        throw Failure(fmt::format("the parameter {:?} has a value that does not go with its type",
                                  parameter.name));
      }
    }
  }
}

}  // namespace

void RequireLoadable(const std::vector<FlowProcess>& processes) {
  for (std::size_t type = 0; type < processes.size(); ++type) {
    RequireOwnName(processes[type], type);
    RequireLoadableParameters(processes[type]);
  }
}

}  // namespace projectdb
