#include "project_db/project_data.h"

namespace projectdb {

FlowProcess* KelProjectDatabase::GetFlowProcess(ProcType type) const {
  const auto position = static_cast<std::size_t>(type);
  if (!data_ || position >= data_->flow_processes.size()) return nullptr;
  return &data_->flow_processes[position];
}

void KelProjectDatabase::SetFlowProcessName(ProcType type, const char* name) {
  FlowProcess* process = GetFlowProcess(type);
  if (process && name) process->name = name;
}

}  // namespace projectdb
