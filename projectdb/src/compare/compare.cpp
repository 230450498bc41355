#include <projectdb/compare.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include <projectdb/vocabulary.h>

#include "compare/field_texts.h"
#include "compare/sequence_alignment.h"
#include "contents/record_text.h"

namespace projectdb {
namespace {

using Alignment = std::vector<AlignedEntries>;
using Texts = std::vector<std::string>;

/// The entries of a list, each seen in three ways.
struct List {
  Texts texts;  ///< What is shown of an entry.
  Texts names;  ///< What an entry is likely to keep when it is changed.
  Texts keys;   ///< The same if the entries count as the same.
};

template <typename Record>
List ListOf(const std::vector<Record>& records) {
  List list;
  for (const Record& record : records) {
    list.texts.push_back(TextOf(record));
    list.names.push_back(NameOf(record));
  }
  list.keys = list.texts;
  return list;
}

/// The entries of two lists from one place to another.
struct Stretch {
  AlignedEntries start;
  AlignedEntries end;

  bool IsInBoth() const { return start.before < end.before && start.after < end.after; }
};

/// What is in both lists before, between and behind the pairs.
std::vector<Stretch> Gaps(const Alignment& pairs, const Stretch& whole) {
  std::vector<Stretch> gaps;
  AlignedEntries start = whole.start;
  const auto add = [&](const AlignedEntries& end) {
    const Stretch gap{start, end};
    if (gap.IsInBoth()) gaps.push_back(gap);
    start = {end.before + 1, end.after + 1};
  };
  std::for_each(pairs.begin(), pairs.end(), add);
  add(whole.end);
  return gaps;
}

Alignment AlignEqual(const Texts& before, const Texts& after, const Stretch& stretch) {
  const auto part = [](const Texts& texts, std::size_t start, std::size_t end) {
    std::vector<std::string_view> views;
    views.reserve(end - start);
    for (std::size_t i = start; i < end; ++i) views.emplace_back(texts[i]);
    return views;
  };
  Alignment pairs = AlignEqualEntries(part(before, stretch.start.before, stretch.end.before),
                                      part(after, stretch.start.after, stretch.end.after));
  for (AlignedEntries& pair : pairs) {
    pair.before += stretch.start.before;
    pair.after += stretch.start.after;
  }
  return pairs;
}

// The first with the first, the second with the second, until one of the lists has no more.
Alignment AlignInOrder(const Stretch& stretch) {
  Alignment pairs;
  for (AlignedEntries at = stretch.start; Stretch{at, stretch.end}.IsInBoth();
       ++at.before, ++at.after) {
    pairs.push_back(at);
  }
  return pairs;
}

// Side by side stand the entries that are the same; between these, those of the same name; and
// between these, whatever is there.
Alignment Align(const List& before, const List& after) {
  const Stretch whole{{0, 0}, {before.keys.size(), after.keys.size()}};
  Alignment all = AlignEqual(before.keys, after.keys, whole);
  for (const Stretch& gap : Gaps(all, whole)) {
    const Alignment same_names = AlignEqual(before.names, after.names, gap);
    all.insert(all.end(), same_names.begin(), same_names.end());
    for (const Stretch& rest : Gaps(same_names, gap)) {
      const Alignment others = AlignInOrder(rest);
      all.insert(all.end(), others.begin(), others.end());
    }
  }
  std::sort(all.begin(), all.end(),
            [](const AlignedEntries& a, const AlignedEntries& b) { return a.before < b.before; });
  return all;
}

/// Instances of names that both lists have once: they can be followed through a change.
std::set<std::string_view> NamesOfOneInstance(const std::vector<IP>& before,
                                              const std::vector<IP>& after) {
  std::map<std::string_view, std::pair<int, int>> counts;
  for (const IP& ip : before) ++counts[NameOf(ip)].first;
  for (const IP& ip : after) ++counts[NameOf(ip)].second;
  std::set<std::string_view> names;
  for (const auto& [name, count] : counts) {
    if (count == std::pair(1, 1)) names.insert(name);
  }
  return names;
}

// An instance that can be followed counts as the same whatever it holds. Its key is not one of the
// others, for these begin with other names.
List InstanceList(const std::vector<IP>& ips, const std::set<std::string_view>& followed) {
  List list = ListOf(ips);
  for (std::size_t i = 0; i < list.keys.size(); ++i) {
    if (followed.count(list.names[i]) != 0) list.keys[i] = QuotedText(list.names[i]);
  }
  return list;
}

/// Collects the differences between two projects.
class Comparison {
 public:
  void Compare(const ProjectContents& before, const ProjectContents& after) {
    for (const ProjectTerm& term : ProjectTerms()) {
      if (IsCompared(term)) CompareTerm("", term, &before, &after);
    }
    CompareProcesses(before.flow_processes, after.flow_processes);
  }

