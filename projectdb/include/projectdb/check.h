#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kel/export.h>

namespace projectdb {

/// How much a problem of a project file matters.
enum class ProblemSeverity {
  kWarning,  ///< The file loads; something in it is not kept, or deserves a look.
  kError     ///< Loading the file gives false or throws.
};

/// One problem of a project file.
struct FileProblem {
  ProblemSeverity severity;
  std::uint64_t line;    ///< From 1; 0 if the problem lies in no line, such as a missing file.
  std::uint64_t column;  ///< From 1, in UTF-16 units (most characters take one); 0 if unknown.
  std::string message;   ///< One line, UTF-8, without trailing newline.
};

/// Lists what is wrong with a project file, in the order of its lines, by the rules by which
/// KelProjectDatabase::LoadProjectData reads it into a new object: that gives true exactly if no
/// problem is of severity error. Touches no project and posts no messages. May run in any thread.
///
/// A problem of an element stands where its start tag begins, one that the XML parser reports where
/// the parser was then, and one of a schema where the file names it, or in no line if the caller
/// does. A schema that only the file names and that cannot be found is no problem.
///
/// @param xml_file native path of the file
/// @param schema_file native path of the XML schema, or "" as with LoadProjectData; one that does
///        not exist is a warning
/// @exception std::bad_alloc
KEL_EXPORT std::vector<FileProblem> CheckProjectFile(const std::string& xml_file,
                                                     const std::string& schema_file);

}  // namespace projectdb
