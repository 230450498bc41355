#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <projectdb/project_contents.h>

namespace kelproj {

/// A single value of a project, by its dotted key.
struct Key {
  using Reader = std::function<std::optional<std::string>(const projectdb::ProjectContents&)>;
  using Writer = std::function<void(projectdb::ProjectContents&, const std::string& value,
                                    std::optional<projectdb::ParameterType> type)>;

  /// Gives whether there was something to remove.
  using Remover = std::function<bool(projectdb::ProjectContents&)>;

  Reader read;  ///< Gives nothing if the project has no such value.
  /// Throws Trouble if the value is refused; empty if the value cannot be set. A value that names a
  /// file is as the user names it from where he stands.
  Writer write;
  /// Empties the value, or removes it if a project need not have one; empty if it cannot be set.
  Remover remove;
  bool has_type = false;  ///< Whether a type may be given with the value.
};

/// @exception Trouble if no project can have such a value
Key FindKey(const std::string& text);

/// The keys that every project has.
std::vector<std::string> FixedKeys();

/// A parameter of a project.
struct NamedParameter {
  std::string key;  ///< Such as "synthesis.param.effort".
  std::string map;  ///< The key of the map that has it, such as "synthesis.param".
  const projectdb::Parameter& parameter;
};

/// All parameters of the project, which are its own. The order is that of its flow processes, and
/// by name within each map.
std::vector<NamedParameter> ParametersOf(const projectdb::ProjectContents& project);

/// What keys there are, for people.
std::string KeysHelp();

/// The type of a parameter in the map if none is asked for.
projectdb::ParameterType TypeOfNewParameter(std::string_view map);

/// Why a project does not keep the parameter; nothing if it does.
std::optional<std::string> WhyRefused(const projectdb::Parameter& parameter);

/// The texts that name a parameter's type, "none" among them.
std::vector<std::string> ParameterTypeNames();

/// The type of one of those names.
projectdb::ParameterType ParameterTypeFromName(const std::string& name);

/// The values that parameters of type e_bool have.
std::vector<std::string> BoolTexts();

}  // namespace kelproj
