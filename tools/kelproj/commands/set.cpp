#include <cstddef>
#include <utility>

#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "keys.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::ParameterType;
using projectdb::ProjectContents;

struct Setting {
  Key key;
  std::string value;
};

Setting SettingOf(const std::string& key_text, const std::string& value) {
  Setting setting{FindKey(key_text), value};
  if (!setting.key.write) throw Trouble(key_text + " cannot be set");
  return setting;
}

std::vector<Setting> SettingsOf(const SetArguments& arguments) {
  std::vector<Setting> settings = {SettingOf(arguments.key, arguments.value)};
  for (std::size_t i = 0; i + 1 < arguments.more.size(); i += 2) {
    settings.push_back(SettingOf(arguments.more[i], arguments.more[i + 1]));
  }
  return settings;
}

std::optional<ParameterType> TypeOf(const SetArguments& arguments, const Key& key) {
  if (!arguments.type) return std::nullopt;
  if (!arguments.more.empty()) throw Trouble("--type goes with one key alone");
  if (!key.has_type) throw Trouble(arguments.key + " has no type: only parameters have one");
  return ParameterTypeFromName(*arguments.type);
}

}  // namespace

ExitStatus Run(const SetArguments& arguments, const Console& console) {
  const std::vector<Setting> settings = SettingsOf(arguments);
  const std::optional<ParameterType> type = TypeOf(arguments, settings.front().key);
  ChangeValues(arguments.file, console, [&](ProjectContents& project) {
    for (const auto& [key, value] : settings) key.write(project, value, type);
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
