#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <projectdb/check.h>
#include <projectdb/compare.h>
#include <projectdb/merge.h>
#include <projectdb/project_contents.h>
#include <nlohmann/json.hpp>

namespace kelproj {

/// Members in the order in which they are given.
using Json = nlohmann::ordered_json;

/// A project, with each value where its dotted key says.
Json ToJson(const projectdb::ProjectContents& project);

/// A list of differences; what was added has no member "before", what was removed no "after".
Json ToJson(const std::vector<projectdb::ProjectDifference>& differences);

/// A list of conflicts; what is not there on a side is no member "base", "ours" or "theirs".
Json ToJson(const std::vector<projectdb::MergeConflict>& conflicts);

/// A list of problems, with their line and column as far as they are known.
Json ToJson(const std::vector<projectdb::FileProblem>& problems);

/// Writes the value, indented; text that is not UTF-8 with replacement characters.
void WriteJson(std::ostream& out, const Json& value);

}  // namespace kelproj
