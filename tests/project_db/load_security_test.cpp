#include <cstddef>
#include <filesystem>
#include <fstream>

#include "testing/test.h"
#include "tests/project_db/load_security.h"

namespace {

using namespace test_support;

// ---- Document type declarations

/// Document type declarations of all kinds, of a document whose root is "root".
std::vector<std::pair<std::string, std::string>> Doctypes(const std::string& root,
                                                          const std::string& authority) {
  const auto doctype = [&root](const std::string& rest) {
    return "<!DOCTYPE " + root + rest + ">";
  };
  std::string bomb = " [<!ENTITY e0 \"boom\">";
  for (int i = 1; i < 12; ++i) {
    const std::string inner = "&e" + std::to_string(i - 1) + ";";
    bomb += "<!ENTITY e" + std::to_string(i) + " \"";
    for (int k = 0; k < 10; ++k) bomb += inner;
    bomb += "\">";
  }
  return {
      {"empty", doctype("")},
      {"entity bomb", doctype(bomb + "]")},
      {"outside declaration", doctype(" SYSTEM \"http://" + authority + "/x.dtd\"")},
      {"public declaration", doctype(" PUBLIC \"-//X//Y\" \"http://" + authority + "/x.dtd\"")},
      {"local declaration", doctype(" SYSTEM \"x.dtd\"")},
      {"outside entity", doctype(" [<!ENTITY e SYSTEM \"file:///etc/passwd\">]")},
      {"network entity", doctype(" [<!ENTITY e SYSTEM \"http://" + authority + "/x\">]")},
      {"parameter entity", doctype(" [<!ENTITY % p SYSTEM \"http://" + authority + "/x\"> %p;]")},
      {"inner parameter entity", doctype(" [<!ENTITY % p \"<!ENTITY e 'x'>\"> %p;]")},
      {"attribute default", doctype(" [<!ATTLIST " + root + " name CDATA \"default\">]")}};
}

TEST_F(LoadSecurity, LoadProjectData_ProjectFileWithDoctype_IsRefusedAsMalformed) {
  Write("x.dtd", "<!ENTITY e \"x\">");
  for (const auto& [name, doctype] : Doctypes("project", listener_.authority())) {
    SCOPED_TRACE(name);
    ExpectRefused(LoadBytes("<?xml version=\"1.0\"?>" + doctype + ProjectXml("")));
  }
  ExpectRefused(
      LoadBytes("<!DOCTYPE project [<!ENTITY e \"Orrin\">]>" + ProjectXml(DeviceInfoXml("&e;"))));
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  ExpectRefused(LoadBytes("<!DOCTYPE project>" + ProjectXml(""), schema));
}

TEST_F(LoadSecurity, LoadProjectData_ProjectFileWithDoctype_LeavesTheProjectUntouched) {
  ExpectRefusedAndTheProjectUntouched("<!DOCTYPE project>" + ProjectXml(DeviceInfoXml("New")));
}

TEST_F(LoadSecurity, LoadProjectData_SchemaWithDoctype_IsRefusedAsMalformedGivenOrHinted) {
  for (const auto& [name, doctype] : Doctypes("xs:schema", listener_.authority())) {
    SCOPED_TRACE(name);
    ExpectRefused(LoadBytes(ProjectXml(""), Write("s.xsd", doctype + DeviceOnlySchema())));
    ExpectRefused(LoadBytes(XmlWithHint("", "s.xsd")));
  }
}

TEST_F(LoadSecurity, LoadProjectData_ReferencedSchemaWithDoctype_IsRefusedAsMalformed) {
  const std::string doctype = "<!DOCTYPE xs:schema [<!ENTITY e \"x\">]>";
  for (const std::string& reference : References("part.xsd")) {
    SCOPED_TRACE(reference);
    const bool is_import = reference.find("import") != std::string::npos;
    Write("part.xsd", doctype + SchemaXml("", is_import ? " targetNamespace=\"urn:parts\"" : ""));
    const std::string schema = Write("s.xsd", DeviceOnlySchema(reference));
    ExpectRefused(LoadBytes(ProjectXml(""), schema));
    ExpectRefused(LoadBytes(XmlWithHint("", "s.xsd")));
  }
}

TEST_F(LoadSecurity, LoadProjectData_IncludedSchema_IsApplied) {
  const std::string schema =
      Write("s.xsd", SchemaXml("<xs:include schemaLocation=\"parts/rules.xsd\"/>", kOfProjects));
  std::filesystem::create_directory(directory / "parts");
  Write("parts/rules.xsd", DeviceOnlySchema());
  ExpectRefused(LoadBytes(ProjectXml(kForbidden), schema));
  ExpectRefused(LoadBytes(XmlWithHint(kForbidden, "s.xsd")));
  ExpectLoaded(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
}

TEST_F(LoadSecurity, LoadProjectData_SchemaIncludingItself_Ends) {
  const std::string schema =
      Write("s.xsd", DeviceOnlySchema("<xs:include schemaLocation=\"s.xsd\"/>"));
  ExpectLoaded(LoadBytes(ProjectXml(""), schema));
}

TEST_F(LoadSecurity, LoadProjectData_XInclude_IsAnElementLikeAnyOther) {
  const std::string other = Write("other.xml", DeviceInfoXml("Orrin"));
  EXPECT_FALSE(LoadBytes(ProjectXml(
      "<xi:include xmlns:xi=\"http://www.w3.org/2001/XInclude\" href=\"" + other + "\"/>")));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), UnexpectedMessage("include")));
  EXPECT_EQ(database.GetDeviceFamily(), "");
}

