#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <kel/diag.h>

#include "messages.h"
#include "testing/message_recorder.h"

namespace {

using Diag::DiagStorage;
using Diag::MessageType;
using test_support::MessageRecorder;
using testing::ElementsAre;

namespace messages = projectdb::messages;

struct MessageCase {
  const char* name;
  std::function<DiagStorage()> make;
  MessageType type;
  std::string text;
};

void PrintTo(const MessageCase& c, std::ostream* out) { *out << c.name; }

const MessageCase kMessages[] = {
    {"ProjectExists", messages::MsgProjectExists, MessageType::kError,
     "Project database has already existed. Fail to create new project"},
    {"DeprecatedTag", [] { return messages::MsgDeprecatedTag("old_tag"); }, MessageType::kWarning,
     "Found a deprecated tag name old_tag. Skipping ..."},
    {"UnexpectedTag", [] { return messages::MsgUnexpectedTag("odd_tag"); }, MessageType::kError,
     "Unexpected tag name odd_tag"},
    {"ProjectFileMissing", [] { return messages::MsgProjectFileMissing("a/p.xml"); },
     MessageType::kError, "Project XML file \"a/p.xml\" does not exist"},
    {"ReadingProject", [] { return messages::MsgReadingProject("a/p.xml"); }, MessageType::kInfo,
     "Reading project database \"a/p.xml\""},
    {"SchemaFileMissing", [] { return messages::MsgSchemaFileMissing("a/s.xsd"); },
     MessageType::kWarning, "XML schema file \"a/s.xsd\" does not exist"},
    {"ProjectFileMalformed", [] { return messages::MsgProjectFileMalformed("a/p.xml"); },
     MessageType::kError,
     "Failed to parse the project XML file \"a/p.xml\". The file format is unexpected"},
};

class Messages : public testing::TestWithParam<MessageCase> {};

INSTANTIATE_TEST_SUITE_P(Catalogue, Messages, testing::ValuesIn(kMessages));

TEST_P(Messages, HasItsSeverity) { EXPECT_EQ(GetParam().make().type(), GetParam().type); }

TEST_P(Messages, HasItsText) { EXPECT_EQ(GetParam().make().text(), GetParam().text); }

TEST_P(Messages, HasAnEmptyIdentifierAndSecondReference) {
  const DiagStorage message = GetParam().make();
  EXPECT_EQ(message.identifier().size, 0U);
  EXPECT_STREQ(message.identifier().data, "");
  EXPECT_EQ(message.second().size, 0U);
  EXPECT_STREQ(message.second().data, "");
}

TEST_P(Messages, Post_DeliversItOnce) {
  const MessageRecorder recorder;
  messages::Post(GetParam().make());
  EXPECT_THAT(recorder.messages(),
              ElementsAre(MessageRecorder::Message{GetParam().type, GetParam().text}));
}

// Arguments.

struct ArgumentCase {
  const char* name;
  std::function<DiagStorage(std::string_view)> make;
  std::string before;
  std::string after;
};

void PrintTo(const ArgumentCase& c, std::ostream* out) { *out << c.name; }

class MessageArguments : public testing::TestWithParam<ArgumentCase> {};

INSTANTIATE_TEST_SUITE_P(
    Catalogue, MessageArguments,
    testing::Values(ArgumentCase{"DeprecatedTag", messages::MsgDeprecatedTag,
                                 "Found a deprecated tag name ", ". Skipping ..."},
                    ArgumentCase{"UnexpectedTag", messages::MsgUnexpectedTag,
                                 "Unexpected tag name ", ""},
                    ArgumentCase{"ProjectFileMissing", messages::MsgProjectFileMissing,
                                 "Project XML file \"", "\" does not exist"},
                    ArgumentCase{"ReadingProject", messages::MsgReadingProject,
                                 "Reading project database \"", "\""},
                    ArgumentCase{"SchemaFileMissing", messages::MsgSchemaFileMissing,
                                 "XML schema file \"", "\" does not exist"},
                    ArgumentCase{"ProjectFileMalformed", messages::MsgProjectFileMalformed,
                                 "Failed to parse the project XML file \"",
                                 "\". The file format is unexpected"}));

TEST_P(MessageArguments, AnyText_IsShownUnchanged) {
  const std::vector<std::string> arguments = {"",
                                              "{}",
                                              "{",
                                              "}}",
                                              "{0} {1} {name} {:>10}",
                                              "%s %d",
                                              "a \"b\" \\c",
                                              "a\nb\t",
                                              "gr\xC3\xBCn",
                                              "not \xFF UTF-8",
                                              std::string("a\0b", 3),
                                              std::string(10000, 'x')};
  for (const std::string& argument : arguments) {
    EXPECT_EQ(GetParam().make(argument).text(), GetParam().before + argument + GetParam().after);
  }
}

TEST_P(MessageArguments, PartOfALongerText_IsShownAlone) {
  EXPECT_EQ(GetParam().make(std::string_view("tag_and_more").substr(0, 3)).text(),
            GetParam().before + "tag" + GetParam().after);
}

TEST_P(MessageArguments, Argument_NeedNotOutliveTheMessage) {
  std::string argument = "temporary text that is too long to be kept in place";
  const DiagStorage message = GetParam().make(argument);
  argument.assign(argument.size(), 'x');
  EXPECT_EQ(
      message.text(),
      GetParam().before + "temporary text that is too long to be kept in place" + GetParam().after);
}

TEST(MessagePosting, Post_SeveralMessages_KeepsTheirOrder) {
  const MessageRecorder recorder;
  messages::Post(messages::MsgReadingProject("a"));
  messages::Post(messages::MsgUnexpectedTag("b"));
  EXPECT_THAT(
      recorder.messages(),
      ElementsAre(MessageRecorder::Message{MessageType::kInfo, "Reading project database \"a\""},
                  MessageRecorder::Message{MessageType::kError, "Unexpected tag name b"}));
}

TEST(MessagePosting, Post_HandlerThrows_ReachesTheCaller) {
  const MessageRecorder restores_the_handler;
  Diag::GlobalInst().SetHandler([](const DiagStorage&) { throw std::domain_error("refused"); });
  EXPECT_THROW(messages::Post(messages::MsgProjectExists()), std::domain_error);
}

}  // namespace
