#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include <projectdb/records.h>

/// How the parameter maps of a flow process are stored.
namespace projectdb {

/// A map's position is kept in a signed 16-bit index.
inline constexpr std::size_t kMaximumMaps =
    static_cast<std::size_t>(std::numeric_limits<std::int16_t>::max()) + 1;

/// The parameter map at a position that the index of a process gives; null if there is none. The
/// index is open to callers, who may write any position into it.
template <typename Process>
auto* ParameterMapAt(Process& process, std::int16_t position) {
  const auto map = static_cast<std::size_t>(position);
  return map < process.parameter_maps.size() ? &process.parameter_maps[map] : nullptr;
}

/// Calls visit(name, map) for each map of a process that holds parameters, in the order of its
/// index. A map without parameters is nothing that a file keeps.
template <typename Visit>
void ForEachFilledParameterMap(const FlowProcess& process, Visit visit) {
  for (const auto& [name, position] : process.parameter_map_index) {
    const ParameterMap* map = ParameterMapAt(process, position);
    if (map && !map->empty()) visit(name, *map);
  }
}

}  // namespace projectdb
