#include "check/located_parse.h"

#include <filesystem>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include <xercesc/sax/InputSource.hpp>

#include "testing/files.h"
#include "testing/project_loading.h"
#include "testing/test.h"
#include "testing/xml_platform.h"
#include "testing/xml_tree.h"
#include "xml/dom.h"
#include "xml/file_uri.h"
#include "xml/input.h"
#include "xml/parser.h"

namespace {

using namespace projectdb::check;
using namespace projectdb::xml;
using namespace test_support;

class LocatedParsing : public testing::Test {
 protected:
  LocatedParse ParseBytes(const std::string& bytes, const std::string& schema = "") const {
    WriteFile(path(), bytes);
    const FileInput input(path());
    return ParseLocated({input, FileUri(path()), std::nullopt}, schema);
  }

  std::string path() const { return directory_ / "p.xml"; }

  static std::string Show(Position position) {
    return std::to_string(position.line) + ":" + std::to_string(position.column);
  }

  /// "name line:column" of the children of the root.
  static std::vector<std::string> PlacesOfChildren(LocatedParse& parse) {
    std::vector<std::string> places;
    for (const auto* child : ChildElements(parse.document->getDocumentElement())) {
      places.push_back(Utf8(child->getNodeName()) + " " + Show(parse.positions.Of(*child)));
    }
    return places;
  }

  static std::vector<std::string> ShowProblems(const LocatedParse& parse) {
    std::vector<std::string> problems;
    for (const auto& [is_error, position, message] : parse.problems) {
      problems.push_back(Show(position) + (is_error ? " error: " : " warning: ") + message);
    }
    return problems;
  }

  XmlPlatform platform_;
  TemporaryDirectory directory_;
};

TEST_F(LocatedParsing, ParseLocated_GoodFile_GivesTheDocumentOfAnOrdinaryParse) {
  const LocatedParse parse = ParseBytes(CompleteProjectXml());
  const auto expected = ParseProjectXMLFile(path(), "");
  EXPECT_EQ(ToXmlElement(*parse.document->getDocumentElement()),
            ToXmlElement(*expected->getDocumentElement()));
}

TEST_F(LocatedParsing, ParseLocated_GoodFile_HasNoProblems) {
  EXPECT_THAT(ShowProblems(ParseBytes(CompleteProjectXml())), IsEmpty());
}

TEST_F(LocatedParsing, ParseLocated_Elements_StandWhereTheirStartTagsBegin) {
  LocatedParse parse = ParseBytes("<r><a/>\n <b\n></b><c/></r>");
  EXPECT_THAT(PlacesOfChildren(parse), ElementsAre("a 1:4", "b 2:2", "c 3:6"));
}

TEST_F(LocatedParsing, ParseLocated_EmptyAndNestedElements_EachHaveTheirOwnPlace) {
  LocatedParse parse = ParseBytes("<r><a><b/></a></r>");
  const auto* a = parse.document->getDocumentElement()->getFirstElementChild();
  EXPECT_EQ(Show(parse.positions.Of(*a)), "1:4");
  EXPECT_EQ(Show(parse.positions.Of(*a->getFirstElementChild())), "1:7");
}

TEST_F(LocatedParsing, ParseLocated_FatalError_KeepsTheDocumentUpToIt) {
  LocatedParse parse = ParseBytes("<r><a/>\n<b></r>");
  EXPECT_THAT(PlacesOfChildren(parse), ElementsAre("a 1:4", "b 2:1"));
  EXPECT_THAT(ShowProblems(parse), ElementsAre(StartsWith("2:6 error: ")));
}

TEST_F(LocatedParsing, ParseLocated_ParserWarning_IsAWarning) {
  const std::string bytes = "<?xml version=\"1.0\" encoding=\"UTF-16\"?><r/>";
  EXPECT_THAT(ShowProblems(ParseBytes(bytes)),
              ElementsAre(AllOf(StartsWith("1:40 warning: "), HasSubstr("UTF-16"))));
}

TEST_F(LocatedParsing, ParseLocated_SchemaThatCannotBeRead_GivesNoDocument) {
  const LocatedParse parse = ParseBytes("<r/>", directory_.path().string());
  EXPECT_EQ(parse.document, nullptr);
  EXPECT_THAT(ShowProblems(parse), ElementsAre(StartsWith("0:0 error: the XML schema ")));
}

TEST_F(LocatedParsing, ParseLocated_FileThatCannotBeOpened_IsAnErrorInNoLine) {
  const FileInput input(path());
  const LocatedParse parse = ParseLocated({input, FileUri(path()), std::nullopt}, "");
  EXPECT_THAT(ShowProblems(parse), ElementsAre(StartsWith("0:0 error: the file cannot be read: ")));
}

/// An input that fails in a way of its own.
template <typename Exception>
class FailingInput : public xercesc::InputSource {
 public:
  explicit FailingInput(Exception exception) : exception_(std::move(exception)) {}
  xercesc::BinInputStream* makeStream() const override { throw exception_; }

 private:
  Exception exception_;
};

template <typename Exception>
LocatedParse ParseFailing(Exception exception) {
  const FailingInput<Exception> input(std::move(exception));
  return ParseLocated({input, "file:///p.xml", std::nullopt}, "");
}

TEST_F(LocatedParsing, ParseLocated_Failure_IsAnErrorWithItsReason) {
  EXPECT_THAT(ShowProblems(ParseFailing(std::runtime_error("no input"))),
              ElementsAre("0:0 error: the file cannot be parsed: no input"));
}

TEST_F(LocatedParsing, ParseLocated_FailureThatIsNoException_IsAnError) {
  EXPECT_THAT(ShowProblems(ParseFailing(1)),
              ElementsAre("0:0 error: the XML library failed for an unknown reason"));
}

TEST_F(LocatedParsing, ParseLocated_ShortageOfMemory_IsThrown) {
  EXPECT_THROW(ParseFailing(std::bad_alloc()), std::bad_alloc);
}

}  // namespace
