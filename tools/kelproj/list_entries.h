#pragma once

#include <filesystem>
#include <string>
#include <type_traits>
#include <unordered_set>
#include <vector>

#include <projectdb/vocabulary.h>

#include "file_identities.h"
#include "platform/path_operations.h"

namespace kelproj {

/// What the sources of an instance are called within a sentence.
std::string TitleOfSources(const projectdb::IP& ip);

/// Refuses a file that a list has.
/// @param title of the list, within a sentence
[[noreturn]] void RefuseRepeated(const std::string& name, const std::string& title);

/// Refuses a name that means nothing in a list.
/// @param name as it would be stored
/// @param title of the list, within a sentence; "" for all lists of the project
/// @param hint behind that, what the user may have meant
[[noreturn]] void RefuseMissing(const std::string& name, const std::string& title = "",
                                const std::string& hint = "");

/// Refuses the name of an IP instance that is there.
[[noreturn]] void RefuseRepeatedInstance(const std::string& name);

/// Requires that a name in the arguments is one of an IP instance.
/// @exception Trouble if it is empty
void RequireInstanceName(const std::string& name);

/// The entries of lists that names in the arguments mean. A name means the file that it is from
/// where the user stands. If no known list has that, it means the one that is stored so, or the IP
/// instance of that name. A name that ends in a slash means all files below that directory.
class EntryChoice {
 public:
  explicit EntryChoice(std::filesystem::path project_directory)
      : project_directory_(std::move(project_directory)) {}

  /// Makes the entries of a list known.
  /// @param directory against which their names are resolved
  template <typename Entry>
  void Know(const std::vector<Entry>& list, const std::filesystem::path& directory) {
    for (const Entry& entry : list) {
      if (!projectdb::FileNameOf(entry).empty()) {
        known_files_.insert(IdentityOf(entry, directory));
      }
      // What sources of IP instances are called says nothing without their instance.
      if constexpr (!std::is_same_v<Entry, projectdb::IPSrcFile>) {
        known_names_.insert({projectdb::NameOf(entry), projectdb::FileNameOf(entry)});
      }
    }
  }

  /// Chooses the known entries that the name means.
  /// @return whether there are any
  bool Choose(const std::string& name);

  /// The end of a message about a name that means nothing: what means all files below it, if there
  /// are any; else "".
  std::string HintFor(const std::string& name);

  /// Whether the entry is chosen.
  template <typename Entry>
  bool Has(const Entry& entry, const std::filesystem::path& directory) {
    const bool has_file = !projectdb::FileNameOf(entry).empty();
    if (has_file && HasFile(IdentityOf(entry, directory))) return true;
    if constexpr (std::is_same_v<Entry, projectdb::IPSrcFile>) return false;
    return chosen_names_.count(projectdb::NameOf(entry)) > 0 ||
           chosen_names_.count(projectdb::FileNameOf(entry)) > 0;
  }

 private:
  using Texts = std::unordered_set<std::string>;

  template <typename Entry>
  std::string IdentityOf(const Entry& entry, const std::filesystem::path& directory) {
    return identities_.Of(PathIn(directory, projectdb::FileNameOf(entry)));
  }

  bool HasFile(const std::string& file) const;
  bool ChooseFile(const std::filesystem::path& path);
  bool IsAboveAny(const std::string& directory) const;
  bool ChooseBelow(const std::string& directory);
  static bool ChooseKnown(const std::string& text, const Texts& known, Texts& chosen);

  std::filesystem::path project_directory_;
  FileIdentities identities_;
  Texts known_files_;
  Texts known_names_;
  Texts chosen_files_;
  std::vector<std::string> chosen_directories_;
  Texts chosen_names_;
};

}  // namespace kelproj
