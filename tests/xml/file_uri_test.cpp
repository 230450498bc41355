#include "xml/file_uri.h"

#include <string>

#include "testing/native_path.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb::xml;

/// The local path of a reference from a file in the directory "dir", below that directory; "none"
/// if there is none.
std::string NameBelowBase(const std::string& reference) {
  const std::string directory = InRoot("base/dir");
  const auto path = LocalPath(reference, FileUri(NativePath(directory + "/p.xml")));
  return path ? PathText(path->lexically_relative(NativePath(directory))) : "none";
}

TEST(PortableFileUri, EscapeForUri_Text_EscapesAllButUnreservedAndSlashes) {
  EXPECT_EQ(EscapeForUri(std::string("a/b-._~ %é\0", 12)), "a/b-._~%20%25%C3%A9%00");
  EXPECT_EQ(EscapeForUri(""), "");
}

TEST(PortableFileUri, LocalPath_PercentWithoutTwoDigits_StandsForItself) {
  const std::pair<std::string, std::string> cases[] = {
      {"%", "%"},     {"50%", "50%"}, {"%4", "%4"},   {"%g1", "%g1"}, {"%1g", "%1g"},
      {"%%41", "%A"}, {"%+1", "%+1"}, {"%-1", "%-1"}, {"% 1", "% 1"}, {"%2541", "%41"}};
  for (const auto& [reference, name] : cases) EXPECT_EQ(NameBelowBase(reference), name);
}

TEST(PortableFileUri, LocalPath_NoNameOrNulInIt_GivesNothing) {
  for (const std::string& reference :
       {std::string(), std::string("file:"), std::string("file://"), std::string("//localhost"),
        std::string("s.xsd%00.txt"), std::string("s\0x", 3)}) {
    EXPECT_EQ(NameBelowBase(reference), "none") << reference;
  }
}

}  // namespace
