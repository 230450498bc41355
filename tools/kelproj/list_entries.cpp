#include "list_entries.h"

#include "console.h"
#include "named_files.h"

namespace kelproj {

std::string TitleOfSources(const projectdb::IP& ip) {
  return "source files of IP instance \"" + ip.instance_name + "\"";
}

void RefuseRepeated(const std::string& name, const std::string& title) {
  throw Refusal("\"" + name + "\" is among the " + title + " already");
}

bool EntryChoice::ChooseKnown(const std::string& text, const Texts& known, Texts& chosen) {
  if (known.count(text) == 0) return false;
  chosen.insert(text);
  return true;
}

bool EntryChoice::Choose(const std::string& name) {
  RequireName(name);
  const auto choose_file = [&](const std::filesystem::path& directory) {
    return ChooseKnown(identities_.Of(directory / name), known_files_, chosen_files_);
  };
  return choose_file(std::filesystem::current_path()) ||
         ChooseKnown(name, known_names_, chosen_names_) || choose_file(project_directory_);
}

}  // namespace kelproj
