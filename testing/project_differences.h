#pragma once

#include <string>
#include <vector>

#include <projectdb/compare.h>
#include <projectdb/project_contents.h>
#include <projectdb/project_db.h>

/// The way in which tests compare projects: by the lines in which they differ. Only where a fault
/// of the comparison must not hide itself, and where maps without parameters count, do they compare
/// the rows of generated_projects.h.
namespace test_support {

using Lines = std::vector<std::string>;

/// 'design.files[0]: "a.v" -> nothing'
Lines Show(const std::vector<projectdb::ProjectDifference>& differences);

/// All differences but those of the stamps.
Lines DifferencesButStamps(const projectdb::ProjectContents& before,
                           const projectdb::ProjectContents& after);

/// All differences: those that CompareProjects gives, of the directory and of the stamps, which
/// stand as the attributes that a file has for them.
Lines AllDifferences(const projectdb::ProjectContents& before,
                     const projectdb::ProjectContents& after);
Lines AllDifferences(const projectdb::ProjectContents& before,
                     const projectdb::KelProjectDatabase& after);

/// What a project holds but its directory, "device.family: Orrin", without the empty values;
/// "no project" if there is none.
Lines ProjectLines(const projectdb::KelProjectDatabase& database);

}  // namespace test_support
