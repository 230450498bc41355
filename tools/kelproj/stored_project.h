#pragma once

#include <functional>
#include <string>
#include <vector>

#include <projectdb/check.h>
#include <projectdb/project_contents.h>

#include "console.h"

namespace kelproj {

/// Requires that something can be read from the path.
/// @exception Trouble that says what it is instead: nothing, a directory, a file that may not be
///            read
void RequireReadable(const std::string& path);

/// Requires that a project file may have the name.
/// @exception Trouble if it ends in anything else
void RequireProjectFileName(const std::string& path);

bool HasError(const std::vector<projectdb::FileProblem>& problems);

/// The project of a file, whose problems are listed on the console.
/// @exception Trouble if the file cannot be read or does not load whole
projectdb::ProjectContents ReadProject(const std::string& file, const Console& console);

/// What a save needs of the directory of a file, and of the file if it is there.
/// @exception Trouble that says which of them may not be written
void RequireWritable(const std::string& path);

/// What every command that changes a project is given.
struct ChangedFile {
  std::string path;
  bool despite_errors = false;  ///< What of the file does not load is lost then.
};

/// What a project file would hold, if it may be changed. What a save would not keep is told on the
/// console.
/// @param name of the bytes in messages
/// @exception Trouble if they do not load, or if they have errors by a load or the installed
///            schema and are not to be changed despite them
projectdb::ProjectContents ParseToChange(const std::string& bytes, const std::string& name,
                                         bool despite_errors, const Console& console);

/// Which form a changed file is given.
struct ChangedForm {
  bool keep_stamps = false;
  bool canonical = false;  ///< Whether a file that says the same in another form is written anew.
};

/// Changes the project of a file and saves it, in canonical order and under the file's lock, for
/// which it waits. What of the file is not kept is told on the console. A file that would say the
/// same is not written.
/// @param change throws if there is nothing to be saved
/// @exception Trouble if the file cannot be read, or if it has errors by a load or the installed
///            schema and is not to be changed despite them
void ChangeProject(const ChangedFile& file, const Console& console,
                   const std::function<void(projectdb::ProjectContents&)>& change,
                   const ChangedForm& form = {});

/// Does the same for a change of values, and warns on the console of those that deserve a look.
void ChangeValues(const ChangedFile& file, const Console& console,
                  const std::function<void(projectdb::ProjectContents&)>& change);

}  // namespace kelproj
