#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <locale>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <projectdb/project_db.h>

#include "testing/child_process.h"
#include "testing/files.h"
#include "testing/message_recorder.h"
#include "testing/project_loading.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/xml_tree.h"

namespace {

using namespace test_support;
using projectdb::KelProjectDatabase;

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

void PrintTo(const LocaleCase& c, std::ostream* out) { *out << c.name; }

bool SetLocale(const char* name) { return std::setlocale(LC_ALL, name) != nullptr; }

/// Writes 1234567 as 1.23.45.67.
class Grouping : public std::numpunct<char> {
 protected:
  char do_thousands_sep() const override { return '.'; }
  char do_decimal_point() const override { return ','; }
  std::string do_grouping() const override { return "\2"; }
};

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
     [](auto& directory) {
       if (!CompileLocale(directory, "de_DE", "ISO-8859-1")) return false;
       std::locale::global(std::locale("de_DE.ISO-8859-1"));
       return true;
     }},
    {"Turkish, with letters of its own",
     [](auto& directory) {
       if (!CompileLocale(directory, "tr_TR", "ISO-8859-9")) return false;
       std::locale::global(std::locale("tr_TR.ISO-8859-9"));
       return true;
     }},
    {"several bytes to a character",
     [](auto& directory) {
       if (!CompileLocale(directory, "ja_JP", "EUC-JP")) return false;
       std::locale::global(std::locale("ja_JP.EUC-JP"));
       return true;
     }},
    {"digit grouping",
     [](auto&) {
       std::locale::global(std::locale(std::locale::classic(), new Grouping));
       return true;
     }},
};

constexpr char kTexts[] =
    "Gr\xC3\xBC\xC3\x9F"
    "e \xE2\x82\xAC \xE5\x90\x8D \xF0\x9F\x98\x80 I\xC4\xB0";

void FillProject(KelProjectDatabase& database) {
  database.CreateNewProjectDatabase(kTexts);
  database.SetDeviceTimingModel("1234567,5");
  database.AddDesignRTLFile(std::string(kTexts) + ".v", kTexts, kTexts);
  database.AddMiscellaneousFile("plain.txt");
  database.AddTimingConstraintFile(std::string(kTexts) + ".sdc");
  database.SetInterfaceConstraint(std::string(kTexts) + ".interface.csv");
  database.SetSynthesisExecutableName(kTexts);
  database.AddSynthesisParameter(kTexts, kTexts, projectdb::e_string);
  database.AddSynthesisParameter("max_threads", "1234567", projectdb::e_string);
  database.AddProjectInfoAttribute(
      "gr\xC3\xB6\xC3\x9F"
      "e",
      kTexts);
  database.AddProjectInfoAttribute("v:\xC3\xBC", kTexts);
}

template <typename Value>
std::string Printed(const Value& value) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out << value;
  return out.str();
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
  const std::string reference_ = directory_ /
                                 "Pr\xC3\xBC"
                                 "fstein \xE5\x90\x8D.xml";
  const std::string path_ = directory_ /
                            "Pr\xC3\xBC"
                            "fstein \xE5\x90\x8D 2.xml";
  KelProjectDatabase project_;
};

INSTANTIATE_TEST_SUITE_P(Installed, Locales, testing::ValuesIn(kLocales));

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
  const std::string schema = directory_ / "Schl\xC3\xBCssel.xsd";
  std::filesystem::copy_file(test_support::ShippedSchema(), schema);
  ExpectUnderTheLocale(
      "1", [&] { return Printed(KelProjectDatabase().LoadProjectData(reference_, schema)); });
}

TEST_P(Locales, LoadProjectData_FollowsAHint) {
  WriteFile(directory_ / "Schl\xC3\xBCssel.xsd", DeviceOnlySchema());
  WriteFile(path_, ProjectXml("<isf_info/>",
                              "xsi:schemaLocation=\"http://schema.kel.example/wdp_proj "
                              "Schl\xC3\xBCssel.xsd\""));
  ExpectUnderTheLocale(MalformedMessage(path_).text, [&] {
    const MessageRecorder recorder;
    KelProjectDatabase().LoadProjectData(path_, "");
    return recorder.messages().back().text;
  });
}

TEST_P(Locales, LoadProjectData_MessagesHaveTheSameTexts) {
  const std::string missing = directory_ / "f\xC3\xBCr.xml";
  WriteFile(path_, ProjectXml("<gr\xC3\xBCn/>"));
  ExpectUnderTheLocale(MissingMessage(missing).text + UnexpectedMessage("gr\xC3\xBCn").text, [&] {
    const MessageRecorder recorder;
    KelProjectDatabase().LoadProjectData(missing, "");
    KelProjectDatabase().LoadProjectData(path_, "");
    return recorder.messages().front().text + recorder.messages().back().text;
  });
}

TEST_P(Locales, GetSynthesisMaxThreads_ReadsTheSameNumber) {
  ExpectUnderTheLocale("65535", [&] { return Printed(project_.GetSynthesisMaxThreads(1)); });
}

// Time stamps in the words of a locale.

/// Writes one word for each part of a time.
class Word : public std::time_put<char> {
 public:
  explicit Word(std::string word) : word_(std::move(word)) {}

 protected:
  iter_type do_put(iter_type out, std::ios_base&, char, const std::tm*, char, char) const override {
    return std::copy(word_.begin(), word_.end(), out);
  }

 private:
  std::string word_;
};

/// Makes a locale the global one for as long as it lives.
class GlobalLocale {
 public:
  explicit GlobalLocale(const std::locale& locale) : former_(std::locale::global(locale)) {}
  ~GlobalLocale() { std::locale::global(former_); }
  GlobalLocale(const GlobalLocale&) = delete;
  GlobalLocale& operator=(const GlobalLocale&) = delete;

 private:
  std::locale former_;
};

/// The time stamp of a project that is exported under a locale with that word.
std::string ExportedTimeStamp(const std::string& word) {
  const TemporaryDirectory directory;
  const std::string path = directory / "p.xml";
  KelProjectDatabase database;
  database.CreateNewProjectDatabase("p");
  {
    const GlobalLocale locale(std::locale(std::locale::classic(), new Word(word)));
    database.ExportProjectData(path);
  }
  return ReadXmlFile(path).attributes.at("last_change_date");
}

TEST(LocaleTimeStamp, ExportProjectData_WordsOfTheGlobalLocale_AreUsed) {
  EXPECT_EQ(ExportedTimeStamp("m\xC3\xA4r"),
            "m\xC3\xA4r m\xC3\xA4r m\xC3\xA4r m\xC3\xA4r m\xC3\xA4r");
}

}  // namespace
