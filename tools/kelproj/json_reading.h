#pragma once

#include <string>

#include <projectdb/project_contents.h>

namespace kelproj {

/// Puts what a JSON text has of a project, in the form of ToJson, into the project. A text, a list,
/// the info attributes or a parameter map that stands in it replaces all that was there; the rest
/// stays. The stamps and the directory are not those of the text: every writing and every load
/// makes them anew.
/// @exception Trouble, with the dotted path of the place, if the text has what no project has
void ApplyJson(const std::string& text, projectdb::ProjectContents& project);

}  // namespace kelproj
