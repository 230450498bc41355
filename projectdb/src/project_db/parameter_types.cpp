#include <projectdb/project_db.h>
#include <projectdb/vocabulary.h>

namespace projectdb {

std::string KelProjectDatabase::getParameterTypeStr(ParameterType type) { return TextOf(type); }

ParameterType KelProjectDatabase::getParameterTypeFromStr(const std::string& text) {
  return ParameterTypeOf(text);
}

}  // namespace projectdb
