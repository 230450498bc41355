#pragma once

#include <string>
#include <vector>

#include <projectdb/check.h>

#include "check/locating_parser.h"

namespace projectdb::check {

/// What is wrong with a project file, as far as it is found yet.
class ProblemList {
 public:
  /// @param message may have line breaks, of which its one line has none
  void Add(ProblemSeverity severity, Position position, std::string message);

  /// Adds an error that lies in no line.
  void AddError(std::string message) { Add(ProblemSeverity::kError, {}, std::move(message)); }

  /// In the order of their places.
  std::vector<FileProblem> Take();

 private:
  std::vector<FileProblem> problems_;
};

}  // namespace projectdb::check
