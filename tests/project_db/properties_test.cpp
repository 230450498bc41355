#include <map>

#include <projectdb/project_db.h>

#include "testing/test.h"

namespace {

using namespace projectdb;
using namespace test_support;
using Db = KelProjectDatabase;

struct Property {
  const char* name;
  std::string (KelProjectDatabase::*get)() const;
  void (KelProjectDatabase::*set)(const std::string&);
};

const Property kSettableProperties[] = {
    {"ProjectName", &Db::GetProjectName, &Db::SetProjectName},
    {"ProjectCurrentPath", &Db::GetProjectCurrentPath, &Db::SetProjectCurrentPath},
    {"ProjectSoftwareVersion", &Db::GetProjectSoftwareVersion, &Db::SetProjectSoftwareVersion},
    {"DeviceFamily", &Db::GetDeviceFamily, &Db::SetDeviceFamily},
    {"DeviceModel", &Db::GetDeviceModel, &Db::SetDeviceModel},
    {"DeviceTimingModel", &Db::GetDeviceTimingModel, &Db::SetDeviceTimingModel},
    {"DesignTopModuleName", &Db::GetDesignTopModuleName, &Db::SetDesignTopModuleName},
    {"DesignTopVHDLArchitecture", &Db::GetDesignTopVHDLArchitecture,
     &Db::SetDesignTopVHDLArchitecture}};

std::map<std::string, std::string> AllProperties(const KelProjectDatabase& database) {
  std::map<std::string, std::string> texts = {
      {"ProjectLastModifyTime", database.GetProjectLastModifyTime()},
      {"InterfaceConstraint", database.GetInterfaceConstraint()},
  };
  for (const Property& property : kSettableProperties) {
    texts[property.name] = (database.*property.get)();
  }
  return texts;
}

class PropertyTest : public testing::TestWithParam<Property> {
 protected:
  void SetUp() override { ASSERT_TRUE(database_.CreateNewProjectDatabase("blinker")); }

  void Set(const std::string& text) { (database_.*GetParam().set)(text); }
  std::string Get() const { return (database_.*GetParam().get)(); }

  KelProjectDatabase database_;
};

TEST_P(PropertyTest, Get_AfterSet_GivesExactlyTheText) {
  const std::string texts[] = {
      "counter_top", "",         " two  words ", "\ttab\r\nand line",    "größe_α_数",
      "<a & \"b\">", "\xFF\xFE", "x:y",          std::string("a\0b", 3), std::string(100000, 'x'),
  };
  for (const std::string& text : texts) {
    Set(text);
    EXPECT_EQ(Get(), text);
  }
}

TEST_P(PropertyTest, Set_AnyText_ChangesNoOtherProperty) {
  auto expected = AllProperties(database_);
  expected[GetParam().name] = "changed";
  Set("changed");
  EXPECT_EQ(AllProperties(database_), expected);
}

TEST_P(PropertyTest, GetAndSet_TextsChangedAfterwards_LeaveTheProject) {
  std::string text = "counter_top";
  Set(text);
  text[0] = 'X';
  Get()[0] = 'Y';
  EXPECT_EQ(Get(), "counter_top");
}

INSTANTIATE_TEST_SUITE_P(Properties, PropertyTest, testing::ValuesIn(kSettableProperties),
                         ByName());

TEST(ReadOnlyProperties, Get_EmptyProject_AreEmpty) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const auto& [name, text] : AllProperties(database)) EXPECT_EQ(text, "") << name;
}

}  // namespace
