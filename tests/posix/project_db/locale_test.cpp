#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <locale>
#include <ostream>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/test.h"
#include "testing/xml_tree.h"

namespace {

using namespace test_support;
using namespace projectdb;

/// A compiled locale, and the environment that finds it.
/// @return whether there is one now; not on a system without the sources of locales
bool CompileLocale(const std::filesystem::path& directory, const std::string& language,
                   const std::string& encoding) {
  const std::string target = (directory / (language + "." + encoding)).string();
  const std::string command = "localedef --no-archive -i " + language + " -f " + encoding + " '" +
                              target + "' >/dev/null 2>&1";
  // Its status also tells of mere warnings.
  [[maybe_unused]] const int status = std::system(command.c_str());
  setenv("LOCPATH", directory.c_str(), 1);
  return std::filesystem::exists(target + "/LC_CTYPE");
}

struct LocaleCase {
  const char* name;
  /// Installs the locale in this process. @return whether the system has it
  std::function<bool(const std::filesystem::path& directory)> install;
};

bool SetLocale(const char* name) { return std::setlocale(LC_ALL, name) != nullptr; }

/// Writes 1234567 as 1.23.45.67.
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\2"; }
};

/// Installs a locale, in which texts are not UTF-8, for C++ and so for C.
bool Install(const std::filesystem::path& directory, const std::string& language,
             const std::string& encoding) {
  if (!CompileLocale(directory, language, encoding)) return false;
  std::locale::global(std::locale(language + "." + encoding));
  return true;
}

const LocaleCase kLocales[] = {
    {"C", [](auto&) { return SetLocale("C"); }},
    {"UTF-8", [](auto&) { return SetLocale("C.UTF-8"); }},
    {"UTF-8 for C++ too",
     [](auto&) {
       if (!SetLocale("C.UTF-8")) return false;
       std::locale::global(std::locale("C.UTF-8"));
       return true;
     }},
    {"Latin-1",
     [](auto& directory) {
       return CompileLocale(directory, "de_DE", "ISO-8859-1") && SetLocale("de_DE.ISO-8859-1");
     }},
    {"Latin-1 for C++ too",
     [](auto& directory) { return Install(directory, "de_DE", "ISO-8859-1"); }},
    {"Turkish, with letters of its own",
     [](auto& directory) { return Install(directory, "tr_TR", "ISO-8859-9"); }},
    {"several bytes to a character",
     [](auto& directory) { return Install(directory, "ja_JP", "EUC-JP"); }},
    {"digit grouping", [](auto&) {
       std::locale::global(std::locale(std::locale::classic(), new Grouping));
       return true;
     }}};

constexpr char kTexts[] = "Grüße € 名 😀 Iİ";

void FillProject(KelProjectDatabase& database) {
  database.CreateNewProjectDatabase(kTexts);
  database.SetDeviceTimingModel("1234567,5");
  database.AddDesignRTLFile(std::string(kTexts) + ".v", kTexts, kTexts);
  database.AddMiscellaneousFile("plain.txt");
  database.AddTimingConstraintFile(std::string(kTexts) + ".sdc");
  database.SetInterfaceConstraint(std::string(kTexts) + ".interface.csv");
  database.SetSynthesisExecutableName(kTexts);
  database.AddSynthesisParameter(kTexts, kTexts, e_string);
  database.AddSynthesisParameter("max_threads", "1234567", e_string);
  database.AddProjectInfoAttribute("größe", kTexts);
  database.AddProjectInfoAttribute("v:ü", kTexts);
}

class Locales : public testing::TestWithParam<LocaleCase> {
 protected:
  Locales() {
    FillProject(project_);
    project_.ExportProjectData(reference_);
  }

  /// Expects that the work under the locale gives a text, if the system has the locale.
  template <typename Work>
  void ExpectUnderTheLocale(const std::string& expected, Work work) const {
    const std::string result = InChildProcess([&]() -> std::string {
      return GetParam().install(directory_.path()) ? work() : "no such locale";
    });
    if (result == "no such locale") GTEST_SKIP() << result;
    EXPECT_EQ(result, expected);
  }

  const MessageRecorder recorder_;
  const TemporaryDirectory directory_;
  const std::string reference_ = directory_ / "Prüfstein 名.xml";
  const std::string path_ = directory_ / "Prüfstein 名 2.xml";
  KelProjectDatabase project_;
};

INSTANTIATE_TEST_SUITE_P(Installed, Locales, testing::ValuesIn(kLocales), ByName());

TEST_P(Locales, ExportProjectData_WritesTheSameBytes) {
  EXPECT_EQ(ReadXmlFile(reference_).attributes.at("name"), kTexts);
  ExpectUnderTheLocale(WithoutTimeStamp(ReadFile(reference_)), [&] {
    project_.ExportProjectData(path_);
    return WithoutTimeStamp(ReadFile(path_));
  });
}

TEST_P(Locales, LoadProjectData_ReadsTheSameTexts) {
  const auto loaded = [&] {
    KelProjectDatabase database;
    std::string text = database.LoadProjectData(reference_, "") ? "loaded from " : "not loaded ";
    text += database.GetProjectCurrentPath();
    for (const std::string& line : ProjectLines(database)) text += '\n' + line;
    return text;
  };
  ExpectUnderTheLocale(loaded(), loaded);
}

TEST_P(Locales, LoadProjectData_FindsTheSchema) {
  const std::string schema = directory_ / "Schlüssel.xsd";
  std::filesystem::copy_file(ShippedSchema(), schema);
  ExpectUnderTheLocale("loaded", [&] {
    return KelProjectDatabase().LoadProjectData(reference_, schema) ? "loaded" : "";
  });
}

TEST_P(Locales, LoadProjectData_FollowsAHint) {
  WriteFile(directory_ / "Schlüssel.xsd", DeviceOnlySchema());
  WriteFile(path_, ProjectXml("<isf_info/>",
                              "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj "
                              "Schlüssel.xsd\""));
  ExpectUnderTheLocale(MalformedMessage(path_).text, [&] {
    const MessageRecorder recorder;
    KelProjectDatabase().LoadProjectData(path_, "");
    return recorder.messages().back().text;
  });
}

TEST_P(Locales, LoadProjectData_MessagesHaveTheSameTexts) {
  const std::string missing = directory_ / "für.xml";
  WriteFile(path_, ProjectXml("<grün/>"));
  ExpectUnderTheLocale(MissingMessage(missing).text + UnexpectedMessage("grün").text, [&] {
    const MessageRecorder recorder;
    KelProjectDatabase().LoadProjectData(missing, "");
    KelProjectDatabase().LoadProjectData(path_, "");
    return recorder.messages().front().text + recorder.messages().back().text;
  });
}

TEST_P(Locales, GetSynthesisMaxThreads_ReadsTheSameNumber) {
  ExpectUnderTheLocale("65535", [&] { return std::to_string(project_.GetSynthesisMaxThreads(1)); });
}

}  // namespace
