#pragma once

#include <cstddef>
#include <cstdint>

#include <projectdb/records.h>

namespace projectdb {

/// The parameter map at a position that the index of a process gives; null if there is none. The
/// index is open to callers, who may write any position into it.
template <typename Process>
auto* ParameterMapAt(Process& process, std::int16_t position) {
  const auto map = static_cast<std::size_t>(position);
  return map < process.parameter_maps.size() ? &process.parameter_maps[map] : nullptr;
}

}  // namespace projectdb
