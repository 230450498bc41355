#pragma once

#include <string>

#include <projectdb/project_file.h>

namespace projectdb {

/// ReadProjectFile without a schema, even if the file names one that is there.
ProjectFile ReadWithoutSchema(const std::string& path);

}  // namespace projectdb
