#include "named_files.h"

#include <system_error>
#include <variant>

#include <projectdb/vocabulary.h>

#include "shown_terms.h"

namespace kelproj {
namespace {

using projectdb::IP;
using projectdb::ProjectContents;
using projectdb::ProjectTerm;

/// Collects the files of a project.
class Collection {
 public:
  explicit Collection(const ProjectContents& project)
      : project_(project), directory_(project.current_path) {}

  void Add(const ProjectTerm& term) {
    std::visit([&](const auto& access) { Add(std::string(term.key), access(project_)); },
               term.access);
  }

  const std::vector<NamedFile>& files() const { return files_; }

 private:
  void Add(const std::string& key, const std::string& name) {
    if (!name.empty()) files_.push_back({key, name, directory_ / name});
  }

  // The attributes are free text.
  void Add(const std::string& /*key*/, const projectdb::InfoAttributes& /*attributes*/) {}

  template <typename Entry>
  void Add(const std::string& key, const std::vector<Entry>& entries) {
    AddList(key, entries, directory_);
  }

  void Add(const std::string& key, const std::vector<IP>& ips) {
    AddList(key, ips, directory_);
    for (const IP& ip : ips) {
      AddList(key + "." + NameOf(ip) + ".files", ip.src_files,
              (directory_ / ip.path).parent_path());
    }
  }

  template <typename Entry>
  void AddList(const std::string& list, const std::vector<Entry>& entries,
               const std::filesystem::path& directory) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::string& name = projectdb::FileNameOf(entries[i]);
      files_.push_back({list + "[" + std::to_string(i) + "]", name, directory / name});
    }
  }

  const ProjectContents& project_;
  std::filesystem::path directory_;
  std::vector<NamedFile> files_;
};

}  // namespace

std::vector<NamedFile> FilesOf(const ProjectContents& project) {
  Collection collection(project);
  for (const ProjectTerm& term : ShownTerms()) {
    if (term.file_ending) collection.Add(term);
  }
  return collection.files();
}

std::string StoredName(const std::string& name, const std::filesystem::path& project_directory) {
  const std::filesystem::path path(name);
  if (path.is_absolute()) return name;
  return std::filesystem::absolute(path)
      .lexically_normal()
      .lexically_relative(project_directory.lexically_normal())
      .string();
}

std::string NameFromHere(const std::filesystem::path& path) {
  return path.lexically_normal().lexically_relative(std::filesystem::current_path()).string();
}

bool IsFile(const std::filesystem::path& path) {
  // What cannot be asked for is not there.
  std::error_code error;
  return std::filesystem::exists(path, error) && !std::filesystem::is_directory(path, error);
}

void WarnOfMissingFiles(const Console& console, const std::filesystem::path& directory,
                        const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (IsFile(directory / name)) continue;
    WriteMessage(console.err, Diag::MessageType::kWarning,
                 "\"" + name + "\" does not exist in " + directory.string());
  }
}

}  // namespace kelproj
