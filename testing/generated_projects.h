#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck.h>

#include <projectdb/project_contents.h>

/// Projects as chance has them, with few different texts, so that they repeat and share much.
namespace test_support {

rc::Gen<std::string> Text();
rc::Gen<projectdb::DesignFile> OneFile();
rc::Gen<projectdb::Parameter> OneParameter();

/// Gives some parts of a project another content.
void ChangeParts(projectdb::ProjectContents& project, std::size_t most);

/// Sets, adds, removes, repeats, moves or changes some values and entries of a project.
void EditProject(projectdb::ProjectContents& project, std::size_t most);

/// Some project and another that was made of it.
std::pair<projectdb::ProjectContents, projectdb::ProjectContents> PickTwoProjects();

/// What a project holds, each value and each entry of a list as its fields.
using Rows = std::vector<std::vector<std::string>>;

/// All that counts in a comparison.
Rows RowsOf(const projectdb::ProjectContents& project);

/// All that there is: also the stamps, the directory and maps without parameters.
Rows AllRowsOf(const projectdb::ProjectContents& project);

}  // namespace test_support
