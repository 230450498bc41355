#pragma once

#include <projectdb/project_contents.h>

namespace projectdb {

/// Whether a file of the one project says what a file of the other does, stamps aside: where the
/// projects lie and what no file keeps, such as maps without parameters, does not count.
bool HaveSameProject(const ProjectContents& a, const ProjectContents& b);

}  // namespace projectdb
