#include "project_db/project_data.h"

namespace projectdb {

// The members lead from the project data block to the text: a field, or a record and its field.
// clang-format off
template <typename... Members>
std::string KelProjectDatabase::GetProperty(Members... members) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return data_ ? (*data_ .* ... .* members) : std::string();
}

template <typename... Members>
void KelProjectDatabase::SetProperty(const std::string& text, Members... members) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (data_) (*data_ .* ... .* members) = text;
}
// clang-format on

std::string KelProjectDatabase::GetProjectName() const {
  return GetProperty(&ProjectData::project_name);
}

void KelProjectDatabase::SetProjectName(const std::string& name) {
  SetProperty(name, &ProjectData::project_name);
}

std::string KelProjectDatabase::GetProjectCurrentPath() const {
  return GetProperty(&ProjectData::current_path);
}

void KelProjectDatabase::SetProjectCurrentPath(const std::string& path) {
  SetProperty(path, &ProjectData::current_path);
}

std::string KelProjectDatabase::GetProjectSoftwareVersion() const {
  return GetProperty(&ProjectData::software_version);
}

void KelProjectDatabase::SetProjectSoftwareVersion(const std::string& version) {
  SetProperty(version, &ProjectData::software_version);
}

std::string KelProjectDatabase::GetProjectLastModifyTime() const {
  return GetProperty(&ProjectData::last_modify_time);
}

std::string KelProjectDatabase::GetDeviceFamily() const {
  return GetProperty(&ProjectData::device_info, &DeviceInfo::family);
}

void KelProjectDatabase::SetDeviceFamily(const std::string& family) {
  SetProperty(family, &ProjectData::device_info, &DeviceInfo::family);
}

std::string KelProjectDatabase::GetDeviceModel() const {
  return GetProperty(&ProjectData::device_info, &DeviceInfo::device);
}

void KelProjectDatabase::SetDeviceModel(const std::string& device) {
  SetProperty(device, &ProjectData::device_info, &DeviceInfo::device);
}

std::string KelProjectDatabase::GetDeviceTimingModel() const {
  return GetProperty(&ProjectData::device_info, &DeviceInfo::timing_model);
}

void KelProjectDatabase::SetDeviceTimingModel(const std::string& timing_model) {
  SetProperty(timing_model, &ProjectData::device_info, &DeviceInfo::timing_model);
}

std::string KelProjectDatabase::GetDesignTopModuleName() const {
  return GetProperty(&ProjectData::design_info, &DesignInfo::top_module);
}

void KelProjectDatabase::SetDesignTopModuleName(const std::string& top_module) {
  SetProperty(top_module, &ProjectData::design_info, &DesignInfo::top_module);
}

std::string KelProjectDatabase::GetDesignTopVHDLArchitecture() const {
  return GetProperty(&ProjectData::design_info, &DesignInfo::top_vhdl_arch);
}

void KelProjectDatabase::SetDesignTopVHDLArchitecture(const std::string& architecture) {
  SetProperty(architecture, &ProjectData::design_info, &DesignInfo::top_vhdl_arch);
}

std::string KelProjectDatabase::GetInterfaceConstraint() const {
  return GetProperty(&ProjectData::design_constraint, &DesignConstraint::inter_file);
}

}  // namespace projectdb
