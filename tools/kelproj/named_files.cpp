#include "named_files.h"

#include <system_error>

namespace kelproj {
namespace {

using projectdb::ProjectContents;

const std::string& NameOf(const std::string& name) { return name; }
const std::string& NameOf(const projectdb::DesignFile& file) { return file.name; }
const std::string& NameOf(const projectdb::IPSrcFile& file) { return file.name; }
const std::string& NameOf(const projectdb::IP& ip) { return ip.path; }

template <typename Entry>
void AppendFiles(std::vector<NamedFile>& files, const std::filesystem::path& directory,
                 const std::string& list, const std::vector<Entry>& entries) {
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::string& name = NameOf(entries[i]);
    files.push_back({list + "[" + std::to_string(i) + "]", name, directory / name});
  }
}

}  // namespace

std::vector<NamedFile> FilesOf(const ProjectContents& project) {
  const std::filesystem::path directory = project.current_path;
  std::vector<NamedFile> files;
  AppendFiles(files, directory, "design.files", project.design_info.design_files);
  AppendFiles(files, directory, "simulation.files", project.sim_files);
  AppendFiles(files, directory, "misc.files", project.misc_files);
  AppendFiles(files, directory, "constraint.sdc", project.design_constraint.sdc_files);
  const std::string& interface = project.design_constraint.inter_file;
  if (!interface.empty()) {
    files.push_back({"constraint.interface", interface, directory / interface});
  }
  AppendFiles(files, directory, "isf.files", project.design_isf.isf_files);
  AppendFiles(files, directory, "ip", project.ip_info.ips);
  for (const projectdb::IP& ip : project.ip_info.ips) {
    AppendFiles(files, (directory / ip.path).parent_path(), "ip." + ip.instance_name + ".files",
                ip.src_files);
  }
  return files;
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
