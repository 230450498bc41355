#pragma once

#include <string>

#include <projectdb/project_contents.h>

namespace kelproj {

/// Puts what a JSON text has of a project, in the form of ToJson, into the project. A text, a list,
/// the info attributes or a parameter map that stands in it replaces all that was there; the rest
/// stays. The stamps and the directory are not those of the text: every writing and every load
/// makes them anew. What a load keeps is kept, however odd, such as a file of another ending than
/// its list has.
/// @exception Trouble, with the place, if the text is no JSON or has what no project file holds
void ApplyJson(const std::string& text, projectdb::ProjectContents& project);

}  // namespace kelproj
