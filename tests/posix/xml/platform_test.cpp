#include "xml/platform.h"

#include <xercesc/util/PlatformUtils.hpp>

#include "testing/child_process.h"
#include "testing/project_loading.h"
#include "testing/test.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;

/// Whether the work ends the use of the XML library that it begins, in a process of its own, as
/// failed loads of other tests have left theirs open.
template <typename Work>
std::string StateOfTheLibraryAfter(Work work) {
  return InChildProcess([&] {
    while (xercesc::XMLPlatformUtils::fgMemoryManager) TerminateXMLPlatform();
    work();
    return std::string(xercesc::XMLPlatformUtils::fgMemoryManager ? "in use" : "terminated");
  });
}

TEST(XmlPlatformOnPosix, LoadProjectData_Successful_TerminatesIt) {
  Loading loading;
  loading.Write("p.xml", ProjectXml(DeviceInfoXml("Orrin")));
  EXPECT_EQ(StateOfTheLibraryAfter([&] { loading.LoadFile(loading.path()); }), "terminated");
}

TEST(XmlPlatformOnPosix, ExportProjectData_Successful_TerminatesIt) {
  Loading loading;
  loading.database.CreateNewProjectDatabase("mixer");
  EXPECT_EQ(StateOfTheLibraryAfter([&] { loading.database.ExportProjectData(loading.path()); }),
            "terminated");
  EXPECT_NE(ReadFile(loading.path()), "");
}

TEST(XmlPlatformOnPosix, LoadProjectData_Malformed_LeavesItInUse) {
  Loading loading;
  loading.Write("p.xml", "<project>");
  EXPECT_EQ(StateOfTheLibraryAfter([&] { loading.LoadFile(loading.path()); }), "in use");
}

}  // namespace
