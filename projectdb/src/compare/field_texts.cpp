#include "compare/field_texts.h"

#include "contents/record_text.h"

namespace projectdb {

std::string FlowProcessKey(std::size_t process) {
  return process < kFlowProcesses.size() ? kFlowProcesses.at(process).name
                                         : std::to_string(process);
}

OptionalText TextIn(const InfoAttributes& attributes, const std::string& name) {
  const auto entry = attributes.find(name);
  return entry == attributes.end() ? OptionalText() : entry->second;
}

OptionalText TextIn(const SortedParameters& parameters, const std::string& key) {
  const auto entry = parameters.find(key);
  return entry == parameters.end() ? OptionalText() : TextUnderKey(key, entry->second);
}

const SortedParameters& MapOf(const ParameterMaps& maps, const std::string& name) {
  static const SortedParameters empty;
  const auto map = maps.find(name);
  return map == maps.end() ? empty : map->second;
}

}  // namespace projectdb
