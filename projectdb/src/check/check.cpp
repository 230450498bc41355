#include <projectdb/check.h>
#include <projectdb/project_file.h>

namespace projectdb {

std::vector<FileProblem> CheckProjectFile(const std::string& xml_file,
                                          const std::string& schema_file) {
  return ReadProjectFile(xml_file, schema_file).problems;
}

}  // namespace projectdb
