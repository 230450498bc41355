#include "list_entries.h"

#include <algorithm>

#include "console.h"
#include "named_files.h"
#include "platform/path_operations.h"

namespace kelproj {

std::string TitleOfSources(const projectdb::IP& ip) {
  return "source files of IP instance \"" + ip.instance_name + "\"";
}

void RefuseRepeated(const std::string& name, const std::string& title) {
  throw Refusal("\"" + name + "\" is among the " + title + " already");
}

void RefuseMissing(const std::string& name, const std::string& title, const std::string& hint) {
  throw Refusal("\"" + name + "\" is " +
                (title.empty() ? "in no list of the project" : "not among the " + title) + hint);
}

void RefuseRepeatedInstance(const std::string& name) {
  throw Refusal("there is an IP instance \"" + name + "\" already");
}

void RequireInstanceName(const std::string& name) {
  if (name.empty()) throw Trouble("the empty text names no IP instance");
}

bool EntryChoice::HasFile(const std::string& file) const {
  const auto is_above = [&file](const std::string& directory) {
    return PartBelow(directory, file).has_value();
  };
  return chosen_files_.count(file) > 0 ||
         std::any_of(chosen_directories_.begin(), chosen_directories_.end(), is_above);
}

bool EntryChoice::ChooseFile(const std::filesystem::path& path) {
  const std::string file = identities_.Of(path);
  return path.has_filename() ? ChooseKnown(file, known_files_, chosen_files_) : ChooseBelow(file);
}

bool EntryChoice::IsAboveAny(const std::string& directory) const {
  return std::any_of(
      known_files_.begin(), known_files_.end(),
      [&directory](const std::string& file) { return PartBelow(directory, file).has_value(); });
}

bool EntryChoice::ChooseBelow(const std::string& directory) {
  if (!IsAboveAny(directory)) return false;
  chosen_directories_.push_back(directory);
  return true;
}

bool EntryChoice::ChooseKnown(const std::string& text, const Texts& known, Texts& chosen) {
  if (known.count(text) == 0) return false;
  chosen.insert(text);
  return true;
}

bool EntryChoice::Choose(const std::string& name) {
  RequireName(name);
  return ChooseFile(PathIn(CurrentDirectory(), name)) ||
         ChooseKnown(name, known_names_, chosen_names_) ||
         ChooseFile(PathIn(project_directory_, name));
}

std::string EntryChoice::HintFor(const std::string& name) {
  const std::string below = name + "/";
  const bool is_above = IsAboveAny(identities_.Of(PathIn(CurrentDirectory(), below))) ||
                        IsAboveAny(identities_.Of(PathIn(project_directory_, below)));
  if (!is_above || name.back() == '/') return "";
  return "; \"" + below + "\" means all files below it";
}

}  // namespace kelproj
