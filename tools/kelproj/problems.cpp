#include "problems.h"

#include <ostream>

#include "console.h"

namespace kelproj {
namespace {

std::string Number(std::uint64_t number) { return number == 0 ? "" : ":" + std::to_string(number); }

}  // namespace

const char* SeverityName(projectdb::ProblemSeverity severity) {
  return severity == projectdb::ProblemSeverity::kError ? "error" : "warning";
}

void WriteProblems(std::ostream& out, const std::string& file,
                   const std::vector<projectdb::FileProblem>& problems) {
  for (const projectdb::FileProblem& problem : problems) {
    out << Printable(file) << Number(problem.line) << Number(problem.column) << ": "
        << SeverityName(problem.severity) << ": " << Printable(problem.message) << '\n';
  }
}

}  // namespace kelproj
