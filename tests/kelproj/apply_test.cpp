#include <projectdb/vocabulary.h>

#include "tests/kelproj/kelproj_test.h"

namespace {

using namespace test_support;
using Json = nlohmann::json;

class Apply : public KelprojTest {
 protected:
  void SetUp() override {
    MakeProject();
    ASSERT_EQ(
        Run({"add", "blinker.xml", "--rtl", "rtl/a.v", "rtl/b.v", "--library", "work"}).status, 0);
    ASSERT_EQ(Run({"set", "blinker.xml", "info.owner", "M. Ferreira", "synthesis.tool", "synth",
                   "synthesis.param.goal", "speed", "synthesis.defmacro.WIDTH", "8"}),
              Done());
    ASSERT_EQ(Run({"set", "blinker.xml", "synthesis.param.retiming", "true", "--type", "e_bool"}),
              Done());
  }

  // What "show --json" has, but for what every writing and every load makes anew.
  static Json Contents(const std::string& document) {
    Json project = Json::parse(document);
    for (const char* key : {"sw_version", "last_change_date", "directory"}) project.erase(key);
    return project;
  }

  Json Project(const std::string& file = "blinker.xml") const {
    return Contents(Run({"show", file, "--json"}).out);
  }

  // A writing gives each process its name, even if a file has told of none.
  static Json WithoutNamesOfProcesses(Json project) {
    for (const auto& process : projectdb::kFlowProcesses) project.at(process.name).erase("name");
    return project;
  }

  Outcome Applied(const std::string& document, const std::string& file = "blinker.xml") const {
    ProcessSettings settings;
    settings.input = document;
    return Run({"apply", file, "-"}, settings);
  }

  void ExpectRefused(const std::string& document, const std::string& reason) const {
    const std::string before = Read("blinker.xml");
    EXPECT_EQ(Applied(document), Failed(reason));
    EXPECT_EQ(Read("blinker.xml"), before);
  }
};

TEST_F(Apply, AllOfAnotherProject_MakesTheContentsThose) {
  std::filesystem::copy_file(SampleProject(), PathOf("sample.xml"));
  EXPECT_EQ(Applied(Run({"show", "sample.xml", "--json"}).out), Done());
  EXPECT_EQ(Project(), Project("sample.xml"));
  EXPECT_EQ(Run({"diff", "sample.xml", "blinker.xml"}), Done());
}

TEST_F(Apply, AllOfANewProject_TakesAwayWhatItHasNot) {
  ASSERT_EQ(Run({"new", "mixer", "-o", "mixer.xml"}), Done());
  EXPECT_EQ(Applied(Run({"show", "mixer.xml", "--json"}).out), Done());
  EXPECT_EQ(Run({"diff", "mixer.xml", "blinker.xml"}), Done());
}

TEST_F(Apply, AllOfAProjectWithoutProcesses_MakesThemEmpty) {
  Write("bare.xml", "<kel:project xmlns:kel=\"http://schema.kel.example/wdp_proj\"/>");
  EXPECT_EQ(Applied(Run({"show", "bare.xml", "--json"}).out), Done());
  EXPECT_EQ(Shown("synthesis"), Json::parse(R"({"name": "synthesis", "tool": "", "param": {},
                                                "dynparam": {}, "defmacro": {}})"));
  EXPECT_EQ(Applied(Run({"show", "blinker.xml", "--json"}).out, "bare.xml"), Done());
}

constexpr char kOddProject[] =
    R"(<kel:project xmlns:kel="http://schema.kel.example/wdp_proj" xmlns:board="urn:board"
                    board:rev="3" _.x-1="">
  <kel:design_info>
    <kel:design_file/><kel:design_file name="/"/><kel:design_file name="a.v"/>
    <kel:design_file name="./a.v" library="work"/>
  </kel:design_info>
  <kel:constraint_info>
    <kel:sdc_file name="clocks.tcl"/><kel:sdc_file name=" "/><kel:inter_file name="pins.csv"/>
  </kel:constraint_info>
  <kel:sim_info><kel:sim_file/></kel:sim_info>
  <kel:ip_info>
    <kel:ip/><kel:ip instance_name="u"/>
    <kel:ip instance_name="u" path="p.ip"><kel:ip_src_file/></kel:ip>
  </kel:ip_info>
  <kel:synthesis>
    <kel:param value="nameless"/><kel:param name="a.b" value="maybe" value_type="e_bool"/>
    <kel:param name="max_threads" value="all"/>
    <kel:defmacro name="two words" value="&#10;" value_type="e_option"/>
  </kel:synthesis>
  <kel:place_and_route/><kel:bitstream_generation/><kel:debugger/>
</kel:project>
)";

