#include "testing/difficult_names.h"

namespace test_support {

std::vector<std::string> DifficultNames() {
  return {"two words",
          " blank",
          "50%",
          "a%20b",
          "%41",
          "%",
          "a#b",
          "a&b=c",
          "a;b",
          "a+b",
          "[a]{b}",
          "'a'",
          "größe",
          "日本",
          "¥100",
          "🐟",
          "-",
          "~",
          "漢字 ä",
          "name_as.it."
          "is",
          "[",
          "(x86)",
          "a!b",
          "a@b,c"};
}

}  // namespace test_support
