#include <cstddef>
#include <string>
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
  std::string key_text;
  Key key;
  std::string value;
};

bool HasEqualsSign(const std::string& text) { return text.find('=') != std::string::npos; }

constexpr char kTwoArguments[] = "; expected KEY VALUE, without =";

Key FindKeyOrSlip(const std::string& text) {
  try {
    return FindKey(text);
  } catch (const Trouble&) {
    if (!HasEqualsSign(text)) throw;
    throw Trouble("\"" + text + "\" is no key of a project" + kTwoArguments);
  }
}

Setting SettingOf(const std::string& key_text, const std::string& value) {
  Setting setting{key_text, FindKeyOrSlip(key_text), value};
  if (!setting.key.write) throw Trouble(key_text + " cannot be set");
  return setting;
}

// A new parameter with a "=" in its name is a slip. One that the project has may change.
void RequireNoSlip(const Setting& setting, const ProjectContents& project) {
  if (!HasEqualsSign(setting.key_text) || setting.key.read(project)) return;
  throw Trouble("\"" + setting.key_text + "\" is no key of this project" + kTwoArguments);
}

std::vector<Setting> SettingsOf(const SetArguments& arguments) {
  std::vector<Setting> settings = {SettingOf(arguments.key, arguments.value.value())};
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
    for (const Setting& setting : settings) {
      RequireNoSlip(setting, project);
      setting.key.write(project, setting.value, type);
    }
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
