#pragma once

#include <projectdb/project_contents.h>

namespace projectdb {

/// Requires that an object can hold the contents and give them back as they are.
/// @exception std::invalid_argument, with the dotted key in its text, if not
void RequireProject(const ProjectContents& contents);

/// Requires besides that no project file would be read as something else: each process has its own
/// name or none, and the maps that the format gives it; each constraint and ISF file has a name.
/// @exception std::invalid_argument, with the dotted key in its text, if not
void RequireProjectOfTheFormat(const ProjectContents& contents);

}  // namespace projectdb
