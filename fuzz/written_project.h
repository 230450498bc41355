#pragma once

#include <string>

#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

namespace fuzz {

/// What a project file gives back of the project from which it was written.
/// @param database that project, or the one that was read from the file
/// @param written that project: its processes and maps of names outside the format do not come back
projectdb::ProjectContents ContentsForFile(const projectdb::KelProjectDatabase& database,
                                           const projectdb::KelProjectDatabase& written);

/// Requires two projects to be the same; shows the differences.
void RequireSame(const projectdb::ProjectContents& expected,
                 const projectdb::ProjectContents& actual, const std::string& what);

/// Whether all processes and maps that hold something have names that a load accepts.
bool HasOnlyNamesOfTheFormat(const projectdb::KelProjectDatabase& database);

/// Whether a load reads nothing of what is written as something else: no process has the name of
/// another or of a section, every parameter stands under its name and has a value for its type.
bool IsReadAsItIs(const projectdb::KelProjectDatabase& database);

/// Whether nothing in the project can be a reason not to export it: plain ASCII texts and names.
bool IsPlain(const projectdb::KelProjectDatabase& database);

}  // namespace fuzz
