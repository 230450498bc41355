#include <cstddef>
#include <iterator>
#include <utility>

#include <projectdb/project_contents.h>

#include "commands/changing.h"
#include "list_entries.h"
#include "platform/file_names.h"
#include "stored_project.h"

namespace kelproj {
namespace {

using projectdb::ProjectContents;

void RequirePlace(const MoveArguments& arguments) {
  RequireKind(arguments.kind);
  const ListPlace& place = arguments.place;
  if (!place.before && !place.after && !place.first && !place.last) {
    throw Trouble("one of --before, --after, --first and --last is needed");
  }
}

template <typename Entry>
void RequireOtherPlace(const MoveArguments& arguments, const ListOfFiles& list,
                       const std::vector<Entry>& entries, EntryChoice& moved) {
  const ListPlace& place = arguments.place;
  if (!place.before && !place.after) return;
  EntryChoice neighbour = EntriesOf(entries, list, place.before ? *place.before : *place.after);
  for (const Entry& entry : entries) {
    if (moved.Has(entry, list.directory) && neighbour.Has(entry, list.directory)) {
      throw Trouble("\"" + projectdb::NameOf(entry) + "\" cannot stand next to itself");
    }
  }
}

template <typename Entry>
void Move(const MoveArguments& arguments, const ListOfFiles& list, std::vector<Entry>& entries) {
  EntryChoice moved = EntriesOf(entries, list, arguments.name);
  RequireOtherPlace(arguments, list, entries, moved);
  std::vector<Entry> rest;
  std::vector<Entry> taken;
  for (Entry& entry : entries) {
    const bool is_moved = moved.Has(entry, list.directory);
    (is_moved ? taken : rest).push_back(std::move(entry));
  }
  const auto position = static_cast<std::ptrdiff_t>(PositionOf(arguments.place, rest, list));
  rest.insert(rest.begin() + position, std::make_move_iterator(taken.begin()),
              std::make_move_iterator(taken.end()));
  entries = std::move(rest);
}

}  // namespace

ExitStatus Run(const MoveArguments& arguments, const Console& console) {
  RequirePlace(arguments);
  ChangeProject(arguments.file, console, [&](ProjectContents& project) {
    const std::filesystem::path directory = PathFrom(project.current_path);
    const ListOfFiles list{directory, directory, TitleInSentence(TermOf(*arguments.kind))};
    WithList(*arguments.kind, project, [&](auto& entries) { Move(arguments, list, entries); });
  });
  return ExitStatus::kYes;
}

}  // namespace kelproj
