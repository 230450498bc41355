#include "testing/shipped_files.h"

#include <algorithm>
#include <filesystem>

namespace test_support {

std::string SourcePath(const std::string& path) { return PROJECTDB_SOURCE_DIR "/" + path; }

std::string ShippedSchema() { return SourcePath("schema/wdp_proj.xsd"); }

std::string SampleProject() { return SourcePath("examples/soc_demo/soc_demo.xml"); }

std::vector<std::string> CorpusProjects() {
  std::vector<std::string> paths;
  for (const auto& entry :
       std::filesystem::directory_iterator(SourcePath("fuzz/corpus/load_project"))) {
    paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

}  // namespace test_support