TEST_F(LoadSecurity, LoadProjectData_SchemaIncludedUnderSeveralSpellings_IsReadOnce) {
  std::filesystem::create_directory(directory / "sub");
  Write("sub/rules.xsd", DeviceOnlySchema());
  ExpectReadOnce({"sub/rules.xsd", "sub/./rules.xsd", "sub/../sub/rules.xsd", "s%75b/rules.xsd"});
}

// ---- Hints that are not followed

TEST_F(LoadSecurity, LoadProjectData_HintThatIsNoLocalFile_LoadsAsWithoutSchema) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  const std::string uri_path = UriPath(schema);
  const std::string authority = listener_.authority();
  for (const std::string& hint :
       {"http://" + authority + "/s.xsd", "HTTP://" + authority + "/s.xsd",
        "https://" + authority + "/s.xsd", "ftp://" + authority + "/s.xsd",
        "//" + authority + "/s.xsd", "//127.0.0.1" + uri_path, "file://" + authority + "/s.xsd",
        "file://otherhost" + uri_path, "file://127.0.0.1" + uri_path,
        std::string("data:text/xml,x"), "jar:file://" + uri_path, std::string("urn:s.xsd")}) {
    SCOPED_TRACE(hint);
    ExpectLoaded(LoadBytes(XmlWithHint(kForbidden, hint)));
  }
}

TEST_F(LoadSecurity, LoadProjectData_HintThatIsNoPair_IsRefusedAsMalformed) {
  ExpectRefused(LoadBytes(ProjectXml("", "xsi:schemaLocation=\"wdp_proj.xsd\"")));
}

TEST_F(LoadSecurity, LoadProjectData_NetworkHintWithoutNamespaceOrOnASection_LoadsAsWithoutSchema) {
  const std::string hint = "http://" + listener_.authority() + "/s.xsd";
  ExpectLoaded(
      LoadBytes("<project xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                " xsi:noNamespaceSchemaLocation=\"" +
                hint + "\">" + kForbidden + "</project>"));
  ExpectLoaded(LoadBytes(ProjectXml("<isf_info " + HintAttribute(hint) + "/>")));
}

