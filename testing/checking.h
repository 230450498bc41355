#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include <projectdb/check.h>

namespace test_support {

inline bool IsError(const projectdb::FileProblem& problem) {
  return problem.severity == projectdb::ProblemSeverity::kError;
}

/// Whether a check finds that the file loads with true.
inline bool CheckAccepts(const std::string& path, const std::string& schema) {
  const std::vector<projectdb::FileProblem> problems = projectdb::CheckProjectFile(path, schema);
  return std::none_of(problems.begin(), problems.end(), IsError);
}

}  // namespace test_support
