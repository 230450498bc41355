#include <utility>

#include "contents/info_attribute_names.h"
#include "project_db/project_data.h"

namespace projectdb {

bool KelProjectDatabase::InsertOrAssignProjectAttribute(const std::string& name,
                                                        const std::string& value) {
  if (!data_) return false;
  if (IsForXmlItself(name)) return true;
  if (std::string* field = ReservedField(*data_, name)) {
    *field = value;
  } else {
    data_->info_attributes.insert_or_assign(name, value);
  }
  return true;
}

bool KelProjectDatabase::AddProjectInfoAttribute(const std::string& name,
                                                 const std::string& value) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return InsertOrAssignProjectAttribute(name, value);
}

bool KelProjectDatabase::GetProjectInfoAttribute(const std::string& name,
                                                 std::string& value) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!data_) return false;
  if (const std::string* field = ReservedField(std::as_const(*data_), name)) {
    value = *field;
    return true;
  }
  const auto attribute = data_->info_attributes.find(name);
  if (attribute == data_->info_attributes.end()) return false;
  value = attribute->second;
  return true;
}

}  // namespace projectdb
