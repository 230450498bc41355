#pragma once

#include <vector>

#include <projectdb/vocabulary.h>

namespace kelproj {

/// The terms of a project in the order in which the program shows it: what is said of the project
/// as a whole, then the source files, the other files and the IP instances.
std::vector<projectdb::ProjectTerm> ShownTerms();

}  // namespace kelproj
