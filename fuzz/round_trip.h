#pragma once

#include <string>

#include <projectdb/project_db.h>

#include "memory_file.h"

namespace fuzz {

/// How a load ended.
enum class Loaded { kWhole, kInPart, kRefused };

/// Loads a file and requires that the load ends as it may: with true, with false, or with
/// std::runtime_error; and that a project which was not loaded is the same as before.
Loaded LoadAndCheck(projectdb::KelProjectDatabase& database, const std::string& path,
                    const std::string& schema);

/// Exports a project and requires that the file, if the export reports it as written, is read back
/// to the same project, with and without the schema, if no part of it is read as something else;
/// that a project which cannot be exported leaves the file as it was; and that the project is the
/// same as before in any case.
/// @return whether the file was written
bool ExportAndCheck(const projectdb::KelProjectDatabase& database, MemoryFile& file);

/// The path of the format's schema.
const std::string& SchemaPath();

}  // namespace fuzz
