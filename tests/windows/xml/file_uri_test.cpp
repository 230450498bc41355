#include "xml/file_uri.h"

#include <string>

#include "testing/native_path.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb::xml;

constexpr const char* kBase = "file:///C%3A/base/dir/p.xml";

/// The local path as text; "none" if there is none.
std::string LocalName(const std::string& reference, const std::string& base = kBase) {
  const auto path = LocalPath(reference, base);
  return path ? PathText(path->lexically_normal()) : "none";
}

TEST(FileUriOnWindows, FileUri_PathOnADrive_HasSlashesAndEscapes) {
  EXPECT_EQ(FileUri("C:\\no such\\a.xml"), "file:///C%3A/no%20such/a.xml");
  EXPECT_EQ(FileUri(NativePath("D:/größe/a.xml")), "file:///D%3A/gr%C3%B6%C3%9Fe/a.xml");
}

TEST(FileUriOnWindows, LocalPath_UriOfAPath_GivesThePathBack) {
  for (const std::string path : {"C:\\a.xsd", "D:\\two words\\50%\\größe 漢字.xsd"}) {
    EXPECT_EQ(LocalName(FileUri(NativePath(path))), path);
  }
}

TEST(FileUriOnWindows, LocalPath_LocalReference_IsBelowTheBaseOrOnItsDrive) {
  const std::pair<std::string, std::string> cases[] = {{"s.xsd", "C:\\base\\dir\\s.xsd"},
                                                       {"../s.xsd", "C:\\base\\s.xsd"},
                                                       {"sub\\s.xsd", "C:\\base\\dir\\sub\\s.xsd"},
                                                       {"gr%C3%B6%c3%9fe", "C:\\base\\dir\\größe"},
                                                       {"/x/s.xsd", "C:\\x\\s.xsd"},
                                                       {"D:/x/s.xsd", "D:\\x\\s.xsd"},
                                                       {"d:\\x\\s.xsd", "d:\\x\\s.xsd"},
                                                       {"file:///D:/x/s.xsd", "D:\\x\\s.xsd"},
                                                       {"file:///D%3A/x/s.xsd", "D:\\x\\s.xsd"},
                                                       {"file://localhost/D:/s.xsd", "D:\\s.xsd"}};
  for (const auto& [reference, path] : cases) EXPECT_EQ(LocalName(reference), path);
}

TEST(FileUriOnWindows, FileUri_PathOnAShare_NamesTheShare) {
  EXPECT_EQ(FileUri("\\\\host\\share\\no such\\a.xml"), "file:////host/share/no%20such/a.xml");
}

TEST(FileUriOnWindows, LocalPath_BaseOnAShare_IsOnTheShare) {
  const auto path = [](const std::string& reference) {
    return PathText(*LocalPath(reference, "file:////host/share/dir/p.xml"));
  };
  EXPECT_EQ(path("s.xsd"), "\\\\host\\share\\dir\\s.xsd");
  EXPECT_EQ(path("/x/s.xsd"), "\\\\host\\share\\x\\s.xsd");
  EXPECT_EQ(path("D:/x/s.xsd"), "D:\\x\\s.xsd");
}

TEST(FileUriOnWindows, LocalPath_ShareOrDevice_GivesNothing) {
  for (const std::string reference :
       {"//host/share/s.xsd", "\\\\host\\share\\s.xsd", "/\\host/share/s.xsd",
        "file://host/share/s.xsd", "file:////host/share/s.xsd", "file:///%5C%5Chost/share/s.xsd",
        "%5C%5Chost%5Cshare%5Cs.xsd", "%2F%2Fhost/share/s.xsd", "\\\\.\\pipe\\s.xsd",
        "\\\\?\\C:\\s.xsd", "\\??\\C:\\s.xsd", "//./C:/s.xsd", "http://host/s.xsd"}) {
    EXPECT_EQ(LocalName(reference), "none") << reference;
  }
}

TEST(FileUriOnWindows, LocalPath_NameThatTheSystemHasForADevice_GivesNothing) {
  for (const std::string name :
       {"COM1", "com9.xsd", "LPT1.a.b", "CON", "con.xsd", "PRN", "Aux.xsd", "NUL", "nul .xsd",
        "NUL:", "CONIN$", "CONOUT$.xsd", "COM²", "LPT³"}) {
    for (const std::string before : {"", "sub/", "C:/"}) {
      EXPECT_EQ(LocalName(before + name), "none") << before << name;
    }
  }
  for (const std::string name : {"COM0.xsd", "COM10.xsd", "COM.xsd", "console.xsd", "s.con"}) {
    EXPECT_EQ(LocalName(name), "C:\\base\\dir\\" + name);
  }
}

TEST(FileUriOnWindows, LocalPath_NameInTheDirectoryOfADrive_GivesNothing) {
  EXPECT_EQ(LocalName("D:s.xsd"), "none");
  EXPECT_EQ(LocalName("file:///D:s.xsd"), "none");
}

}  // namespace