TEST_F(Apply, AllOfAnOddProjectThatLoads_MakesTheContentsThose) {
  Write("odd.xml", kOddProject);
  const Outcome outcome = Applied(Run({"show", "odd.xml", "--json"}).out);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.err, Not(HasSubstr("error")));
  EXPECT_EQ(Project(), Project("odd.xml"));
  EXPECT_EQ(Run({"diff", "odd.xml", "blinker.xml"}), Done());
}

TEST_F(Apply, AllOfAnyFileThatLoads_MakesTheContentsThose) {
  int loaded = 0;
  for (const std::string& file : CorpusProjects()) {
    const Outcome shown = Run({"show", file, "--json"});
    // What only XML 1.1 can carry, no writing can.
    const bool is_beyond_xml10 =
        std::filesystem::path(file).filename() == "xml11_control_characters.xml";
    if (shown.status != 0 || is_beyond_xml10) continue;
    ++loaded;
    const Outcome applied = Applied(shown.out);
    EXPECT_EQ(applied.status, 0) << file << ": " << applied.err;
    EXPECT_EQ(WithoutNamesOfProcesses(Project()), WithoutNamesOfProcesses(Contents(shown.out)))
        << file;
  }
  EXPECT_GE(loaded, 20);
}

TEST_F(Apply, WhatDeservesALook_IsAWarningWhenItComesIn) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"constraint": {"sdc": ["a.sdc", "clocks.tcl"]}})",
       "constraint.sdc[1]: \"clocks.tcl\" does not end in .sdc"},
      {R"({"design": {"files": [{"name": "a.v"}, {"name": "./a.v"}]}})",
       "design.files[1]: \"./a.v\" is the file of design.files[0] too"},
      {R"({"misc": {"files": [{"name": ""}]}})", "misc.files[0]: it names no file"},
      {R"({"debugger": {"param": {"": {"value": "1"}}}})",
       "debugger.param: a parameter has no name"}};
  for (const auto& [document, warning] : cases) {
    EXPECT_EQ(Applied(document), DoneWithContentWarning(warning));
  }
  EXPECT_EQ(Applied(R"({"name": "mixer"})"), Done());
}

TEST_F(Apply, AllOfTheProjectItself_LeavesTheFile) {
  const std::string before = Read("blinker.xml");
  EXPECT_EQ(Applied(Run({"show", "blinker.xml", "--json"}).out), Done());
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Apply, ManyParameters_AreAllThoseOfTheirMap) {
  Json parameters;
  for (int i = 0; i < 5000; ++i) {
    parameters["p" + std::to_string(i)] = {{"value", std::to_string(i)}, {"type", "e_string"}};
  }
  EXPECT_EQ(Applied(Json{{"debugger", {{"param", parameters}}}}.dump()), Done());
  EXPECT_EQ(Project().at("debugger").at("param"), parameters);
}

TEST_F(Apply, PartOfADocument_ChangesThatPartAlone) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"name": "mixer"})", "/name"},
      {R"({"device": {"timing_model": "slow_85c"}})", "/device/timing_model"},
      {R"({"info": {"review": "done"}})", "/info"},
      {R"({"design": {"files": [{"name": "rtl/c.v", "version": "sv_2017", "library": "x"}]}})",
       "/design/files"},
      {R"({"constraint": {"sdc": ["clocks.sdc"]}})", "/constraint/sdc"},
      {R"({"ip": [{"instance_name": "u_pll", "path": "pll.ip", "files": ["pll.v"]}]})", "/ip"},
      {R"({"debugger": {"tool": "probe"}})", "/debugger/tool"},
      {R"({"synthesis": {"param": {"effort": {"value": "3", "type": "e_option"}}}})",
       "/synthesis/param"},
      {R"({"synthesis": {"defmacro": {}}})", "/synthesis/defmacro"}};
  for (const auto& [document, key] : cases) {
    const Json::json_pointer place(key);
    Json expected = Project();
    ASSERT_NE(expected.at(place), Json::parse(document).at(place));
    expected.at(place) = Json::parse(document).at(place);
    EXPECT_EQ(Applied(document), Done());
    EXPECT_EQ(Project(), expected);
  }
}

