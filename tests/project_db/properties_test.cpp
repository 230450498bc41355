#include <map>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <projectdb/project_db.h>

namespace {

using projectdb::KelProjectDatabase;
using Db = KelProjectDatabase;

struct Property {
  const char* name;
  std::string (KelProjectDatabase::*get)() const;
  void (KelProjectDatabase::*set)(const std::string&);
};

void PrintTo(const Property& row, std::ostream* out) { *out << row.name; }

const std::vector<Property>& SettableProperties() {
  static const std::vector<Property> properties = {
      {"ProjectName", &Db::GetProjectName, &Db::SetProjectName},
      {"ProjectCurrentPath", &Db::GetProjectCurrentPath, &Db::SetProjectCurrentPath},
      {"ProjectSoftwareVersion", &Db::GetProjectSoftwareVersion, &Db::SetProjectSoftwareVersion},
      {"DeviceFamily", &Db::GetDeviceFamily, &Db::SetDeviceFamily},
      {"DeviceModel", &Db::GetDeviceModel, &Db::SetDeviceModel},
      {"DeviceTimingModel", &Db::GetDeviceTimingModel, &Db::SetDeviceTimingModel},
      {"DesignTopModuleName", &Db::GetDesignTopModuleName, &Db::SetDesignTopModuleName},
      {"DesignTopVHDLArchitecture", &Db::GetDesignTopVHDLArchitecture,
       &Db::SetDesignTopVHDLArchitecture},
  };
  return properties;
}

std::map<std::string, std::string> AllProperties(const KelProjectDatabase& database) {
  std::map<std::string, std::string> texts = {
      {"ProjectLastModifyTime", database.GetProjectLastModifyTime()},
      {"InterfaceConstraint", database.GetInterfaceConstraint()},
  };
  for (const Property& property : SettableProperties()) {
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

INSTANTIATE_TEST_SUITE_P(Properties, PropertyTest, testing::ValuesIn(SettableProperties()),
                         [](const auto& param_info) { return param_info.param.name; });

TEST(ReadOnlyProperties, Get_EmptyProject_AreEmpty) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  for (const auto& [name, text] : AllProperties(database)) EXPECT_EQ(text, "") << name;
}

TEST(ReadOnlyProperties, GetInterfaceConstraint_ConstraintSet_IsNotResolved) {
  KelProjectDatabase database;
  ASSERT_TRUE(database.SetupProjectDatabase());
  database.SetProjectCurrentPath("/work/proj");
  ASSERT_TRUE(database.SetInterfaceConstraint("io/pins.interface.csv"));
  EXPECT_EQ(database.GetInterfaceConstraint(), "io/pins.interface.csv");
}

}  // namespace
