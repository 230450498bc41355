#pragma once

#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include <projectdb/project_contents.h>
#include <projectdb/vocabulary.h>

namespace kelproj {

/// A kind of files that a project names.
struct FileKind {
  const char* option;  ///< That chooses it on the command line.
  const char* key;     ///< Of its term in the vocabulary, such as "design.files".
  bool is_source;      ///< Whether its files have an HDL version and a library that count.
};

/// All kinds, in the order in which people are told of them.
projectdb::Table<FileKind> FileKinds();

/// The kinds of which a project has lists, thus not the interface constraint file.
projectdb::Table<FileKind> ListedFileKinds();

/// The listed kinds whose files stand in the list one by one, thus not IP instances.
projectdb::Table<FileKind> FlatFileKinds();

/// That of IP instances.
const FileKind& InstanceKind();

/// What the vocabulary has of the kind; it lasts as long as the program.
const projectdb::ProjectTerm& TermOf(const FileKind& kind);

/// The title of a term within a sentence, such as "design files" or "ISF files".
std::string TitleInSentence(const projectdb::ProjectTerm& term);

/// Requires that the arguments choose a listed kind.
/// @exception Trouble if it is null
void RequireKind(const FileKind* kind);

/// Calls the function with the list of a listed kind: a vector of DesignFile, std::string or IP.
template <typename Project, typename Function>
void WithList(const FileKind& kind, Project& project, Function function) {
  std::visit(
      [&](const auto& access) {
        using Field = std::decay_t<decltype(access(project))>;
        if constexpr (!std::is_same_v<Field, std::string> &&
                      !std::is_same_v<Field, projectdb::InfoAttributes>) {
          function(access(project));
        }
      },
      TermOf(kind).access);
}

}  // namespace kelproj
