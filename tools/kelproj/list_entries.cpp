#include "list_entries.h"

#include "console.h"

namespace kelproj {

bool EntryChoice::ChooseKnown(const std::string& text, const Texts& known, Texts& chosen) {
  if (known.count(text) == 0) return false;
  chosen.insert(text);
  return true;
}

bool EntryChoice::Choose(const std::string& name) {
  if (name.empty()) throw Trouble("the empty text names no file");
  const auto choose_file = [&](const std::filesystem::path& directory) {
    return ChooseKnown(identities_.Of(directory / name), known_files_, chosen_files_);
  };
  return choose_file(std::filesystem::current_path()) ||
         ChooseKnown(name, known_names_, chosen_names_) || choose_file(project_directory_);
}

}  // namespace kelproj
