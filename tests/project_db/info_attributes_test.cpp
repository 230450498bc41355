#include <optional>

#include "testing/project_differences.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb;
using testing::Optional;

/// Both operations that store an attribute do the same.
struct StoreOperation {
  const char* name;
  bool (KelProjectDatabase::*store)(const std::string&, const std::string&);
};

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

const std::string kFreeNames[] = {
    "owner",      "vendor:id",       "",         ":a",        ":xmlns",       ":",
    "::",         "xmlnsx",          "xmlnsx:y", "xsix",      "xsix:a",       "XMLNS",
    "Xsi:nil",    "xml:lang",        "Name",     "name ",     ":name",        "kel:name",
    "SW_VERSION", "last_change_dat", "größe",    "two words", "sw_version:x", "xmln",
    "x",          "project_name"};

TEST_P(InfoAttributeTest, Store_FreeName_KeepsTheValueUnderTheName) {
  for (const std::string& name : kFreeNames) EXPECT_TRUE(Store(name, "value of " + name)) << name;
  for (const std::string& name : kFreeNames) EXPECT_THAT(Get(name), Optional("value of " + name));
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
    EXPECT_THAT(test_support::AllDifferences(before, database_), IsEmpty()) << name;
  }
}

constexpr std::pair<const char*, std::string (KelProjectDatabase::*)() const> kReservedNames[] = {
    {"name", &KelProjectDatabase::GetProjectName},
    {"sw_version", &KelProjectDatabase::GetProjectSoftwareVersion},
    {"last_change_date", &KelProjectDatabase::GetProjectLastModifyTime},
};

TEST_P(InfoAttributeTest, Store_ReservedName_AssignsItsFieldAndNoOther) {
  for (const auto& stored : kReservedNames) {
    KelProjectDatabase database;
    ASSERT_TRUE(database.SetupProjectDatabase());
    EXPECT_TRUE((database.*GetParam().store)(stored.first, "text"));
    for (const auto& read : kReservedNames) {
      EXPECT_EQ((database.*read.second)(), &read == &stored ? "text" : "") << stored.first;
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
    ByName());

TEST(InfoAttributes, GetProjectInfoAttribute_ReservedNameWithEmptyField_GivesEmptyText) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const auto& [name, field] : kReservedNames) {
    std::string value = "former text";
    EXPECT_TRUE(database.GetProjectInfoAttribute(name, value)) << name;
    EXPECT_EQ(value, "") << name;
  }
}

TEST(InfoAttributes, GetProjectInfoAttribute_OneStringAsNameAndValue_GivesTheValueOrLeavesIt) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.CreateNewProjectDatabase("blinker"));
  std::string text = "owner";
  EXPECT_FALSE(database.GetProjectInfoAttribute(text, text));
  EXPECT_EQ(text, "owner");
  database.AddProjectInfoAttribute("owner", "lab 3");
  EXPECT_TRUE(database.GetProjectInfoAttribute(text, text));
  EXPECT_EQ(text, "lab 3");
}

}  // namespace
