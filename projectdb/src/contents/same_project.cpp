#include "contents/same_project.h"

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

#include <projectdb/vocabulary.h>

namespace projectdb {
namespace {

template <typename Record, typename Terms>
bool AreSame(const Record& a, const Record& b, const Terms& terms);

bool IsSame(const std::string& a, const std::string& b) { return a == b; }

bool IsSame(const InfoAttributes& a, const InfoAttributes& b) { return a == b; }

bool IsSame(const IPSrcFile& a, const IPSrcFile& b) { return a.name == b.name; }

bool IsSame(const DesignFile& a, const DesignFile& b) { return AreSame(a, b, DesignFileTerms()); }

bool IsSame(const IP& a, const IP& b) { return AreSame(a, b, IPTerms()); }

// Types without a text are all the same in a file.
bool IsSame(const Parameter& a, const Parameter& b) {
  return a.name == b.name && a.value == b.value && TextOf(a.type) == TextOf(b.type);
}

bool IsSame(const SortedParameters& a, const SortedParameters& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const auto& x, const auto& y) {
    return x.first == y.first && IsSame(x.second, y.second);
  });
}

// No file keeps a map without parameters.
bool IsSame(const ParameterMaps& a, const ParameterMaps& b) {
  const auto has_all_of = [](const ParameterMaps& maps, const ParameterMaps& others) {
    return std::all_of(others.begin(), others.end(), [&maps](const auto& other) {
      const auto map = maps.find(other.first);
      return other.second.empty() || (map != maps.end() && IsSame(map->second, other.second));
    });
  };
  return has_all_of(a, b) && has_all_of(b, a);
}

template <typename Record>
bool IsSame(const std::vector<Record>& a, const std::vector<Record>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const Record& x, const Record& y) { return IsSame(x, y); });
}

template <typename Record, typename Terms>
bool AreSame(const Record& a, const Record& b, const Terms& terms) {
  return std::all_of(terms.begin(), terms.end(), [&](const auto& term) {
    return term.kind != TermKind::kValue ||
           std::visit([&](const auto& access) { return IsSame(access(a), access(b)); },
                      term.access);
  });
}

}  // namespace

bool HaveSameProject(const ProjectContents& a, const ProjectContents& b) {
  return AreSame(a, b, ProjectTerms()) &&
         std::equal(a.flow_processes.begin(), a.flow_processes.end(), b.flow_processes.begin(),
                    b.flow_processes.end(),
                    [](const auto& x, const auto& y) { return AreSame(x, y, FlowProcessTerms()); });
}

}  // namespace projectdb