TEST_F(Apply, EmptyDocument_LeavesTheFile) {
  const std::string before = Read("blinker.xml");
  EXPECT_EQ(Applied("{}"), Done());
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Apply, WhatAnEntryLeavesOut_IsTheDefault) {
  EXPECT_EQ(Applied(R"({"design": {"files": [{"name": "c.v"}]},
                        "ip": [{"instance_name": "u_pll", "path": "pll.ip"}]})"),
            Done());
  EXPECT_EQ(Shown("design.files"),
            Json::parse(R"([{"name": "c.v", "version": "", "library": "default"}])"));
  EXPECT_EQ(Shown("ip"),
            Json::parse(R"([{"instance_name": "u_pll", "path": "pll.ip", "files": []}])"));
}

TEST_F(Apply, ParameterWithoutType_KeepsItsTypeOrGetsThatOfItsMap) {
  EXPECT_EQ(Applied(R"({"synthesis": {"param": {"retiming": {"value": "false"},
                                                "mode": {"value": "fast"}},
                                      "defmacro": {"DEPTH": {"value": "4"}}}})"),
            Done());
  EXPECT_EQ(Shown("synthesis.param"),
            Json::parse(R"({"retiming": {"value": "false", "type": "e_bool"},
                            "mode": {"value": "fast", "type": "e_string"}})"));
  EXPECT_EQ(Shown("synthesis.defmacro"), Json::parse(R"({"DEPTH": {"value": "4", "type": ""}})"));
}

TEST_F(Apply, Document_IsReadFromAFileOrFromStandardInput) {
  Write("part.json", R"({"name": "mixer"})");
  EXPECT_EQ(Run({"apply", "blinker.xml", "part.json"}), Done());
  EXPECT_EQ(Get("blinker.xml", "name"), "mixer\n");
  ProcessSettings settings;
  settings.input = R"({"name": "filter"})";
  EXPECT_EQ(Run({"apply", "blinker.xml"}, settings), Done());
  EXPECT_EQ(Get("blinker.xml", "name"), "filter\n");
}

TEST_F(Apply, StampsAndDirectory_AreIgnored) {
  const std::string before = Read("blinker.xml");
  EXPECT_EQ(Applied(R"({"sw_version": "9", "last_change_date": "x", "directory": "/"})"), Done());
  EXPECT_EQ(Read("blinker.xml"), before);
}

TEST_F(Apply, UnknownKey_IsRefusedWithItsPath) {
  const char* const kNoKey = ": a project has no such key";
  const std::pair<const char*, const char*> cases[] = {
      {R"({"device": {"speed": "3"}})", "device.speed"},
      {R"({"": "x"})", "the document"},
      {R"({"synthesis": {"param": {"a": {"value": "1", "kind": "x"}}}})", "synthesis.param.a.kind"},
      {R"({"debugger": {"defmacro": {}}})", "debugger.defmacro"},
      {R"({"synthesis": {"parameters": []}})", "synthesis.parameters"},
      {R"({"design": {"files": [{"name": "a.v"}, {"name": "b.v", "lib": "x"}]}})",
       "design.files[1].lib"},
      {R"({"ip": [{"instance_name": "u", "path": "p", "sources": []}]})", "ip[0].sources"}};
  for (const auto& [document, path] : cases) ExpectRefused(document, path + std::string(kNoKey));
}

TEST_F(Apply, UnknownKeyThatIsNearAKnownOne_IsAnsweredWithThat) {
  const std::array<std::string, 3> cases[] = {
      {R"({"name": "x", "nmae": "y"})", "nmae", "name"},
      {R"({"device": {"famly": "x"}})", "device.famly", "device.family"},
      {R"({"design": {"file": []}})", "design.file", "design.files"},
      {R"({"syntesis": {}})", "syntesis", "synthesis"},
      {R"({"synthesis": {"macro": {}}})", "synthesis.macro", "synthesis.defmacro"},
      {R"({"synthesis": {"param": {"a": {"vlaue": "1", "value": "1"}}}})",
       "synthesis.param.a.vlaue", "synthesis.param.a.value"},
      {R"({"ip": [{"instance_name": "u", "path": "p", "file": []}]})", "ip[0].file",
       "ip[0].files"}};
  for (const auto& [document, path, near] : cases) {
    ExpectRefused(document, path + ": a project has no such key; did you mean \"" + near + "\"?");
  }
}

