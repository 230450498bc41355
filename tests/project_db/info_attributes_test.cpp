#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/project_differences.h"

namespace {

using projectdb::KelProjectDatabase;
using testing::Optional;

/// Both operations that store an attribute do the same.
struct StoreOperation {
  const char* name;
  bool (KelProjectDatabase::*store)(const std::string&, const std::string&);
};

void PrintTo(const StoreOperation& row, std::ostream* out) { *out << row.name; }

class InfoAttributeTest : public testing::TestWithParam<StoreOperation> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  bool Store(const std::string& name, const std::string& value) {
    return (database_.*GetParam().store)(name, value);
  }
  std::optional<std::string> Get(const std::string& name) const {
    std::string value;
    if (!database_.GetProjectInfoAttribute(name, value)) return std::nullopt;
    return value;
  }

  KelProjectDatabase database_;
};

const std::vector<std::string>& FreeNames() {
  static const std::vector<std::string> names = {
      "owner",      "vendor:id",       "",         ":a",        ":xmlns",       ":",
      "::",         "xmlnsx",          "xmlnsx:y", "xsix",      "xsix:a",       "XMLNS",
      "Xsi:nil",    "xml:lang",        "Name",     "name ",     ":name",        "kel:name",
      "SW_VERSION", "last_change_dat", "größe",    "two words", "sw_version:x", "xmln",
      "x",          "project_name"};
  return names;
}

TEST_P(InfoAttributeTest, Store_FreeName_KeepsTheValueUnderTheName) {
  for (const std::string& name : FreeNames()) EXPECT_TRUE(Store(name, "value of " + name)) << name;
  for (const std::string& name : FreeNames()) EXPECT_THAT(Get(name), Optional("value of " + name));
}

TEST_P(InfoAttributeTest, Store_AnyValue_KeepsItExactly) {
  for (const std::string& value :
       {std::string(), std::string(" a  b "), std::string("<&\">"), std::string("\xFF"),
        std::string("a\0b", 3), std::string(100000, 'x')}) {
    EXPECT_TRUE(Store("note", value));
    EXPECT_THAT(Get("note"), Optional(value));
  }
}

TEST_P(InfoAttributeTest, Store_SameNameTwice_KeepsTheSecondValue) {
  Store("owner", "first");
  EXPECT_TRUE(Store("owner", "second"));
  EXPECT_THAT(Get("owner"), Optional(std::string("second")));
}

TEST_P(InfoAttributeTest, Store_NameForXmlItself_ReturnsTrueAndDropsIt) {
  const auto before = GetProjectContents(database_);
  for (const std::string name : {"xmlns", "xmlns:kel", "xmlns:", "xmlns:a:b", "xsi",
                                 "xsi:schemaLocation", "xsi:", "xsi:nil"}) {
    EXPECT_TRUE(Store(name, "dropped")) << name;
    EXPECT_THAT(test_support::AllDifferences(before, database_), testing::IsEmpty()) << name;
  }
}

struct ReservedName {
  const char* name;
  std::string (KelProjectDatabase::*field)() const;
};

constexpr ReservedName kReservedNames[] = {
    {"name", &KelProjectDatabase::GetProjectName},
    {"sw_version", &KelProjectDatabase::GetProjectSoftwareVersion},
    {"last_change_date", &KelProjectDatabase::GetProjectLastModifyTime},
};

TEST_P(InfoAttributeTest, Store_ReservedName_AssignsItsFieldAndNoOther) {
  for (const ReservedName& stored : kReservedNames) {
    KelProjectDatabase database;
    ASSERT_TRUE(database.SetupProjectDatabase());
    EXPECT_TRUE((database.*GetParam().store)(stored.name, "text"));
    for (const ReservedName& read : kReservedNames) {
      SCOPED_TRACE(testing::Message() << stored.name << " then " << read.name);
      EXPECT_EQ((database.*read.field)(), &read == &stored ? "text" : "");
    }
  }
}

TEST_P(InfoAttributeTest, Get_ReservedName_IsAnsweredFromItsField) {
  Store("name", "renamed by attribute");
  database_.SetProjectName("renamed by setter");
  Store("sw_version", "9.9");
  database_.SetProjectSoftwareVersion("9.10");
  EXPECT_THAT(Get("name"), Optional(std::string("renamed by setter")));
  EXPECT_THAT(Get("sw_version"), Optional(std::string("9.10")));
}

INSTANTIATE_TEST_SUITE_P(
    Operations, InfoAttributeTest,
    testing::Values(StoreOperation{"InsertOrAssign",
                                   &KelProjectDatabase::InsertOrAssignProjectAttribute},
                    StoreOperation{"Add", &KelProjectDatabase::AddProjectInfoAttribute}),
    [](const auto& param_info) { return param_info.param.name; });

TEST(InfoAttributes, GetProjectInfoAttribute_ReservedNameWithEmptyField_GivesEmptyText) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const ReservedName& reserved : kReservedNames) {
    std::string value = "former text";
    EXPECT_TRUE(database.GetProjectInfoAttribute(reserved.name, value)) << reserved.name;
    EXPECT_EQ(value, "") << reserved.name;
  }
}

TEST(InfoAttributes, GetProjectInfoAttribute_NameNeverStored_ReturnsFalseAndLeavesTheText) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  std::string value = "former text";
  EXPECT_FALSE(database.GetProjectInfoAttribute("owner", value));
  EXPECT_EQ(value, "former text");
}

TEST(InfoAttributes, GetProjectInfoAttribute_OneStringAsNameAndValue_GivesTheValue) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  database.AddProjectInfoAttribute("owner", "lab 3");
  std::string text = "owner";
  EXPECT_TRUE(database.GetProjectInfoAttribute(text, text));
  EXPECT_EQ(text, "lab 3");
}

}  // namespace
