#include "testing/difficult_names.h"

namespace test_support {

// The last one is not UTF-8.
std::vector<std::string> DifficultNames() {
  return {"two words", " blanks at both ends ",
          "50%",       "a%20b",
          "%41",       "%",
          "a#b",       "a?b=c",
          "a&b<c>",    "a;b",
          "a+b",       "[a]{b}",
          "a\\b",      "a:b",
          "http:x",    "'a'\"b\"",
          "größe",     "日本",
          "🐟",         "new\nline",
          "\x01",      "-",
          "~",         "\xff\xfe\x80"};
}

}  // namespace test_support
