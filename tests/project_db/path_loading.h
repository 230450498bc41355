#pragma once

#include <string>

#include "testing/project_loading.h"
#include "testing/test.h"

namespace test_support {

/// Loads of files whose path is what matters, with the messages that go with each outcome.
class PathLoading : public testing::Test, public Loading {
 protected:
  void ExpectLoaded(const std::string& path, const std::string& schema = "") {
    database.CleanProjectDatabase();
    EXPECT_TRUE(LoadFile(path, schema));
    EXPECT_THAT(messages, ElementsAre(ReadingMessage(path)));
    EXPECT_EQ(database.GetDeviceFamily(), "Orrin");
  }

  void ExpectMissing(const std::string& path) {
    EXPECT_FALSE(LoadFile(path));
    EXPECT_THAT(messages, ElementsAre(MissingMessage(path)));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }

  void ExpectRefused() {
    EXPECT_FALSE(LoadFile(path()));
    EXPECT_EQ(messages, RefusedMessages(path()));
    EXPECT_FALSE(database.IsProjectDatabaseExist());
  }
};

}  // namespace test_support