  const std::vector<ProjectDifference>& differences() const { return differences_; }

 private:
  template <typename Term, typename Record>
  void CompareTerm(std::string prefix, const Term& term, const Record* before,
                   const Record* after) {
    const std::string key = std::move(prefix.append(term.key));
    const auto compare = [&](const auto& access) {
      CompareFields(key, FieldIn(before, access), FieldIn(after, access));
    };
    std::visit(compare, term.access);
  }

  void CompareProcesses(const std::vector<FlowProcessContents>& before,
                        const std::vector<FlowProcessContents>& after) {
    for (std::size_t i = 0; i < std::max(before.size(), after.size()); ++i) {
      CompareProcess(FlowProcessKey(i), i < before.size() ? &before[i] : nullptr,
                     i < after.size() ? &after[i] : nullptr);
    }
  }

  void CompareProcess(const std::string& name, const FlowProcessContents* before,
                      const FlowProcessContents* after) {
    for (const FlowProcessTerm& term : FlowProcessTerms()) {
      CompareTerm(name + ".", term, before, after);
    }
  }

  void CompareFields(const std::string& what, const OptionalText& before,
                     const OptionalText& after) {
    if (before != after) differences_.push_back({what, "", before, after});
  }

  void CompareFields(const std::string& what, const InfoAttributes& before,
                     const InfoAttributes& after) {
    CompareTexts(what + ".", before, after);
  }

  void CompareFields(const std::string& prefix, const ParameterMaps& before,
                     const ParameterMaps& after) {
    for (const std::string& name : KeysOf(before, after)) {
      CompareTexts(prefix + MapKey(name) + ".", MapOf(before, name), MapOf(after, name));
    }
  }

  template <typename Map>
  void CompareTexts(const std::string& prefix, const Map& before, const Map& after) {
    for (const std::string& key : KeysOf(before, after)) {
      CompareFields(prefix + key, TextIn(before, key), TextIn(after, key));
    }
  }

  template <typename Entry>
  void CompareFields(const std::string& what, const std::vector<Entry>& before,
                     const std::vector<Entry>& after) {
    const List before_list = ListOf(before);
    const List after_list = ListOf(after);
    AddListDifferences(what, before_list, after_list, Align(before_list, after_list));
  }

  void CompareFields(const std::string& what, const std::vector<IP>& before,
                     const std::vector<IP>& after) {
    const std::set<std::string_view> followed = NamesOfOneInstance(before, after);
    const List before_list = InstanceList(before, followed);
    const List after_list = InstanceList(after, followed);
    const Alignment pairs = Align(before_list, after_list);
    AddListDifferences(what, before_list, after_list, pairs);
    for (const AlignedEntries& pair : pairs) {
      if (before_list.keys[pair.before] == after_list.keys[pair.after]) {
        CompareInstances(what, before[pair.before], after[pair.after]);
      }
    }
  }

  void CompareInstances(const std::string& what, const IP& before, const IP& after) {
    const std::string prefix = what + "." + NameOf(before) + ".";
    for (const IPTerm& term : IPTerms()) CompareTerm(prefix, term, &before, &after);
  }

  void AddListDifferences(const std::string& what, const List& before, const List& after,
                          const Alignment& pairs) {
    AlignedEntries next{0, 0};
    const auto add_unpaired = [&](const AlignedEntries& end) {
      for (; next.before < end.before; ++next.before) {
        Add(what, next.before, before.texts[next.before], std::nullopt);
      }
      for (; next.after < end.after; ++next.after) {
        Add(what, next.after, std::nullopt, after.texts[next.after]);
      }
    };
    for (const AlignedEntries& pair : pairs) {
      add_unpaired(pair);
      if (before.keys[pair.before] != after.keys[pair.after]) {
        Add(what, pair.before, before.texts[pair.before], after.texts[pair.after]);
      }
      next = {pair.before + 1, pair.after + 1};
    }
    add_unpaired({before.keys.size(), after.keys.size()});
  }

  void Add(const std::string& what, std::size_t place, OptionalText before, OptionalText after) {
    differences_.push_back({what, std::to_string(place), std::move(before), std::move(after)});
  }

  std::vector<ProjectDifference> differences_;
};

}  // namespace

std::vector<ProjectDifference> CompareProjects(const ProjectContents& before,
                                               const ProjectContents& after) {
  Comparison comparison;
  comparison.Compare(before, after);
  return comparison.differences();
}

std::vector<ProjectDifference> CompareProjects(const KelProjectDatabase& before,
                                               const KelProjectDatabase& after) {
  return CompareProjects(GetProjectContents(before), GetProjectContents(after));
}

}  // namespace projectdb
