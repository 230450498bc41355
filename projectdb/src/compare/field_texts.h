#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>

#include <projectdb/vocabulary.h>

/// The values of a project as the texts by which it is compared and merged.
namespace projectdb {

using OptionalText = std::optional<std::string>;

/// A file that is written or loaded elsewhere holds the same project.
inline bool IsCompared(const ProjectTerm& term) {
  return term.kind != TermKind::kStamp && term.kind != TermKind::kDirectory;
}

/// How the keys of a flow process begin: its name, or its number if it is one too many.
std::string FlowProcessKey(std::size_t process);

OptionalText TextIn(const InfoAttributes& attributes, const std::string& name);
OptionalText TextIn(const SortedParameters& parameters, const std::string& key);

/// Null has no text, which is not the same as an empty one.
template <typename Record>
OptionalText FieldIn(const Record* record, const Access<Record, std::string>& access) {
  return record ? OptionalText(access(*record)) : std::nullopt;
}

/// Null has an empty list or map.
template <typename Record, typename Field>
const Field& FieldIn(const Record* record, const Access<Record, Field>& access) {
  static const Field none;
  return record ? access(*record) : none;
}

/// The parameters of a map; none if there is no such map.
const SortedParameters& MapOf(const ParameterMaps& maps, const std::string& name);

/// The keys of all the maps.
template <typename... Maps>
std::set<std::string> KeysOf(const Maps&... maps) {
  std::set<std::string> keys;
  const auto add = [&keys](const auto& map) {
    for (const auto& entry : map) keys.insert(entry.first);
  };
  (add(maps), ...);
  return keys;
}

}  // namespace projectdb
