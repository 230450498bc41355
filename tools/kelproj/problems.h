#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include <projectdb/check.h>

namespace kelproj {

/// "warning" or "error".
const char* SeverityName(projectdb::ProblemSeverity severity);

/// Writes each problem of the file as one line FILE:LINE:COLUMN: SEVERITY: MESSAGE, without the
/// numbers that are not known.
void WriteProblems(std::ostream& out, const std::string& file,
                   const std::vector<projectdb::FileProblem>& problems);

}  // namespace kelproj
