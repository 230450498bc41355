#pragma once

#include <string>

#include <projectdb/project_contents.h>

#include "random_input.h"

namespace differential {

/// A schema of project files with defaulted, fixed and ID-typed attributes.
std::string SchemaWithDefaults();

/// A project file with much that no export writes.
std::string RandomFile(RandomInput& input);

/// The file with some bytes changed.
std::string Damaged(std::string bytes, RandomInput& input);

projectdb::ProjectContents RandomContents(RandomInput& input);

}  // namespace differential
