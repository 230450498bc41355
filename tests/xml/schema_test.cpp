#include "xml/schema.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <system_error>

#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/util/XMLResourceIdentifier.hpp>

#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "xml/file_uri.h"
#include "xml/text.h"

namespace {

using namespace projectdb::xml;
using namespace test_support;

class SchemaFile : public testing::Test {
 protected:
  std::string Write(const std::string& name, const std::string& bytes) const {
    WriteFile(directory_ / name, bytes);
    return directory_ / name;
  }

  /// The resolver's answer to a reference in a file of the directory; never null.
  std::unique_ptr<xercesc::InputSource> Resolve(const std::string& reference) {
    Transcoder transcoder;
    const std::u16string system_id = transcoder.ToXml(reference);
    const std::u16string base = transcoder.ToXml(FileUri(directory_.path() / "p.xml"));
    xercesc::XMLResourceIdentifier identifier(xercesc::XMLResourceIdentifier::SchemaGrammar,
                                              system_id.c_str(), nullptr, nullptr, base.c_str());
    std::unique_ptr<xercesc::InputSource> input(source_.resolveEntity(&identifier));
    if (input == nullptr) throw std::runtime_error("no source for " + reference);
    return input;
  }

  /// All bytes of an input; "none" if it cannot be opened.
  static std::string Bytes(const xercesc::InputSource& input) {
    const std::unique_ptr<xercesc::BinInputStream> stream(input.makeStream());
    if (!stream) return "none";
    std::string bytes;
    char block[4096];
    while (const XMLSize_t size =
               stream->readBytes(reinterpret_cast<XMLByte*>(block), sizeof block)) {
      bytes.append(block, size);
    }
    return bytes;
  }

  XmlPlatform platform_;
  TemporaryDirectory directory_;
  projectdb::KelProjectDbErrorHandler errors_;
  SchemaSource source_{errors_};
};

TEST_F(SchemaFile, Open_WellFormedFile_GivesItsBytesAgainAndAgainUnderItsUri) {
  const auto input = source_.Open(Write("a b.xsd", DeviceOnlySchema()));
  ASSERT_NE(input, nullptr);
  EXPECT_EQ(Bytes(*input), DeviceOnlySchema());
  EXPECT_EQ(Bytes(*input), DeviceOnlySchema());
  EXPECT_EQ(TranscodeXMLString(input->getSystemId()), FileUri(directory_.path() / "a b.xsd"));
  EXPECT_FALSE(errors_.failed);
}

TEST_F(SchemaFile, Open_WhatIsNoFile_GivesNullAndIsNotRefused) {
  std::filesystem::create_directory(directory_ / "directory");
  for (const std::string name : {"gone.xsd", "directory", "no/such/s.xsd"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(source_.Open(directory_ / name), nullptr);
    EXPECT_FALSE(errors_.failed);
  }
}

TEST_F(SchemaFile, Open_FileThatIsMalformedOrHasADoctype_GivesNullAndIsRefused) {
  for (const std::string& bytes :
       {"<!DOCTYPE xs:schema>" + DeviceOnlySchema(), std::string("<xs:schema"), std::string()}) {
    errors_.failed = false;
    EXPECT_EQ(source_.Open(Write("bad.xsd", bytes)), nullptr);
    EXPECT_TRUE(errors_.failed);
  }
  EXPECT_NE(source_.Open(Write("s.xsd", DeviceOnlySchema())), nullptr);
  EXPECT_TRUE(errors_.failed);
}

/// A schema of so many bytes, most of them blanks.
std::string SchemaOfSize(std::size_t size) {
  const std::string schema = DeviceOnlySchema();
  return schema + std::string(size - schema.size(), ' ');
}

TEST_F(SchemaFile, Open_LargestFile_GivesItsBytesAndOneByteMoreIsRefused) {
  const auto input = source_.Open(Write("s.xsd", SchemaOfSize(SchemaSource::kMaxSize)));
  ASSERT_NE(input, nullptr);
  EXPECT_EQ(Bytes(*input).size(), SchemaSource::kMaxSize);
  EXPECT_FALSE(errors_.failed);
  EXPECT_EQ(source_.Open(Write("s.xsd", SchemaOfSize(SchemaSource::kMaxSize + 1))), nullptr);
  EXPECT_TRUE(errors_.failed);
}

TEST_F(SchemaFile, Open_FileOfATerabyte_GivesNullAndIsRefused) {
  const std::string path = Write("s.xsd", DeviceOnlySchema());
  std::error_code error;
  std::filesystem::resize_file(path, std::uintmax_t{1} << 40U, error);
  if (error) GTEST_SKIP() << "no file can be so large";
  EXPECT_EQ(source_.Open(path), nullptr);
  EXPECT_TRUE(errors_.failed);
}

TEST_F(SchemaFile, ResolveEntity_LocalReference_GivesTheFile) {
  const std::string path = Write("s.xsd", DeviceOnlySchema());
  for (const std::string& reference : {std::string("s.xsd"), path, FileUri(NativePath(path))}) {
    EXPECT_EQ(Bytes(*Resolve(reference)), DeviceOnlySchema()) << reference;
  }
}

TEST_F(SchemaFile, ResolveEntity_ReferenceThatCannotBeFollowed_GivesASourceThatCannotBeOpened) {
  const std::string path = Write("s.xsd", DeviceOnlySchema());
  for (const std::string& reference :
       {std::string("gone.xsd"), std::string("http://127.0.0.1/s.xsd"), "file://otherhost" + path,
        "//127.0.0.1" + path, std::string(".")}) {
    SCOPED_TRACE(reference);
    const auto input = Resolve(reference);
    EXPECT_EQ(Bytes(*input), "none");
    EXPECT_FALSE(input->getIssueFatalErrorIfNotFound());
    EXPECT_FALSE(errors_.failed);
  }
}

TEST_F(SchemaFile, ResolveEntity_RefusedFile_GivesASourceThatCannotBeOpened) {
  Write("s.xsd", "<!DOCTYPE xs:schema>" + DeviceOnlySchema());
  EXPECT_EQ(Bytes(*Resolve("s.xsd")), "none");
  EXPECT_TRUE(errors_.failed);
}

TEST_F(SchemaFile, ResolveEntity_NoBaseAndNoReference_GivesASourceThatCannotBeOpened) {
  xercesc::XMLResourceIdentifier identifier(xercesc::XMLResourceIdentifier::SchemaGrammar, nullptr);
  const std::unique_ptr<xercesc::InputSource> input(source_.resolveEntity(&identifier));
  ASSERT_NE(input, nullptr);
  EXPECT_EQ(Bytes(*input), "none");
}

}  // namespace
