#pragma once

#include <string>

#include <projectdb/project_db.h>

namespace fuzz {

// The project as text: two projects are the same if their texts are. Hash order does not show. No
// lock is taken.

/// Every field of memory, to the last.
std::string Describe(const projectdb::KelProjectDatabase& database);

/// What a project file gives back of the project from which it was written.
/// @param database that project, or the one that was read from the file
/// @param written that project: its processes and maps of names outside the format do not come back
std::string DescribeForFile(const projectdb::KelProjectDatabase& database,
                            const projectdb::KelProjectDatabase& written);

/// Whether all processes and maps that hold something have names that a load accepts.
bool HasOnlyNamesOfTheFormat(const projectdb::KelProjectDatabase& database);

/// Whether nothing in the project can be a reason not to export it: plain ASCII texts and names,
/// and parameters that every load accepts.
bool IsPlain(const projectdb::KelProjectDatabase& database);

}  // namespace fuzz
