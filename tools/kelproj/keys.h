#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <projectdb/project_contents.h>

namespace kelproj {

/// A single value of a project, by its dotted key.
struct Key {
  using Reader = std::function<std::optional<std::string>(const projectdb::ProjectContents&)>;
  using Writer = std::function<void(projectdb::ProjectContents&, const std::string& value,
                                    std::optional<projectdb::ParameterType> type)>;

  Reader read;   ///< Gives nothing if the project has no such value.
  Writer write;  ///< Throws Trouble if the value is refused; empty if the value cannot be set.
  bool has_type = false;  ///< Whether a type may be given with the value.
};

/// @exception Trouble if no project can have such a value
Key FindKey(const std::string& text);

/// The keys that every project has.
std::vector<std::string> FixedKeys();

/// What keys there are, for people.
std::string KeysHelp();

/// The texts that name a parameter's type, "none" among them.
std::vector<std::string> ParameterTypeNames();

/// The type of one of those names.
projectdb::ParameterType ParameterTypeFromName(const std::string& name);

}  // namespace kelproj
