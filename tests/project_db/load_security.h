#pragma once

#include <string>
#include <vector>

#include "testing/complete_project.h"
#include "testing/loopback_listener.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "xml/file_uri.h"

/// Project files that name a schema, and what may come of that.
namespace test_support {

inline const std::string kProjectNamespace = "http://schema.kel.example/wdp_proj";

/// Sections that DeviceOnlySchema refuses: the file loads only if that schema is not applied.
inline const std::string kForbidden = "<isf_info/>";

inline std::string HintAttribute(const std::string& hint) {
  return "xsi:schemaLocation=\"" + kProjectNamespace + " " + hint + "\"";
}

inline std::string XmlWithHint(const std::string& sections, const std::string& hint) {
  return ProjectXml(sections, HintAttribute(hint));
}

/// The path in the URI of a file, which on Windows is another text than the file's name.
inline std::string UriPath(const std::string& name) {
  const std::string start = "file://";
  return projectdb::xml::FileUri(NativePath(name)).substr(start.size());
}

inline std::string SchemaXml(const std::string& content, const std::string& attributes = "") {
  return "<xs:schema xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"" + attributes + ">" + content +
         "</xs:schema>";
}

inline const std::string kOfProjects = " targetNamespace=\"" + kProjectNamespace + "\"";

class LoadSecurity : public testing::Test, public Loading {
 protected:
  /// Expects that the last load refused the file as malformed and made no project.
  void ExpectRefused(bool result) {
    EXPECT_FALSE(result);
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }

  /// Expects that a file like this, loaded over the complete project, is refused and leaves that.
  void ExpectRefusedAndTheProjectUntouched(const std::string& bytes) {
    ASSERT_TRUE(LoadBytes(CompleteProjectXml()));
    EXPECT_FALSE(LoadBytes(bytes));
    EXPECT_THAT(AllDifferences(CompleteProject(directory.path()), database), IsEmpty());
  }

  /// Expects that the last load accepted the file without a word.
  void ExpectLoaded(bool result) {
    EXPECT_TRUE(result);
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path())));
  }

  /// Expects of a schema that includes DeviceOnlySchema from these locations, all of one file, that
  /// it is applied: read twice, the one would define what the other has defined.
  void ExpectReadOnce(const std::vector<std::string>& locations) {
    std::string includes;
    for (const std::string& location : locations) {
      includes += "<xs:include schemaLocation=\"" + location + "\"/>";
    }
    const std::string schema = Write("s.xsd", SchemaXml(includes, kOfProjects));
    ExpectLoaded(LoadBytes(ProjectXml(DeviceInfoXml("Orrin")), schema));
    EXPECT_FALSE(LoadBytes(ProjectXml(kForbidden), schema));
  }

  /// Nobody may have connected.
  void TearDown() override { EXPECT_EQ(listener_.Stop(), 0); }

  LoopbackListener listener_;
};

/// The ways in which a schema names another one.
inline std::vector<std::string> References(const std::string& location) {
  const std::string quoted = "\"" + location + "\"/>";
  return {"<xs:include schemaLocation=" + quoted, "<xs:redefine schemaLocation=" + quoted,
          "<xs:import namespace=\"urn:parts\" schemaLocation=" + quoted};
}

}  // namespace test_support
