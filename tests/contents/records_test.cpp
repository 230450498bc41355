#include <projectdb/records.h>

#include <type_traits>

#include <projectdb/project_db.h>

#include "contents/record_text.h"
#include "testing/test.h"

namespace {

using namespace test_support;
using namespace projectdb;

template <typename Record>
constexpr bool kIsPlainValue =
    std::is_copy_constructible_v<Record>&& std::is_copy_assignable_v<Record>&&
        std::is_nothrow_move_constructible_v<Record>&& std::is_move_assignable_v<Record> &&
    !std::is_polymorphic_v<Record>;

static_assert(kIsPlainValue<Parameter> && kIsPlainValue<DesignFile> && kIsPlainValue<DeviceInfo> &&
              kIsPlainValue<DesignInfo> && kIsPlainValue<DesignConstraint> &&
              kIsPlainValue<DesignISF> && kIsPlainValue<IPSrcFile> && kIsPlainValue<IP> &&
              kIsPlainValue<IPInfo> && kIsPlainValue<FlowProcess> &&
              kIsPlainValue<SynthesisProcess>);
static_assert(std::is_default_constructible_v<IPSrcFile> && std::is_default_constructible_v<IP> &&
              std::is_default_constructible_v<IPInfo> &&
              std::is_default_constructible_v<SynthesisProcess>);
static_assert(std::is_same_v<std::underlying_type_t<ParameterType>, int>);
static_assert(std::is_same_v<std::underlying_type_t<ProcType>, int>);
static_assert(std::is_convertible_v<ParameterType, int> && std::is_convertible_v<ProcType, int>);

/// The constructors take their texts as variables, which they must leave alone.
struct Texts {
  std::string a = "a: first text, long enough to own memory";
  std::string b = "b: second text, long enough to own memory";
  std::string c = "c: third text, long enough to own memory";
  std::string d = "d: fourth text, long enough to own memory";

