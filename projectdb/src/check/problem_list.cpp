#include "check/problem_list.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "base/control_characters.h"

namespace projectdb::check {
namespace {

// What the parser says may quote a file, line breaks included.
std::string OneLine(std::string text) {
  const std::size_t end = text.find_last_not_of('\n') + 1;
  text.erase(end);
  std::replace_if(text.begin(), text.end(), IsControl, ' ');
  return text;
}

}  // namespace

void ProblemList::Add(ProblemSeverity severity, Position position, std::string message) {
  problems_.push_back({severity, position.line, position.column, OneLine(std::move(message))});
}

std::vector<FileProblem> ProblemList::Take() {
  std::stable_sort(problems_.begin(), problems_.end(), [](const auto& a, const auto& b) {
    return std::tie(a.line, a.column) < std::tie(b.line, b.column);
  });
  return std::move(problems_);
}

}  // namespace projectdb::check
