#include "named_files.h"

#include <algorithm>
#include <system_error>
#include <type_traits>
#include <variant>

#include "console.h"
#include "file_identities.h"
#include "places.h"
#include "platform/file_names.h"
#include "platform/path_operations.h"
#include "shown_terms.h"

namespace kelproj {
namespace {

using projectdb::IP;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;

/// Collects the files of a project.
class Collection {
 public:
  // A way back through a link would lead astray.
  explicit Collection(const ProjectContents& project)
      : project_(project), directory_(WithoutLinks(PathFrom(project.current_path))) {}

  void Add(const FileKind& kind) {
    kind_ = &kind;
    std::visit([&](const auto& access) { Add(kind.key, access(project_)); }, TermOf(kind).access);
  }

  const std::vector<NamedFile>& files() const { return files_; }

 private:
  void Add(const std::string& key, const std::string& name) {
    if (name.empty()) return;
    files_.push_back({kind_, key, key, name, PathIn(directory_, name), "", ""});
  }

  // The attributes are free text.
  void Add(const std::string& /*key*/, const projectdb::InfoAttributes& /*attributes*/) {}

  template <typename Entry>
  void Add(const std::string& key, const std::vector<Entry>& entries) {
    AddList(key, entries, directory_);
  }

  void Add(const std::string& key, const std::vector<IP>& ips) {
    for (std::size_t i = 0; i < ips.size(); ++i) {
      AddEntry(key, i, ips[i], directory_);
      AddList(SourceListKey(key, NameOf(ips[i])), ips[i].src_files,
              PathIn(directory_, ips[i].path).parent_path());
    }
  }

  template <typename Entry>
  void AddList(const std::string& list, const std::vector<Entry>& entries,
               const std::filesystem::path& directory) {
    for (std::size_t i = 0; i < entries.size(); ++i) AddEntry(list, i, entries[i], directory);
  }

  template <typename Entry>
  void AddEntry(const std::string& list, std::size_t index, const Entry& entry,
                const std::filesystem::path& directory) {
    const std::string& name = projectdb::FileNameOf(entry);
    files_.push_back({kind_, list, PlaceText(list, std::to_string(index)), name,
                      PathIn(directory, name), "", ""});
    if constexpr (std::is_same_v<Entry, projectdb::DesignFile>) {
      files_.back().version = entry.version;
      files_.back().library = entry.library;
    }
  }

  const ProjectContents& project_;
  std::filesystem::path directory_;
  const FileKind* kind_ = nullptr;
  std::vector<NamedFile> files_;
};

// Null if the term is about something else.
const FileKind* KindOf(const ProjectTerm& term) {
  const auto kinds = FileKinds();
  const auto* const kind = std::find_if(
      kinds.begin(), kinds.end(), [&term](const FileKind& each) { return each.key == term.key; });
  return kind == kinds.end() ? nullptr : kind;
}

// The empty name leads to the directory against which it is resolved, and names nothing.
bool IsNamedDirectory(const std::filesystem::path& path, const std::string& name) {
  std::error_code error;
  return !name.empty() && std::filesystem::is_directory(path, error);
}

// Seen from the directory; as it is if no way leads there, as from one drive to another.
std::string NameBeside(const std::filesystem::path& path, const std::filesystem::path& directory) {
  const std::filesystem::path name = LexicallyRelative(path, directory);
  return NameFrom(name.empty() ? path : name);
}

std::string IsADirectory(const std::string& name) { return "\"" + name + "\" is a directory"; }
std::string IsMissing(const std::string& name) { return "\"" + name + "\" does not exist"; }

}  // namespace

std::string SourceListKey(const std::string& list, const std::string& instance) {
  return MemberPlace(MemberPlace(list, instance), projectdb::kIPSourceFilesKey);
}

std::vector<NamedFile> FilesOf(const ProjectContents& project) {
  Collection collection(project);
  for (const ProjectTerm& term : ShownTerms()) {
    if (const FileKind* kind = KindOf(term)) collection.Add(*kind);
  }
  return collection.files();
}

std::filesystem::path NormalPath(const std::filesystem::path& path) {
  std::filesystem::path normal = LexicallyNormal(path);
  if (std::find(path.begin(), path.end(), "..") == path.end()) return normal;
  FileIdentities identities;
  const std::string file = identities.Of(path);
  return identities.Of(normal) == file ? normal : PathFrom(file);
}

std::string NameIn(const std::filesystem::path& directory, const std::filesystem::path& path) {
  const std::filesystem::path normal = NormalPath(path);
  const std::filesystem::path real_directory = WithoutLinks(directory);
  // Links on the way to the directory are left out of the names of what is below it.
  for (const std::filesystem::path& name :
       {LexicallyRelative(normal, NormalPath(directory)),
        LexicallyRelative(PathFrom(FileIdentities().Of(path)), real_directory)}) {
    if (!name.empty() && *name.begin() != "..") return NameFrom(name);
  }
  return NameBeside(normal, real_directory);
}

std::string StoredName(const std::string& name, const std::filesystem::path& directory) {
  if (IsAbsolute(name)) return name;
  return NameIn(directory, PathIn(CurrentDirectory(), name));
}

void RequireName(const std::string& name) {
  if (name.empty()) throw Trouble("the empty text names no file");
}

void RequireEnding(const ProjectTerm& term, const std::string& name) {
  if (!term.file_ending || projectdb::HasEnding(name, *term.file_ending)) return;
  throw Trouble(std::string(term.key) + ": \"" + name + "\" must be named NAME" +
                std::string(*term.file_ending));
}

std::string NameFromHere(const std::filesystem::path& path) {
  return NameBeside(NormalPath(path), CurrentDirectory());
}

std::string NameFromHere(const NamedFile& file) {
  return IsAbsolute(file.name) ? file.name : NameFromHere(file.path);
}

bool IsFile(const std::filesystem::path& path) {
  // What cannot be asked for is not there.
  std::error_code error;
  return std::filesystem::exists(path, error) && !std::filesystem::is_directory(path, error);
}

std::optional<std::string> WhyNoFile(const NamedFile& file) {
  if (IsFile(file.path)) return std::nullopt;
  return IsNamedDirectory(file.path, file.name) ? IsADirectory(file.name) : IsMissing(file.name);
}

std::optional<std::string> WhyNoFile(const std::filesystem::path& directory,
                                     const std::string& name) {
  const std::filesystem::path path = PathIn(directory, name);
  if (IsFile(path)) return std::nullopt;
  if (IsNamedDirectory(path, name)) return IsADirectory(name);
  return IsMissing(name) +
         (IsAbsolute(name) ? "" : " in " + FileIdentities().OfDirectory(directory));
}

}  // namespace kelproj
