#pragma once

#include <string>
#include <vector>

#include "testing/complete_project.h"
#include "testing/loopback_listener.h"
#include "testing/project_loading.h"
#include "testing/test.h"

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
