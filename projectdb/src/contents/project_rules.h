#pragma once

#include <projectdb/project_contents.h>

namespace projectdb {

/// Requires that an object can hold the contents and give them back as they are.
/// @exception std::invalid_argument, with the dotted key in its text, if not
void RequireProject(const ProjectContents& contents);

}  // namespace projectdb