  bool operator==(const Texts& other) const {
    return a == other.a && b == other.b && c == other.c && d == other.d;
  }
};

TEST(Records, Enumerators_Values_AreThoseOfTheFormat) {
  EXPECT_THAT((std::vector<int>{e_string, e_bool, e_option, e_noarg}), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(
      (std::vector<int>{e_synthesis, e_place_and_route, e_bitstream_generation, e_debugger}),
      ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(static_cast<int>(kNoParameterType), 4);
}

TEST(Records, DefaultConstruct_EveryRecord_IsEmpty) {
  const DeviceInfo device;
  const DesignInfo design;
  const DesignConstraint constraint;
  const FlowProcess process;
  for (const std::string& text :
       {device.family, device.device, device.timing_model, design.top_module, design.top_vhdl_arch,
        design.def_veri_version, design.def_vhdl_version, constraint.inter_file, process.name,
        process.tool_name}) {
    EXPECT_EQ(text, "");
  }
  EXPECT_THAT(design.design_files, IsEmpty());
  EXPECT_THAT(constraint.sdc_files, IsEmpty());
  EXPECT_THAT(DesignISF().isf_files, IsEmpty());
  EXPECT_THAT(process.parameters, IsEmpty());
  EXPECT_THAT(process.parameter_maps, IsEmpty());
}

TEST(Records, Parameter_Construct_StoresNameValueAndAnyType) {
  for (const int type : {int{e_option}, 4, 7, -1}) {
    const Parameter parameter("effort", "high", static_cast<ParameterType>(type));
    EXPECT_EQ(parameter.name, "effort");
    EXPECT_EQ(parameter.value, "high");
    EXPECT_EQ(parameter.type, type);
  }
}

TEST(Records, DesignFile_Construct_StoresNameVersionAndLibrary) {
  EXPECT_EQ(TextOf(DesignFile("a.v", "v2001", "work")), "a.v version=v2001 library=work");
}

TEST(Records, DeviceInfo_Construct_CopiesFamilyDeviceAndTimingModel) {
  Texts texts;
  const DeviceInfo info(texts.a, texts.b, texts.c);
  EXPECT_EQ(info.family, texts.a);
  EXPECT_EQ(info.device, texts.b);
  EXPECT_EQ(info.timing_model, texts.c);
  EXPECT_EQ(texts, Texts());
}

/// A vector that a constructor is handed: it leaves the caller's empty and keeps the elements where
/// they are.
template <typename Element>
class HandedOver {
 public:
  explicit HandedOver(std::vector<Element> list)
      : list_(std::move(list)), elements_(list_.data()) {}

  std::vector<Element>& list() { return list_; }
  void ExpectIn(const std::vector<Element>& kept, std::size_t size) {
    EXPECT_EQ(kept.data(), elements_);
    EXPECT_EQ(kept.size(), size);
    EXPECT_THAT(list_, IsEmpty());
  }

 private:
  std::vector<Element> list_;
  const Element* elements_;
};

TEST(Records, DesignInfo_Construct_TakesTheFilesOverAndTheArchitectureAsThirdArgument) {
  Texts texts;
  HandedOver<DesignFile> files({{"src/top.v", "v2001", "work"}, {"src/alu.vhd", "v2008", "alu"}});
  const DesignInfo info(texts.a, files.list(), texts.b, texts.c, texts.d);
  files.ExpectIn(info.design_files, 2);
  EXPECT_EQ(info.top_module, texts.a);
  EXPECT_EQ(info.top_vhdl_arch, texts.b);
  EXPECT_EQ(info.def_veri_version, texts.c);
  EXPECT_EQ(info.def_vhdl_version, texts.d);
  EXPECT_EQ(texts, Texts());
}

TEST(Records, DesignConstraint_Construct_TakesTheFilesOverAndCopiesTheInterfaceFile) {
  Texts texts;
  HandedOver<std::string> files({"clk.sdc", "io.sdc"});
  const DesignConstraint constraint(files.list(), texts.a);
  files.ExpectIn(constraint.sdc_files, 2);
  EXPECT_EQ(constraint.inter_file, texts.a);
  EXPECT_EQ(texts, Texts());
}

TEST(Records, DesignISF_Construct_TakesTheFilesOver) {
  HandedOver<std::string> files({"board.isf", "test.isf"});
  const DesignISF isf(files.list());
  files.ExpectIn(isf.isf_files, 2);
}

TEST(Records, FlowProcess_Construct_TakesTheParametersOverAndHasNoMaps) {
  Texts texts;
  HandedOver<Parameter> parameters({{"effort", "high", e_option}, {"retime", "", e_noarg}});
  const FlowProcess process(texts.a, texts.b, parameters.list());
  parameters.ExpectIn(process.parameters, 2);
  EXPECT_EQ(process.name, texts.a);
  EXPECT_EQ(process.tool_name, texts.b);
  EXPECT_EQ(texts, Texts());
  EXPECT_THAT(process.parameter_maps, IsEmpty());
}

TEST(Records, FlowProcess_Construct_MapIndexIsEmptyWithOneBucketAndLoadFactorOne) {
  Texts texts;
  std::vector<Parameter> parameters;
  for (const FlowProcess& process : {FlowProcess(), FlowProcess(texts.a, texts.b, parameters)}) {
    EXPECT_THAT(process.parameter_map_index, IsEmpty());
    EXPECT_EQ(process.parameter_map_index.bucket_count(), 1u);
    EXPECT_EQ(process.parameter_map_index.max_load_factor(), 1.0F);
  }
}

TEST(FileEndings, Constants_Values_AreTheFormats) {
  EXPECT_EQ(KelProjectDatabase::XML_FILE_EXT, ".xml");
  EXPECT_EQ(KelProjectDatabase::SDC_FILE_EXT, ".sdc");
  EXPECT_EQ(KelProjectDatabase::INTERFACE_FILE_EXT, ".interface.csv");
}

TEST(ParameterTypeText, NamedTypes_HaveTheirTexts) {
  const std::pair<ParameterType, std::string> texts[] = {
      {e_string, "e_string"}, {e_bool, "e_bool"}, {e_option, "e_option"}, {e_noarg, "e_noarg"}};
  for (const auto& [type, text] : texts) {
    EXPECT_EQ(KelProjectDatabase::getParameterTypeStr(type), text);
    EXPECT_EQ(KelProjectDatabase::getParameterTypeFromStr(text), type);
  }
}

TEST(ParameterTypeText, getParameterTypeStr_AnyOtherValue_GivesEmptyText) {
  for (const int type : {4, 5, 7, 256, -1, -2147483647 - 1, 2147483647}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(KelProjectDatabase::getParameterTypeStr(static_cast<ParameterType>(type)), "");
  }
}

TEST(ParameterTypeText, getParameterTypeFromStr_AnyOtherText_GivesNoType) {
  using std::string_literals::operator""s;
  for (const std::string text :
       {"", "E_BOOL", "e_Bool", "e_boolean", "e_boo", "e_", "bool", " e_bool", "e_bool ", "1"}) {
    EXPECT_EQ(KelProjectDatabase::getParameterTypeFromStr(text), kNoParameterType) << text;
  }
  EXPECT_EQ(KelProjectDatabase::getParameterTypeFromStr("e_bool\0"s), kNoParameterType);
}

}  // namespace
