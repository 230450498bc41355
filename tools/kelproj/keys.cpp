#include "keys.h"

#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

#include <projectdb/vocabulary.h>

#include "console.h"
#include "named_files.h"
#include "places.h"
#include "platform/file_names.h"
#include "suggestions.h"

namespace kelproj {
namespace {

using projectdb::Access;
using projectdb::FlowProcessContents;
using projectdb::FlowProcessName;
using projectdb::FlowProcessTerm;
using projectdb::kFlowProcesses;
using projectdb::kInfoAttributesKey;
using projectdb::Parameter;
using projectdb::ParameterMapName;
using projectdb::ParameterType;
using projectdb::ProcType;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;
using projectdb::TermKind;

constexpr char kNoTypeName[] = "none";

std::string TypeName(ParameterType type) {
  const std::string name = projectdb::TextOf(type);
  return name.empty() ? kNoTypeName : name;
}

using ProjectText = Access<ProjectContents, std::string>;
using FlowProcessText = Access<FlowProcessContents, std::string>;

// The way to a value that is asked for by its key; null if the term is about something else.
const ProjectText* TextOf(const ProjectTerm& term) {
  return term.kind == TermKind::kDirectory ? nullptr : std::get_if<ProjectText>(&term.access);
}

const FlowProcessText* TextOf(const FlowProcessTerm& term) {
  return term.kind == TermKind::kValue ? std::get_if<FlowProcessText>(&term.access) : nullptr;
}

bool IsInfo(const ProjectTerm& term) {
  return std::holds_alternative<Access<ProjectContents, projectdb::InfoAttributes>>(term.access);
}

// The rest of the text behind a first part and a dot; nothing if it begins otherwise or is empty.
std::optional<std::string> RestBehind(std::string_view part, std::string_view text) {
  if (text.size() < part.size() + 2 || text.substr(0, part.size()) != part ||
      text[part.size()] != '.') {
    return std::nullopt;
  }
  return std::string(text.substr(part.size() + 1));
}

std::string StoredText(const ProjectTerm& term, const std::string& value,
                       const ProjectContents& project) {
  if (!term.file_ending || value.empty()) return value;
  std::string name = StoredName(value, PathFrom(project.current_path));
  RequireEnding(term, name);
  return name;
}

Key TextKey(const ProjectTerm& term, const ProjectText& access) {
  if (term.kind != TermKind::kValue) return {access, {}, {}};
  const auto write = [term, access](ProjectContents& project, const std::string& value,
                                    std::optional<ParameterType>) {
    access(project) = StoredText(term, value, project);
  };
  const auto empty = [access](ProjectContents& project) {
    access(project).clear();
    return true;
  };
  return {access, write, empty};
}

Key InfoKey(const std::string& name) {
  const auto read = [name](const ProjectContents& project) -> std::optional<std::string> {
    const auto attribute = project.info_attributes.find(name);
    if (attribute == project.info_attributes.end()) return std::nullopt;
    return attribute->second;
  };
  const auto write = [name](ProjectContents& project, const std::string& value,
                            std::optional<ParameterType>) {
    if (!projectdb::IsInfoAttributeName(name)) {
      throw Trouble("a project does not keep " + MemberPlace(kInfoAttributesKey, name));
    }
    project.info_attributes[name] = value;
  };
  const auto remove = [name](ProjectContents& project) {
    return project.info_attributes.erase(name) > 0;
  };
  return {read, write, remove};
}

template <typename Project>
auto& ProcessOf(Project& project, ProcType type) {
  return project.flow_processes.at(static_cast<std::size_t>(type));
}

Key ProcessTextKey(ProcType type, const FlowProcessText& access) {
  const auto read = [type, access](const ProjectContents& project) {
    return access(ProcessOf(project, type));
  };
  const auto write = [type, access](ProjectContents& project, const std::string& value,
                                    std::optional<ParameterType>) {
    access(ProcessOf(project, type)) = value;
  };
  const auto empty = [type, access](ProjectContents& project) {
    access(ProcessOf(project, type)).clear();
    return true;
  };
  return {read, write, empty};
}

/// Where a parameter is kept.
struct ParameterPlace {
  ProcType process;
  std::string map;
  std::string name;
};

std::string KeyOf(const ParameterPlace& place) {
  const char* const process = kFlowProcesses.at(static_cast<std::size_t>(place.process)).name;
  return MemberPlace(MemberPlace(process, place.map), place.name);
}

void WriteParameter(ProjectContents& project, const ParameterPlace& place, const std::string& value,
                    std::optional<ParameterType> asked_type) {
  projectdb::SortedParameters& map = ProcessOf(project, place.process).parameter_maps[place.map];
  const auto stored = map.find(place.name);
  const ParameterType own_type =
      stored == map.end() ? TypeOfNewParameter(place.map) : stored->second.type;
  const Parameter parameter(place.name, value, asked_type.value_or(own_type));
  if (const auto reason = WhyRefused(parameter)) {
    const char* const way = value.empty() ? "; --type e_noarg stores it without one" : "";
    throw Trouble(KeyOf(place) + ": " + *reason + way);
  }
  map.insert_or_assign(place.name, parameter);
}

Key ParameterKey(const ParameterPlace& place) {
  const auto read = [place](const ProjectContents& project) -> std::optional<std::string> {
    const auto& maps = ProcessOf(project, place.process).parameter_maps;
    const auto map = maps.find(place.map);
    if (map == maps.end()) return std::nullopt;
    const auto parameter = map->second.find(place.name);
    if (parameter == map->second.end()) return std::nullopt;
    return parameter->second.value;
  };
  const auto write = [place](ProjectContents& project, const std::string& value,
                             std::optional<ParameterType> type) {
    WriteParameter(project, place, value, type);
  };
  const auto remove = [place](ProjectContents& project) {
    return ProcessOf(project, place.process).parameter_maps[place.map].erase(place.name) > 0;
  };
  return {read, write, remove, true};
}

std::optional<Key> ProcessKey(ProcType type, const std::string& text) {
  for (const FlowProcessTerm& term : projectdb::FlowProcessTerms()) {
    const FlowProcessText* const access = TextOf(term);
    if (access && text == term.key) return ProcessTextKey(type, *access);
  }
  for (const ParameterMapName& map : projectdb::MapsOf(type)) {
    if (const auto name = RestBehind(map.name, text)) return ParameterKey({type, map.name, *name});
  }
  return std::nullopt;
}

// The keys of the project's texts, those of one group on lines of their own.
std::string GroupedKeys() {
  constexpr std::size_t kWidth = 60;
  std::string text;
  std::string line;
  std::string_view group;
  for (const ProjectTerm& term : projectdb::ProjectTerms()) {
    if (!TextOf(term)) continue;
    const bool fits = term.group == group && line.size() + term.key.size() < kWidth;
    if (!fits) text += std::exchange(line, "");
    line.append(line.empty() ? "\n  " : ", ").append(term.key);
    group = term.group;
  }
  return text + line;
}

std::string KeyPattern(std::string key, const std::string& description) {
  constexpr std::size_t kColumn = 29;
  key.resize(kColumn, ' ');
  return "\n  " + key + description;
}

std::string ParameterPattern(const ParameterMapName& map) {
  const bool is_of_every_process = std::string_view(map.name) == projectdb::kParameterMap;
  const std::string process =
      is_of_every_process ? "PROCESS" : kFlowProcesses[projectdb::e_synthesis].name;
  return KeyPattern(
      process + "." + map.name + ".NAME",
      std::string("a ") + map.title + (is_of_every_process ? " of a flow process" : ""));
}

// "a, b or c".
std::string ProcessNames() {
  std::string names;
  for (const FlowProcessName& process : kFlowProcesses) {
    const bool is_last = &process == &kFlowProcesses.back();
    names.append(names.empty() ? "" : (is_last ? " or " : ", ")).append(process.name);
  }
  return names;
}

// The fixed keys, and those that take the last part of the text for a name.
std::vector<std::string> KeysLike(const std::string& text) {
  std::vector<std::string> keys = FixedKeys();
  const std::size_t dot = text.find('.');
  if (dot == std::string::npos || text.back() == '.') return keys;
  keys.push_back(kInfoAttributesKey + text.substr(dot));
  const std::size_t second_dot = text.find('.', dot + 1);
  if (second_dot == std::string::npos) return keys;
  for (const FlowProcessName& process : kFlowProcesses) {
    for (const ParameterMapName& map : projectdb::MapsOf(process.type)) {
      keys.push_back(std::string(process.name) + "." + map.name + text.substr(second_dot));
    }
  }
  return keys;
}

std::string NoKey(const std::string& text) { return "\"" + text + "\" is no key of a project"; }

// Requires that a text which is a key but for the name at its end has that.
void RequireNameAtEnd(const std::string& text) {
  const auto refuse_nameless = [&text](const std::string& place, const std::string& what) {
    if (text == place + ".") {
      throw Trouble(NoKey(text) + "; the name of the " + what + " is missing");
    }
  };
  refuse_nameless(kInfoAttributesKey, "info attribute");
  for (const FlowProcessName& process : kFlowProcesses) {
    for (const ParameterMapName& map : projectdb::MapsOf(process.type)) {
      refuse_nameless(MemberPlace(process.name, map.name), map.title);
    }
  }
}

}  // namespace

Key FindKey(const std::string& text) {
  for (const ProjectTerm& term : projectdb::ProjectTerms()) {
    const ProjectText* const access = TextOf(term);
    if (access && text == term.key) return TextKey(term, *access);
    const auto name = IsInfo(term) ? RestBehind(term.key, text) : std::nullopt;
    if (name) return InfoKey(*name);
  }
  for (const FlowProcessName& process : kFlowProcesses) {
    const auto rest = RestBehind(process.name, text);
    const auto key = rest ? ProcessKey(process.type, *rest) : std::nullopt;
    if (key) return *key;
  }
  RequireNameAtEnd(text);
  throw Trouble(NoKey(text) + DidYouMean(text, KeysLike(text)));
}

std::vector<std::string> FixedKeys() {
  std::vector<std::string> keys;
  for (const ProjectTerm& term : projectdb::ProjectTerms()) {
    if (TextOf(term)) keys.emplace_back(term.key);
  }
  for (const FlowProcessName& process : kFlowProcesses) {
    for (const FlowProcessTerm& term : projectdb::FlowProcessTerms()) {
      if (TextOf(term)) keys.push_back(std::string(process.name).append(".").append(term.key));
    }
  }
  return keys;
}

std::vector<NamedParameter> ParametersOf(const ProjectContents& project) {
  std::vector<NamedParameter> named;
  // Contents that no file gave may have no flow processes.
  for (std::size_t i = 0; i < project.flow_processes.size(); ++i) {
    for (const auto& [map, parameters] : project.flow_processes[i].parameter_maps) {
      const std::string key = MemberPlace(kFlowProcesses.at(i).name, map);
      for (const auto& [name, parameter] : parameters) {
        named.push_back({MemberPlace(key, name), key, parameter});
      }
    }
  }
  return named;
}

std::string KeysHelp() {
  std::string help = "Keys:" + GroupedKeys() +
                     KeyPattern(MemberPlace(kInfoAttributesKey, "NAME"), "an info attribute") +
                     KeyPattern(MemberPlace("PROCESS", projectdb::kToolNameKey),
                                "the executable of a flow process");
  for (const ParameterMapName& map : projectdb::kParameterMaps) help += ParameterPattern(map);
  return help + "\nPROCESS is " + ProcessNames() + ".";
}

ParameterType TypeOfNewParameter(std::string_view map) {
  // Macros and defines have no type, as in the library's own operations.
  return map == projectdb::kParameterMap ? projectdb::e_string : projectdb::kNoParameterType;
}

std::optional<std::string> WhyRefused(const Parameter& parameter) {
  if (projectdb::HasValueForItsType(parameter)) return std::nullopt;
  return "a parameter of type " + TypeName(parameter.type) +
         (parameter.type == projectdb::e_noarg ? " takes no value" : " needs a value");
}

std::vector<std::string> ParameterTypeNames() {
  const auto& texts = projectdb::kParameterTypeTexts;
  std::vector<std::string> names(texts.begin(), texts.end());
  names.emplace_back(kNoTypeName);
  return names;
}

ParameterType ParameterTypeFromName(const std::string& name) {
  return projectdb::ParameterTypeOf(name);
}

std::vector<std::string> BoolTexts() {
  return {"true", "false", "on", "off", "yes", "no", "0", "1"};
}

}  // namespace kelproj
