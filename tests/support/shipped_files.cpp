#include "support/shipped_files.h"

namespace test_support {

std::string ShippedSchema() { return PROJECTDB_SOURCE_DIR "/schema/wdp_proj.xsd"; }

std::string SampleProject() { return PROJECTDB_SOURCE_DIR "/examples/soc_demo/soc_demo.xml"; }

}  // namespace test_support
