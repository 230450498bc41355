#pragma once

#include <vector>

#include <projectdb/records.h>

namespace projectdb {

/// Requires that no load of these processes would make them something else.
/// @param processes by their ProcType
/// @exception Failure if one has the name of another or of a section, or if a parameter is stored
///            under another name than its own or has a value that does not go with its type
void RequireLoadable(const std::vector<FlowProcess>& processes);

}  // namespace projectdb
