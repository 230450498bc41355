#include <projectdb/merge.h>

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include <projectdb/vocabulary.h>

#include "compare/field_texts.h"
#include "compare/sequence_merge.h"
#include "compare/three_way_choice.h"
#include "contents/record_text.h"

namespace projectdb {
namespace {

using Place = std::optional<std::size_t>;

/// Null in a project that does not have the record.
template <typename Record>
using Records = Three<const Record*>;

/// A list as a merge looks at it.
template <typename Entry>
class MergedList {
 public:
  explicit MergedList(const std::vector<Entry>& entries) : entries_(entries) {
    for (const Entry& entry : entries) texts_.push_back(TextOf(entry));
    sequence_.entries.assign(texts_.begin(), texts_.end());
    for (const Entry& entry : entries) sequence_.names.emplace_back(NameOf(entry));
  }

  ~MergedList() = default;
  MergedList(const MergedList&) = delete;
  MergedList& operator=(const MergedList&) = delete;

  const MergeSequence& sequence() const { return sequence_; }

  const Entry* At(Place place) const { return place ? &entries_[*place] : nullptr; }

  std::optional<std::string_view> TextAt(Place place) const {
    return place ? std::optional(sequence_.entries[*place]) : std::nullopt;
  }

 private:
  const std::vector<Entry>& entries_;
  std::vector<std::string> texts_;
  MergeSequence sequence_;
};

OptionalText Copy(std::optional<std::string_view> text) {
  return text ? OptionalText(*text) : std::nullopt;
}

bool IsEmpty(const FlowProcessContents& process) {
  const auto terms = FlowProcessTerms();
  return std::all_of(terms.begin(), terms.end(), [&](const FlowProcessTerm& term) {
    return std::visit([&](const auto& access) { return access(process).empty(); }, term.access);
  });
}

/// Merges the parts of projects and collects the conflicts.
class Merging {
 public:
  ProjectContents Merge(const Records<ProjectContents>& projects) {
    ProjectContents merged;
    for (const ProjectTerm& term : ProjectTerms()) {
      if (IsCompared(term)) {
        MergeTerm("", term, projects, merged);
      } else {
        ChooseStamp(std::get<Access<ProjectContents, std::string>>(term.access), projects, merged);
      }
    }
    merged.flow_processes = MergeProcesses(projects);
    return merged;
  }

  std::vector<MergeConflict> TakeConflicts() { return std::move(conflicts_); }

 private:
  static void ChooseStamp(const Access<ProjectContents, std::string>& access,
                          const Records<ProjectContents>& projects, ProjectContents& merged) {
    const auto stamps = projects.Each([&](const auto* project) { return access(*project); });
    access(merged) = Chosen(Choose(stamps), stamps);
  }

  template <typename Term, typename Record>
  void MergeTerm(std::string prefix, const Term& term, const Records<Record>& records,
                 Record& merged) {
    const std::string key = std::move(prefix.append(term.key));
    const auto merge = [&](const auto& access) {
      const auto field_in = [&](const Record* record) -> decltype(auto) {
        return FieldIn(record, access);
      };
      access(merged) = MergeFields(key, records.Each(field_in));
    };
    std::visit(merge, term.access);
  }

  std::string MergeFields(const std::string& what, const Three<OptionalText>& texts) {
    return Chosen(Decide(what, texts), texts).value_or("");
  }

  InfoAttributes MergeFields(const std::string& what,
                             const Three<const InfoAttributes&>& attributes) {
    return MergeMaps(what + ".", attributes);
  }

  ParameterMaps MergeFields(const std::string& prefix, const Three<const ParameterMaps&>& maps) {
    ParameterMaps merged;
    for (const std::string& name : KeysOf(maps.base, maps.ours, maps.theirs)) {
      const auto map_of = [&](const ParameterMaps& all) -> const auto& { return MapOf(all, name); };
      SortedParameters parameters = MergeMaps(prefix + MapKey(name) + ".", maps.Each(map_of));
      const auto is_there =
          maps.Each([&](const ParameterMaps& all) { return all.count(name) != 0; });
      if (Chosen(Choose(is_there), is_there) || !parameters.empty()) {
        merged.emplace(name, std::move(parameters));
      }
    }
    return merged;
  }

