#include "xml/file_uri.h"

#include <filesystem>

#include "testing/temporary_directory.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb::xml;

constexpr const char* kBase = "file:///base/dir/p.xml";

/// The local path as text; "none" if there is none.
std::string LocalName(const std::string& reference, const std::string& base = kBase) {
  const auto path = LocalPath(reference, base);
  return path ? path->string() : "none";
}

TEST(FileUri, FileUri_AbsolutePath_EscapesAllButUnreservedAndSlashes) {
  const std::pair<std::string, std::string> cases[] = {
      {"/", "file:///"},
      {"/a/B-c_d.e~0", "file:///a/B-c_d.e~0"},
      {"/two words", "file:///two%20words"},
      {"/%#?&+;=@:!$'()*,[]\\\"",
       "file:///%25%23%3F%26%2B%3B%3D%40%3A%21%24%27%28%29%2A%2C%5B%5D%5C%22"},
      {"/größe", "file:///gr%C3%B6%C3%9Fe"},
      {"/\xff\x01\n", "file:///%FF%01%0A"},
      {"/a//b/../c", "file:///a//b/../c"}};
  for (const auto& [path, uri] : cases) EXPECT_EQ(FileUri(path), uri);
}

TEST(FileUri, FileUri_RelativePath_IsMadeAbsolute) {
  const TemporaryDirectory directory;
  const WorkingDirectory working_directory(directory.path());
  const std::string here = "file://" + std::filesystem::current_path().string();
  EXPECT_EQ(FileUri("p.xml"), here + "/p.xml");
  EXPECT_EQ(FileUri("sub/p.xml"), here + "/sub/p.xml");
}

TEST(FileUri, FileUri_DirectorySpelledInSeveralWays_IsOneUri) {
  const TemporaryDirectory directory;
  std::filesystem::create_directory(directory / "sub");
  std::filesystem::create_directory_symlink(directory / "sub", directory / "link");
  const std::string uri = FileUri(directory / "sub/s.xsd");
  for (const std::string spelling :
       {"link/s.xsd", "sub/../sub/s.xsd", "./sub//s.xsd", "link/../sub/./s.xsd"}) {
    EXPECT_EQ(FileUri(directory / spelling), uri) << spelling;
  }
}

TEST(FileUri, FileUri_LinkToAFile_IsTheUriOfTheLink) {
  const TemporaryDirectory directory;
  std::filesystem::create_symlink("/elsewhere/s.xsd", directory / "link.xsd");
  EXPECT_EQ(FileUri(directory / "link.xsd"), FileUri(directory.path()) + "/link.xsd");
}

TEST(FileUri, LocalPath_UriOfAPath_GivesThePathBack) {
  std::string every_byte = "/";
  for (int byte = 1; byte < 256; ++byte) every_byte += static_cast<char>(byte);
  for (const std::string& path :
       {std::string("/a"), std::string("/a b/50%/%41/größe.xsd"), every_byte}) {
    EXPECT_EQ(LocalName(FileUri(path)), path);
  }
}

TEST(FileUri, LocalPath_RelativeReference_IsBelowTheBasesDirectory) {
  const std::pair<std::string, std::string> cases[] = {
      {"s.xsd", "/base/dir/s.xsd"},         {"./s.xsd", "/base/dir/./s.xsd"},
      {"sub/s.xsd", "/base/dir/sub/s.xsd"}, {"../s.xsd", "/base/dir/../s.xsd"},
      {"a%20b.xsd", "/base/dir/a b.xsd"},   {"gr%C3%B6%c3%9fe", "/base/dir/größe"},
      {"größe", "/base/dir/größe"},         {"%ff", "/base/dir/\xff"}};
  for (const auto& [reference, path] : cases) EXPECT_EQ(LocalName(reference), path);
}

TEST(FileUri, LocalPath_BaseWithEscapesOrOnThisMachine_IsItsPath) {
  EXPECT_EQ(LocalName("s.xsd", "file:///two%20words/gr%C3%B6%C3%9Fe/50%25/p.xml"),
            "/two words/größe/50%/s.xsd");
  EXPECT_EQ(LocalName("s.xsd", "file://localhost/dir/p.xml"), "/dir/s.xsd");
  EXPECT_EQ(LocalName("s.xsd", "file:/dir/p.xml"), "/dir/s.xsd");
}

TEST(FileUri, LocalPath_AbsoluteReference_ReplacesTheBase) {
  for (const std::string reference :
       {"/x/s.xsd", "file:///x/s.xsd", "file:/x/s.xsd", "FILE:///x/s.xsd",
        "file://localhost/x/s.xsd", "//localhost/x/s.xsd", "///x/s.xsd"}) {
    EXPECT_EQ(LocalName(reference), "/x/s.xsd") << reference;
  }
}

TEST(FileUri, LocalPath_AnotherSchemeOrHost_GivesNothing) {
  for (const std::string reference :
       {"http://127.0.0.1/s.xsd", "https://127.0.0.1/s.xsd", "HTTP://127.0.0.1/s.xsd", "http:s.xsd",
        "ftp:/s.xsd", "jar:file:///s.xsd", "urn:x", "c:/s.xsd", "a+b-c.d:x", "file2:/x",
        "//127.0.0.1/s.xsd", "//otherhost/s.xsd", "//otherhost", "//localhost:80/s.xsd",
        "//user@localhost/s.xsd", "//localhost.otherhost/s.xsd", "file://otherhost/s.xsd",
        "file://127.0.0.1/s.xsd", "file://otherhost"}) {
    EXPECT_EQ(LocalName(reference), "none") << reference;
  }
}

TEST(FileUri, LocalPath_ColonThatEndsNoScheme_IsPartOfTheName) {
  EXPECT_EQ(LocalName("./a:b"), "/base/dir/./a:b");
  EXPECT_EQ(LocalName(":b"), "/base/dir/:b");
  EXPECT_EQ(LocalName("größe:b"), "/base/dir/größe:b");
}

}  // namespace
