#include <filesystem>
#include <utility>

#include <kel/version.h>
#include <projectdb/vocabulary.h>

#include "messages.h"
#include "platform/local_time.h"
#include "platform/paths.h"
#include "project_db/project_data.h"

namespace projectdb {

const std::string KelProjectDatabase::XML_FILE_EXT = kProjectFileEnding;
const std::string KelProjectDatabase::SDC_FILE_EXT = kTimingConstraintFileEnding;
const std::string KelProjectDatabase::INTERFACE_FILE_EXT = kInterfaceConstraintFileEnding;

KelProjectDatabase::KelProjectDatabase() noexcept = default;
KelProjectDatabase::~KelProjectDatabase() noexcept = default;

bool KelProjectDatabase::SetupProjectDatabase() {
  if (data_) return false;
  data_ = std::make_unique<ProjectData>();
  data_->flow_processes = std::vector<FlowProcess>(kFlowProcesses.size());
  return true;
}

bool KelProjectDatabase::CreateNewProjectDatabase(std::string name) {
  if (IsProjectDatabaseExist()) {
    messages::Post(messages::MsgProjectExists());
    return false;
  }
  // Not one critical section with the test: a project that another thread makes in between is
  // kept and gets the defaults below.
  const std::lock_guard<std::mutex> lock(mutex_);
  SetupProjectDatabase();
  data_->project_name = name.empty() ? "new_project" : std::move(name);
  data_->software_version = KEL_VERSION_NO;
  data_->last_modify_time = GetLocalTimeString();
  data_->current_path = paths::ToBytes(std::filesystem::current_path());
  data_->device_info.family = "Varel";
  data_->device_info.device = "Q8R25";
  for (const FlowProcessName& process : kFlowProcesses) {
    SetFlowProcessName(process.type, process.name);
  }
  return true;
}

bool KelProjectDatabase::IsProjectDatabaseExist() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return data_ != nullptr;
}

void KelProjectDatabase::CleanProjectDatabase() {
  const std::lock_guard<std::mutex> lock(mutex_);
  data_.reset();
}

}  // namespace projectdb
