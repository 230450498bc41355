#include <projectdb/records.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

namespace {

using namespace projectdb;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

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

std::vector<DesignFile> TwoDesignFiles() {
  return {{"src/top.v", "v2001", "work"}, {"src/alu.vhd", "v2008", "alu_lib"}};
}

std::vector<Parameter> TwoParameters() {
  return {{"effort", "high", e_option}, {"retime", "", e_noarg}};
}

TEST(Records, Enumerators_Values_AreThoseOfTheFormat) {
  EXPECT_THAT((std::vector<int>{e_string, e_bool, e_option, e_noarg}), ElementsAre(0, 1, 2, 3));
  EXPECT_THAT(
      (std::vector<int>{e_synthesis, e_place_and_route, e_bitstream_generation, e_debugger}),
      ElementsAre(0, 1, 2, 3));
  EXPECT_EQ(static_cast<int>(kNoParameterType), 4);
}

TEST(Records, Enumerators_Qualified_AreTheSame) {
  EXPECT_EQ(ParameterType::e_noarg, e_noarg);
  EXPECT_EQ(ProcType::e_debugger, e_debugger);
}

TEST(Records, Parameter_Construct_StoresNameValueAndType) {
  const Parameter parameter("effort", "high", e_option);
  EXPECT_EQ(parameter.name, "effort");
  EXPECT_EQ(parameter.value, "high");
  EXPECT_EQ(parameter.type, e_option);
}

TEST(Records, Parameter_ConstructWithTypeOutsideTheEnumeration_StoresIt) {
  for (const int type : {4, 7, -1}) {
    EXPECT_EQ(Parameter("n", "v", static_cast<ParameterType>(type)).type, type);
  }
}

TEST(Records, DesignFile_Construct_StoresNameVersionAndLibrary) {
  const DesignFile file("src/top.v", "v2001", "work");
  EXPECT_EQ(file.name, "src/top.v");
  EXPECT_EQ(file.version, "v2001");
  EXPECT_EQ(file.library, "work");
}

TEST(Records, DeviceInfo_DefaultConstruct_IsEmpty) {
  const DeviceInfo info;
  EXPECT_THAT((std::vector{info.family, info.device, info.timing_model}), ElementsAre("", "", ""));
}

TEST(Records, DeviceInfo_Construct_StoresFamilyDeviceAndTimingModel) {
  Texts texts;
  const DeviceInfo info(texts.a, texts.b, texts.c);
  EXPECT_EQ(info.family, texts.a);
  EXPECT_EQ(info.device, texts.b);
  EXPECT_EQ(info.timing_model, texts.c);
}

TEST(Records, DesignInfo_DefaultConstruct_IsEmpty) {
  const DesignInfo info;
  EXPECT_THAT((std::vector{info.top_module, info.top_vhdl_arch, info.def_veri_version,
                           info.def_vhdl_version}),
              ElementsAre("", "", "", ""));
  EXPECT_THAT(info.design_files, IsEmpty());
}

TEST(Records, DesignInfo_Construct_TakesArchitectureAsThirdArgument) {
  Texts texts;
  std::vector<DesignFile> files;
  const DesignInfo info(texts.a, files, texts.b, texts.c, texts.d);
  EXPECT_EQ(info.top_module, texts.a);
  EXPECT_EQ(info.top_vhdl_arch, texts.b);
  EXPECT_EQ(info.def_veri_version, texts.c);
  EXPECT_EQ(info.def_vhdl_version, texts.d);
}

TEST(Records, DesignInfo_Construct_HoldsTheDesignFilesInOrder) {
  Texts texts;
  std::vector<DesignFile> files = TwoDesignFiles();
  const DesignInfo info(texts.a, files, texts.b, texts.c, texts.d);
  EXPECT_THAT(info.design_files, ElementsAre(Field(&DesignFile::name, "src/top.v"),
                                             Field(&DesignFile::name, "src/alu.vhd")));
}

TEST(Records, DesignConstraint_DefaultConstruct_IsEmpty) {
  const DesignConstraint constraint;
  EXPECT_THAT(constraint.sdc_files, IsEmpty());
  EXPECT_EQ(constraint.inter_file, "");
}

TEST(Records, DesignConstraint_Construct_HoldsFilesAndInterfaceFile) {
  std::vector<std::string> files = {"clk.sdc", "io.sdc"};
  std::string inter_file = "pins.interface.csv";
  const DesignConstraint constraint(files, inter_file);
  EXPECT_THAT(constraint.sdc_files, ElementsAre("clk.sdc", "io.sdc"));
  EXPECT_EQ(constraint.inter_file, "pins.interface.csv");
}

TEST(Records, DesignISF_DefaultConstruct_IsEmpty) { EXPECT_THAT(DesignISF().isf_files, IsEmpty()); }

TEST(Records, DesignISF_Construct_HoldsTheFiles) {
  std::vector<std::string> files = {"board.isf", "test.isf"};
  EXPECT_THAT(DesignISF(files).isf_files, ElementsAre("board.isf", "test.isf"));
}

TEST(Records, FlowProcess_DefaultConstruct_IsEmpty) {
  const FlowProcess process;
  EXPECT_EQ(process.name, "");
  EXPECT_EQ(process.tool_name, "");
  EXPECT_THAT(process.parameters, IsEmpty());
  EXPECT_THAT(process.parameter_maps, IsEmpty());
  EXPECT_THAT(process.parameter_map_index, IsEmpty());
}

TEST(Records, FlowProcess_Construct_HoldsNamesAndParametersAndNoMaps) {
  Texts texts;
  std::vector<Parameter> parameters = TwoParameters();
  const FlowProcess process(texts.a, texts.b, parameters);
  EXPECT_EQ(process.name, texts.a);
  EXPECT_EQ(process.tool_name, texts.b);
  EXPECT_THAT(process.parameters,
              ElementsAre(Field(&Parameter::name, "effort"), Field(&Parameter::name, "retime")));
  EXPECT_THAT(process.parameter_maps, IsEmpty());
  EXPECT_THAT(process.parameter_map_index, IsEmpty());
}

TEST(Records, FlowProcess_Construct_MapIndexHasOneBucketAndLoadFactorOne) {
  Texts texts;
  std::vector<Parameter> parameters;
  for (const FlowProcess& process : {FlowProcess(), FlowProcess(texts.a, texts.b, parameters)}) {
    EXPECT_EQ(process.parameter_map_index.bucket_count(), 1u);
    EXPECT_EQ(process.parameter_map_index.max_load_factor(), 1.0F);
  }
}

TEST(Records, Constructors_Texts_AreCopied) {
  Texts texts;
  std::vector<DesignFile> design_files;
  std::vector<std::string> names;
  std::vector<Parameter> parameters;
  const DeviceInfo device(texts.a, texts.b, texts.c);
  const DesignInfo design(texts.a, design_files, texts.b, texts.c, texts.d);
  const DesignConstraint constraint(names, texts.a);
  const FlowProcess process(texts.a, texts.b, parameters);
  EXPECT_EQ(texts, Texts());
}

/// What a constructor does with a vector that it is handed: it leaves the caller's empty and keeps
/// the elements where they are.
template <typename Element, typename MakeRecord>
void ExpectTakenOver(std::vector<Element> list, MakeRecord make_and_get_list) {
  const Element* const storage = list.data();
  EXPECT_EQ(make_and_get_list(list), storage);
  EXPECT_THAT(list, IsEmpty());
}

TEST(Records, DesignInfo_Construct_TakesTheFilesOver) {
  ExpectTakenOver(TwoDesignFiles(), [](auto& files) {
    Texts texts;
    return DesignInfo(texts.a, files, texts.b, texts.c, texts.d).design_files.data();
  });
}

TEST(Records, DesignConstraint_Construct_TakesTheFilesOver) {
  ExpectTakenOver(std::vector<std::string>{"clk.sdc"}, [](auto& files) {
    std::string inter_file;
    return DesignConstraint(files, inter_file).sdc_files.data();
  });
}

TEST(Records, DesignISF_Construct_TakesTheFilesOver) {
  ExpectTakenOver(std::vector<std::string>{"board.isf"},
                  [](auto& files) { return DesignISF(files).isf_files.data(); });
}

TEST(Records, FlowProcess_Construct_TakesTheParametersOver) {
  ExpectTakenOver(TwoParameters(), [](auto& parameters) {
    Texts texts;
    return FlowProcess(texts.a, texts.b, parameters).parameters.data();
  });
}

TEST(Records, ListWithReservedRoom_HandedOver_IsUsableAfterwards) {
  std::vector<std::string> files;
  files.reserve(10);
  files.push_back("board.isf");
  const DesignISF isf(files);
  files.push_back("next.isf");
  EXPECT_THAT(files, ElementsAre("next.isf"));
  EXPECT_THAT(isf.isf_files, ElementsAre("board.isf"));
}

TEST(FileEndings, Constants_Values_AreTheFormats) {
  EXPECT_EQ(KelProjectDatabase::XML_FILE_EXT, ".xml");
  EXPECT_EQ(KelProjectDatabase::SDC_FILE_EXT, ".sdc");
  EXPECT_EQ(KelProjectDatabase::INTERFACE_FILE_EXT, ".interface.csv");
}

const std::vector<std::pair<ParameterType, std::string>>& TypeTexts() {
  static const std::vector<std::pair<ParameterType, std::string>> texts = {
      {e_string, "e_string"}, {e_bool, "e_bool"}, {e_option, "e_option"}, {e_noarg, "e_noarg"}};
  return texts;
}

TEST(ParameterTypeText, getParameterTypeStr_NamedType_GivesItsText) {
  for (const auto& [type, text] : TypeTexts()) {
    EXPECT_EQ(KelProjectDatabase::getParameterTypeStr(type), text);
  }
}

TEST(ParameterTypeText, getParameterTypeStr_AnyOtherValue_GivesEmptyText) {
  for (const int type : {4, 5, 7, 256, -1, -2147483647 - 1, 2147483647}) {
    SCOPED_TRACE(type);
    EXPECT_EQ(KelProjectDatabase::getParameterTypeStr(static_cast<ParameterType>(type)), "");
  }
}

TEST(ParameterTypeText, getParameterTypeFromStr_TextOfType_GivesTheType) {
  for (const auto& [type, text] : TypeTexts()) {
    EXPECT_EQ(KelProjectDatabase::getParameterTypeFromStr(text), type) << text;
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

TEST(ParameterTypeText, getParameterTypeFromStr_TextOfNoType_GivesNoTypeBack) {
  EXPECT_EQ(KelProjectDatabase::getParameterTypeFromStr(
                KelProjectDatabase::getParameterTypeStr(kNoParameterType)),
            kNoParameterType);
}

}  // namespace
