#include <cstddef>
#include <functional>
#include <string_view>

#include <kel/diag.h>

#include "messages.h"
#include "testing/test.h"

namespace {

using Diag::DiagStorage;
using Diag::MessageType;
using namespace test_support;

namespace messages = projectdb::messages;

/// A message and its text, with "%" in the place of the argument.
struct MessageCase {
  const char* name;
  std::function<DiagStorage(std::string_view)> make;
  MessageType type;
  std::string text;

  std::string TextWith(const std::string& argument) const {
    const std::size_t place = text.find('%');
    return place == std::string::npos ? text : std::string(text).replace(place, 1, argument);
  }
};

const MessageCase kMessages[] = {
    {"ProjectExists", [](std::string_view) { return messages::MsgProjectExists(); },
     MessageType::kError, "Project database has already existed. Fail to create new project"},
    {"DeprecatedTag", messages::MsgDeprecatedTag, MessageType::kWarning,
     "Found a deprecated tag name %. Skipping ..."},
    {"UnexpectedTag", messages::MsgUnexpectedTag, MessageType::kError, "Unexpected tag name %"},
    {"ProjectFileMissing", messages::MsgProjectFileMissing, MessageType::kError,
     "Project XML file \"%\" does not exist"},
    {"ReadingProject", messages::MsgReadingProject, MessageType::kInfo,
     "Reading project database \"%\""},
    {"SchemaFileMissing", messages::MsgSchemaFileMissing, MessageType::kWarning,
     "XML schema file \"%\" does not exist"},
    {"ProjectFileMalformed", messages::MsgProjectFileMalformed, MessageType::kError,
     "Failed to parse the project XML file \"%\". The file format is unexpected"},
};

class Messages : public testing::TestWithParam<MessageCase> {};

INSTANTIATE_TEST_SUITE_P(Catalogue, Messages, testing::ValuesIn(kMessages), ByName());

TEST_P(Messages, HasItsSeverityAnEmptyIdentifierAndAnEmptySecondReference) {
  const DiagStorage message = GetParam().make("a");
  EXPECT_EQ(message.type(), GetParam().type);
  EXPECT_EQ(message.identifier().size, 0U);
  EXPECT_STREQ(message.identifier().data, "");
  EXPECT_EQ(message.second().size, 0U);
  EXPECT_STREQ(message.second().data, "");
}

TEST_P(Messages, Argument_IsShownUnchanged) {
  for (const std::string& argument :
       {std::string(), std::string("{"), std::string("}}"), std::string("{0} {} {name} {:>10}"),
        std::string("%s %d"), std::string("a \"b\" \\c\nb\t"), std::string("not \xFF UTF-8"),
        std::string("a\0b", 3), std::string(10000, 'x')}) {
    EXPECT_EQ(GetParam().make(argument).text(), GetParam().TextWith(argument));
  }
}

TEST_P(Messages, Argument_MayBePartOfALongerTextAndNeedNotOutliveTheMessage) {
  std::string argument = "temporary text that is too long to be kept in place_and_more";
  const std::string part = argument.substr(0, argument.find('_'));
  const DiagStorage message = GetParam().make(std::string_view(argument).substr(0, part.size()));
  argument.assign(argument.size(), 'x');
  EXPECT_EQ(message.text(), GetParam().TextWith(part));
}

}  // namespace
