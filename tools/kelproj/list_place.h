#pragma once

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "console.h"
#include "list_entries.h"
#include "named_files.h"

namespace kelproj {

/// A place in a list: at its end if nothing is given.
struct ListPlace {
  std::optional<std::string> before;  ///< A name in the arguments.
  std::optional<std::string> after;
  bool first = false;
  bool last = false;
};

/// A list of files for which the arguments have names.
struct ListOfFiles {
  std::filesystem::path project_directory;
  std::filesystem::path directory;  ///< Against which its names are resolved.
  std::string title;                ///< Within a sentence.
};

/// The entries that a name means.
/// @exception Refusal if there are none
template <typename Entry>
EntryChoice EntriesOf(const std::vector<Entry>& entries, const ListOfFiles& list,
                      const std::string& name) {
  EntryChoice choice(list.project_directory);
  choice.Know(entries, list.directory);
  if (choice.Choose(name)) return choice;
  constexpr bool kHasNamesOfItsOwn = std::is_same_v<Entry, projectdb::IP>;
  const std::string shown = kHasNamesOfItsOwn ? name : StoredName(name, list.project_directory);
  RefuseMissing(shown, list.title, choice.HintFor(name));
}

/// Where something stands that is put into the place: before the entry at this position.
/// @exception Refusal if the place is at an entry that is not there
template <typename Entry>
std::size_t PositionOf(const ListPlace& place, const std::vector<Entry>& entries,
                       const ListOfFiles& list) {
  if (place.first) return 0;
  if (!place.before && !place.after) return entries.size();
  EntryChoice neighbour = EntriesOf(entries, list, place.before ? *place.before : *place.after);
  const auto is_neighbour = [&](const Entry& entry) {
    return neighbour.Has(entry, list.directory);
  };
  // The first of them, or behind the last.
  if (place.before) {
    const auto at = std::find_if(entries.begin(), entries.end(), is_neighbour);
    return static_cast<std::size_t>(at - entries.begin());
  }
  const auto behind = std::find_if(entries.rbegin(), entries.rend(), is_neighbour);
  return static_cast<std::size_t>(entries.rend() - behind);
}

}  // namespace kelproj
