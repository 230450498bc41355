#pragma once

#include <vector>

#include <projectdb/check.h>
#include <projectdb/project_contents.h>

namespace kelproj {

/// What a load of a project file keeps as it stands and that deserves a look all the same: a file
/// twice in a list, a file of another ending than its list has, an absolute name of a file below
/// the project's directory, two IP instances of one name, a parameter's value that is none of its
/// type or that no tool takes, a file or parameter without a name.
std::vector<projectdb::FileProblem> ContentWarnings(const projectdb::ProjectContents& project);

/// The HDL files below the project's directory that no list of it names, hidden directories aside.
std::vector<projectdb::FileProblem> UnlistedFiles(const projectdb::ProjectContents& project);

}  // namespace kelproj
