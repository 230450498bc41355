#include "shown_terms.h"

#include <algorithm>

namespace kelproj {
namespace {

using projectdb::Access;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;

template <typename Entry>
bool IsListOf(const ProjectTerm& term) {
  return std::holds_alternative<Access<ProjectContents, std::vector<Entry>>>(term.access);
}

int RankOf(const ProjectTerm& term) {
  if (!term.file_ending) return 0;
  if (IsListOf<projectdb::DesignFile>(term)) return 1;
  return IsListOf<projectdb::IP>(term) ? 3 : 2;
}

}  // namespace

std::vector<ProjectTerm> ShownTerms() {
  const auto terms = projectdb::ProjectTerms();
  std::vector<ProjectTerm> shown(terms.begin(), terms.end());
  std::stable_sort(shown.begin(), shown.end(), [](const ProjectTerm& a, const ProjectTerm& b) {
    return RankOf(a) < RankOf(b);
  });
  return shown;
}

}  // namespace kelproj