  template <typename Map>
  Map MergeMaps(const std::string& prefix, const Three<const Map&>& maps) {
    Map merged;
    for (const std::string& key : KeysOf(maps.base, maps.ours, maps.theirs)) {
      const Choice choice =
          Decide(prefix + key, maps.Each([&](const Map& map) { return TextIn(map, key); }));
      const Map& chosen = Chosen(choice, maps);
      const auto entry = chosen.find(key);
      if (entry != chosen.end()) merged.insert(*entry);
    }
    return merged;
  }

  template <typename Entry>
  std::vector<Entry> MergeFields(const std::string& what,
                                 const Three<const std::vector<Entry>&>& fields) {
    const auto lists =
        fields.Each([](const std::vector<Entry>& entries) { return MergedList<Entry>(entries); });
    const Choice choice =
        Choose(lists.Each([](const auto& list) -> const auto& { return list.sequence().entries; }));
    if (choice != Choice::kConflict) return Chosen(choice, fields);

    std::vector<Entry> merged;
    for (const MergedEntry& places :
         MergeSequences(lists.base.sequence(), lists.ours.sequence(), lists.theirs.sequence())) {
      AppendMerged(what, lists, places, merged);
    }
    return merged;
  }

  template <typename Entry>
  void AppendMerged(const std::string& what, const Three<MergedList<Entry>>& lists,
                    const MergedEntry& places, std::vector<Entry>& merged) {
    const Records<Entry> entries{lists.base.At(places.base), lists.ours.At(places.ours),
                                 lists.theirs.At(places.theirs)};
    const Three<std::optional<std::string_view>> texts{lists.base.TextAt(places.base),
                                                       lists.ours.TextAt(places.ours),
                                                       lists.theirs.TextAt(places.theirs)};
    const Choice choice = Choose(texts);
    if constexpr (std::is_same_v<Entry, IP>) {
      if (choice == Choice::kConflict && entries.ours && entries.theirs) {
        merged.push_back(MergeInstance(what, entries));
        return;
      }
    }
    if (choice == Choice::kConflict) {
      conflicts_.push_back({what, std::to_string(places.base ? *places.base : *places.ours),
                            Copy(texts.base), Copy(texts.ours), Copy(texts.theirs)});
    }
    const Entry* const chosen = Chosen(choice, entries);
    if (chosen) merged.push_back(*chosen);
  }

  IP MergeInstance(const std::string& what, const Records<IP>& instances) {
    IP merged;
    const std::string prefix = what + "." + NameOf(*instances.ours) + ".";
    for (const IPTerm& term : IPTerms()) MergeTerm(prefix, term, instances, merged);
    return merged;
  }

  std::vector<FlowProcessContents> MergeProcesses(const Records<ProjectContents>& projects) {
    const auto counts = projects.Each([](const auto* p) { return p->flow_processes.size(); });
    std::vector<FlowProcessContents> merged;
    std::size_t size = 0;
    for (std::size_t i = 0; i < std::max({counts.base, counts.ours, counts.theirs}); ++i) {
      merged.push_back(MergeProcess(i, projects));
      const auto is_there = counts.Each([i](std::size_t count) { return i < count; });
      if (Chosen(Choose(is_there), is_there) || !IsEmpty(merged.back())) size = i + 1;
    }
    merged.resize(size);
    return merged;
  }

  FlowProcessContents MergeProcess(std::size_t number, const Records<ProjectContents>& projects) {
    const auto processes = projects.Each([number](const auto* project) {
      return number < project->flow_processes.size() ? &project->flow_processes[number] : nullptr;
    });
    const std::string prefix = FlowProcessKey(number) + ".";
    FlowProcessContents merged;
    for (const FlowProcessTerm& term : FlowProcessTerms()) {
      MergeTerm(prefix, term, processes, merged);
    }
    return merged;
  }

  Choice Decide(const std::string& what, const Three<OptionalText>& texts) {
    const Choice choice = Choose(texts);
    if (choice == Choice::kConflict) {
      conflicts_.push_back({what, "", texts.base, texts.ours, texts.theirs});
    }
    return choice;
  }

  std::vector<MergeConflict> conflicts_;
};

}  // namespace

MergedProjects MergeProjects(const ProjectContents& base, const ProjectContents& ours,
                             const ProjectContents& theirs) {
  Merging merging;
  ProjectContents contents = merging.Merge({&base, &ours, &theirs});
  return {std::move(contents), merging.TakeConflicts()};
}

}  // namespace projectdb
