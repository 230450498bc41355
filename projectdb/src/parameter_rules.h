#pragma once

#include <projectdb/records.h>

namespace projectdb {

/// Whether a parameter may be kept: a switch has no value, every other parameter has one.
inline bool HasValueForItsType(const Parameter& parameter) {
  return parameter.value.empty() == (parameter.type == e_noarg);
}

}  // namespace projectdb
