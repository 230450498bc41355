#include <filesystem>
#include <iterator>
#include <utility>

#include <projectdb/vocabulary.h>

#include "platform/paths.h"
#include "project_db/project_data.h"

namespace projectdb {
namespace {

// Copies first and then moves in: an append that fails leaves the list as it was.
template <typename Record>
void AppendAll(std::vector<Record>& list, std::vector<Record> records) {
  list.insert(list.end(), std::make_move_iterator(records.begin()),
              std::make_move_iterator(records.end()));
}

bool IsTimingConstraintFile(const std::string& name) {
  if (name.empty()) return false;
  const std::filesystem::path path = paths::FromUtf8(name);
  return !std::filesystem::is_directory(std::filesystem::status(path)) &&
         HasEnding(paths::ToBytes(path), kTimingConstraintFileEnding);
}

// Calls deliver(entry, path) with the path of each entry, resolved against the directory.
template <typename Entry, typename Deliver>
void ForEachResolved(const std::string& directory, const std::vector<Entry>& entries,
                     Deliver deliver) {
  if (entries.empty()) return;
  const std::filesystem::path base = paths::FromUtf8(directory);
  for (const Entry& entry : entries) {
    deliver(entry, paths::ResolveProjectPath(base, FileNameOf(entry)));
  }
}

template <typename Entry>
void AppendResolved(const std::string& directory, const std::vector<Entry>& entries,
                    std::vector<std::string>& paths) {
  ForEachResolved(directory, entries, [&paths](const Entry&, const std::filesystem::path& path) {
    paths.push_back(paths::ToBytes(path));
  });
}

}  // namespace

void KelProjectDatabase::AddDesignRTLFile(const std::string& name, const std::string& version,
                                          const std::string& library) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) data_->design_info.design_files.emplace_back(name, version, library);
}

void KelProjectDatabase::AddDesignRTLFile(std::vector<DesignFile>& files) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) AppendAll(data_->design_info.design_files, files);
}

void KelProjectDatabase::AddSimulationTestBenchFile(const std::string& name,
                                                    const std::string& version) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) data_->sim_files.emplace_back(name, version, kDefaultLibrary);
}

void KelProjectDatabase::AddSimulationTestBenchFile(std::vector<DesignFile>& files) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) AppendAll(data_->sim_files, files);
}

void KelProjectDatabase::AddMiscellaneousFile(const std::string& name) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) data_->misc_files.emplace_back(name, "", kDefaultLibrary);
}

void KelProjectDatabase::AddMiscellaneousFile(std::vector<std::string>& names) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  std::vector<DesignFile> files;
  files.reserve(names.size());
  for (const std::string& name : names) files.emplace_back(name, "", kDefaultLibrary);
  AppendAll(data_->misc_files, std::move(files));
}

bool KelProjectDatabase::AddTimingConstraintFile(const std::string& name) {
  if (!IsTimingConstraintFile(name)) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return false;
  data_->design_constraint.sdc_files.push_back(name);
  return true;
}

bool KelProjectDatabase::AddTimingConstraintFile(const std::vector<std::string>& names) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return false;
  std::vector<std::string>& files = data_->design_constraint.sdc_files;
  const std::size_t count_before = files.size();
  for (const std::string& name : names) {
    if (IsTimingConstraintFile(name)) files.push_back(name);
  }
  return files.size() > count_before;
}

bool KelProjectDatabase::SetInterfaceConstraint(const std::string& name) {
  const std::filesystem::path path = paths::FromUtf8(name);
  if (!HasEnding(paths::ToBytes(path), kInterfaceConstraintFileEnding)) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return false;
  data_->design_constraint.inter_file = name;
  return true;
}

void KelProjectDatabase::GetDesignFileList(std::vector<DesignFile>& files) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  const std::vector<DesignFile>& stored = data_->design_info.design_files;
  files.reserve(stored.size());
  ForEachResolved(data_->current_path, stored,
                  [&files](const DesignFile& file, const std::filesystem::path& path) {
                    files.emplace_back(paths::ToBytes(path), file.version, file.library);
                  });
}

void KelProjectDatabase::GetSimulationTestBenchFileList(std::vector<std::string>& paths) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  paths.reserve(data_->sim_files.size());
  AppendResolved(data_->current_path, data_->sim_files, paths);
}

void KelProjectDatabase::GetMiscellaneousFileList(std::vector<std::string>& paths) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  paths.reserve(data_->misc_files.size());
  AppendResolved(data_->current_path, data_->misc_files, paths);
}

void KelProjectDatabase::GetTimingConstraintFileList(std::vector<std::string>& paths) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  paths.reserve(data_->design_constraint.sdc_files.size());
  AppendResolved(data_->current_path, data_->design_constraint.sdc_files, paths);
}

void KelProjectDatabase::GetIpSrcFileList(std::vector<std::string>& paths) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  const std::string& project = data_->current_path;
  ForEachResolved(
      project, data_->ip_info.ips, [&](const IP& ip, const std::filesystem::path& path) {
        // No name at all leads to the working directory, not to something in it.
        const bool is_directory = project.empty() && ip.path.empty();
        const std::filesystem::path directory = is_directory ? path : path.parent_path();
        AppendResolved(paths::ToBytes(directory), ip.src_files, paths);
      });
}

void KelProjectDatabase::GetIpInstanceList(std::vector<IP>& instances) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return;
  for (const IP& ip : data_->ip_info.ips) instances.push_back(ip);
}

}  // namespace projectdb
