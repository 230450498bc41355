#pragma once

#include <functional>
#include <memory>
#include <string>

#include <projectdb/project_db.h>

#include "console.h"

namespace kelproj {

/// A new object that holds the file's project.
/// @exception Trouble if the file does not load whole, with the problems listed on the console
std::unique_ptr<projectdb::KelProjectDatabase> LoadProject(const std::string& file,
                                                           const Console& console);

/// Loads the project, changes it and saves it to the same file, in canonical order and under the
/// file's lock, for which it waits; what of the file is not kept is told on the console. A file
/// that does not load whole is never written, and neither is one that would say the same.
/// @param change throws if there is nothing to be saved
void ChangeProject(const std::string& file, const Console& console,
                   const std::function<void(projectdb::KelProjectDatabase&)>& change);

}  // namespace kelproj