TEST_F(Apply, KeyTwiceInAnObject_IsRefusedWithItsPath) {
  const std::pair<const char*, const char*> cases[] = {
      {R"({"name": "a", "device": {}, "name": "a"})", "name"},
      {R"({"device": {"family": "a"}, "device": {"device": "b"}})", "device"},
      {R"({"info": {"owner": "a", "board": "c", "owner": "b"}})", "info.owner"},
      {R"({"design": {"files": [{"name": "a.v"}, {"name": "b.v", "name": "c.v"}]}})",
       "design.files[1].name"},
      {R"({"ip": [{"instance_name": "u", "files": ["a.v", "b.v"], "path": "", "path": ""}]})",
       "ip[0].path"},
      {R"({"synthesis": {"param": {"a": {"value": "1"}, "a": {"value": "1"}}}})",
       "synthesis.param.a"},
      {R"([[], [{"a": 1}, 2, {"a": 1, "a": 1}]])", "[1][2].a"}};
  for (const auto& [document, path] : cases) {
    ExpectRefused(document, path + std::string(": it is there twice"));
  }
}

TEST_F(Apply, TextThatIsNoJson_IsRefusedWithLineAndColumn) {
  const std::pair<std::string, const char*> cases[] = {
      {"", "line 1, column 1"},
      {"{\"name\": ", "line 1, column 10"},
      {"{\n  \"name\": mixer\n}\n", "line 2, column 11"},
      {"{\"name\": \"Tür\" \"Ä\"}", "line 1, column 18"},
      {"{}\n\n}", "line 3, column 1"},
      {std::string(100000, '['), "line 1, column 100001"}};
  for (const auto& [document, place] : cases) {
    ExpectRefused(document, "the document is no JSON: " + std::string(place));
  }
}

TEST_F(Apply, ValueOfAnotherForm_IsRefusedWithItsPath) {
  const std::pair<const char*, const char*> cases[] = {
      {"[]", "the document: an object is needed"},
      {R"({"name": 3})", "name: a text is needed"},
      {R"({"name": 1e999})", "the document is no JSON: line 1, column 14"},
      {R"({"device": "R40"})", "device: an object is needed"},
      {R"({"design": {"files": {}}})", "design.files: a list is needed"},
      {R"({"design": {"files": ["a.v"]}})", "design.files[0]: an object is needed"},
      {R"({"design": {"files": [{"library": "x"}]}})", "design.files[0].name: it is missing"},
      {R"({"constraint": {"sdc": [1]}})", "constraint.sdc[0]: a text is needed"},
      {R"({"info": {"name": "x"}})", "info.name: a project does not keep it"},
      {R"({"synthesis": {"name": "x"}})", "synthesis.name: it is always \"synthesis\""},
      {R"({"synthesis": {"param": {"a": {"type": "e_bool"}}}})",
       "synthesis.param.a.value: it is missing"},
      {R"({"synthesis": {"param": {"a": {"value": "1", "type": "text"}}}})",
       "synthesis.param.a.type: there is no type \"text\""},
      {R"({"synthesis": {"param": {"a": {"value": "1", "type": "e_boole"}}}})",
       "synthesis.param.a.type: there is no type \"e_boole\"; did you mean \"e_bool\"?"},
      {R"({"device.family": "Varel"})", "device.family: a part of a key has no dot"},
      {R"({"constraint": {"sdc": ["a.sdc", ""]}})",
       "constraint.sdc[1]: a project does not keep a file without a name"},
      {R"({"isf": {"files": [""]}})",
       "isf.files[0]: a project does not keep a file without a name"},
      {R"({"info": {"two words": "x"}})",
       "Failed writing XML file blinker.xml: info.two words: \"two words\" cannot be the name of "
       "an attribute"},
      {R"({"synthesis": {"param": {"a": {"value": "1", "type": "e_noarg"}}}})",
       "synthesis.param.a: a parameter of type e_noarg takes no value"}};
  for (const auto& [document, reason] : cases) ExpectRefused(document, reason);
}

TEST_F(Apply, DocumentThatIsNotThere_Fails) {
  ExpectUnchangedBy({"apply", "blinker.xml", "part.json"}, Failed("part.json does not exist"));
}

}  // namespace