TEST_F(LoadSecurity, LoadProjectData_SchemaReferringToTheNetwork_IsAppliedWithoutConnection) {
  const std::string locations[] = {"http://" + listener_.authority() + "/part.xsd",
                                   "//" + listener_.authority() + "/part.xsd",
                                   "file://otherhost/part.xsd"};
  for (const std::string& location : locations) {
    for (const std::string& reference : References(location)) {
      SCOPED_TRACE(reference);
      const std::string schema = Write("s.xsd", DeviceOnlySchema(reference));
      ExpectLoaded(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
      ExpectLoaded(LoadBytes(XmlWithHint(DeviceInfoXml("Orrin"), "s.xsd")));
      EXPECT_FALSE(LoadBytes(ProjectXml(kForbidden), schema));
    }
  }
}

TEST_F(LoadSecurity, LoadProjectData_HintToAMissingFileOrADirectory_LoadsAsWithoutSchema) {
  std::filesystem::create_directory(directory / "s.xsd");
  for (const std::string hint : {"gone.xsd", "no/such/s.xsd", "file:///no/such/s.xsd", "%00",
                                 "a%00b.xsd", "%", "s.xsd", "s.xsd/", ".", "..", "/"}) {
    SCOPED_TRACE(hint);
    ExpectLoaded(LoadBytes(XmlWithHint(kForbidden, hint)));
  }
}

TEST_F(LoadSecurity, LoadProjectData_SchemaThatIsTooLarge_IsRefusedAsMalformed) {
  const std::string schema = Write("s.xsd", DeviceOnlySchema());
  std::ofstream(schema, std::ios::app) << std::string(std::size_t{16} << 20U, ' ');
  ExpectRefused(LoadBytes(ProjectXml(""), schema));
  ExpectRefused(LoadBytes(XmlWithHint("", "s.xsd")));
}

TEST_F(LoadSecurity, LoadProjectData_SchemaGiven_HintIsNotFollowed) {
  const std::string schema = Write("given.xsd", DeviceOnlySchema());
  Write("bad.xsd", "<xs:schema");
  for (const std::string& attribute :
       {HintAttribute("bad.xsd"), HintAttribute("http://" + listener_.authority() + "/s.xsd"),
        std::string("xsi:schemaLocation=\"urn:other bad.xsd\""),
        std::string("xsi:noNamespaceSchemaLocation=\"bad.xsd\"")}) {
    SCOPED_TRACE(attribute);
    ExpectLoaded(LoadBytes(ProjectXml(DeviceInfoXml("Orrin"), attribute), schema));
  }
}

TEST_F(LoadSecurity, LoadProjectData_SchemaGiven_HintCannotPutAnotherInItsPlace) {
  const std::string schema = Write("given.xsd", DeviceOnlySchema());
  Write("lax.xsd", SchemaXml("<xs:element name=\"project\"/>", kOfProjects));
  ExpectRefused(LoadBytes(XmlWithHint(kForbidden, "lax.xsd"), schema));
}

// ---- Hints that are followed

TEST_F(LoadSecurity, LoadProjectData_HintThatCanBeFollowed_IsApplied) {
  Write("s.xsd", DeviceOnlySchema());
  Write("my schema.xsd", DeviceOnlySchema());
  Write("schéma.xsd", DeviceOnlySchema());
  Write("50%.xsd", DeviceOnlySchema());
  std::filesystem::create_directory(directory / "sub");
  Write("sub/s.xsd", DeviceOnlySchema());
  const std::string absolute = directory / "s.xsd";
  const std::string uri_path = UriPath(absolute);
  for (const std::string& hint :
       {std::string("s.xsd"), std::string("./s.xsd"), std::string("sub/s.xsd"),
        std::string("sub/../s.xsd"), std::string("my%20schema.xsd"), std::string("schéma.xsd"),
        std::string("sch%C3%A9ma.xsd"), std::string("50%25.xsd"), std::string("%73.xsd"), absolute,
        "file://" + uri_path, "file://localhost" + uri_path, "FILE://" + uri_path,
        "file:" + uri_path}) {
    SCOPED_TRACE(hint);
    EXPECT_FALSE(LoadFile(Write("p.xml", XmlWithHint(kForbidden, hint))));
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_TRUE(LoadBytes(XmlWithHint(DeviceInfoXml("Orrin"), hint)));
  }
}

TEST_F(LoadSecurity, LoadProjectData_FileThatBreaksItsHintedSchema_LeavesTheProjectUntouched) {
  Write("s.xsd", DeviceOnlySchema());
  ExpectRefusedAndTheProjectUntouched(XmlWithHint(DeviceInfoXml("New") + kForbidden, "s.xsd"));
}

TEST_F(LoadSecurity, LoadProjectData_RelativeHint_IsBelowTheProjectsDirectory) {
  Write("s.xsd", DeviceOnlySchema());
  const TemporaryDirectory elsewhere;
  WriteFile(elsewhere / "s.xsd", "<xs:schema");
  WriteFile(elsewhere / "other.xsd", DeviceOnlySchema());
  const WorkingDirectory working_directory(elsewhere.path());
  ExpectRefused(LoadBytes(XmlWithHint(kForbidden, "s.xsd")));
  ExpectLoaded(LoadBytes(XmlWithHint(DeviceInfoXml("Orrin"), "s.xsd")));
  ExpectLoaded(LoadBytes(XmlWithHint(kForbidden, "other.xsd")));
}

TEST_F(LoadSecurity, LoadProjectData_RelativeHintOfRelativeFile_IsBelowTheProjectsDirectory) {
  std::filesystem::create_directory(directory / "sub");
  Write("sub/s.xsd", DeviceOnlySchema());
  Write("sub/p.xml", XmlWithHint(kForbidden, "s.xsd"));
  const WorkingDirectory working_directory(directory.path());
  EXPECT_FALSE(LoadFile("sub/p.xml"));
  EXPECT_EQ(messages, RefusedMessages("sub/p.xml"));
}

TEST_F(LoadSecurity, LoadProjectData_HintWithoutNamespaceThatCanBeFollowed_IsApplied) {
  Write("s.xsd", SchemaXml("<xs:element name=\"project\"><xs:complexType/></xs:element>"));
  ExpectRefused(
      LoadBytes("<project xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
                " xsi:noNamespaceSchemaLocation=\"s.xsd\"><isf_info/></project>"));
}

TEST_F(LoadSecurity, LoadProjectData_GivenSchemaMissing_HintIsFollowed) {
  Write("s.xsd", DeviceOnlySchema());
  EXPECT_FALSE(LoadBytes(XmlWithHint(kForbidden, "s.xsd"), "gone.xsd"));
  EXPECT_THAT(messages, ElementsAre(ReadingMessage(path()), SchemaMissingMessage("gone.xsd"),
                                    MalformedMessage(path())));
}

TEST_F(LoadSecurity, LoadProjectData_UnusableHintedSchema_IsRefusedAsMalformed) {
  const std::string cases[] = {"", "<xs:schema", DeviceOnlySchema() + "<more/>",
                               DeviceOnlySchema("<xs:element name=\"e\" type=\"xs:nonsense\"/>")};
  for (const std::string& bytes : cases) {
    SCOPED_TRACE(bytes);
    Write("s.xsd", bytes);
    ExpectRefused(LoadBytes(XmlWithHint(DeviceInfoXml("Orrin"), "s.xsd")));
  }
  ExpectRefused(LoadBytes(XmlWithHint(DeviceInfoXml("Orrin"), "p.xml")));
}

}  // namespace
