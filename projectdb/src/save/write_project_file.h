#pragma once

#include <string>

#include <projectdb/project_file.h>

#include "check/read_project_file.h"

namespace projectdb {

/// WriteProjectFile for a file that was read, and that this process should have locked: another one
/// by now, or one that it has not locked, is a changed file.
bool WriteOver(const std::string& path, const FileReading& former, const ProjectContents& contents,
               const WriteOptions& options);

}  // namespace projectdb
