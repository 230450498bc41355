#include "suggestions.h"

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace kelproj {
namespace {

constexpr std::size_t kMostEdits = 3;

std::string InLowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// How many letters are to be put in, taken out, replaced or swapped with their neighbours to make
// one text of the other.
std::size_t EditsBetween(const std::string& a, const std::string& b) {
  using Row = std::vector<std::size_t>;
  std::vector<Row> edits(a.size() + 1, Row(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        edits[i][j] = i + j;
        continue;
      }
      const std::size_t replacement = a[i - 1] == b[j - 1] ? 0 : 1;
      edits[i][j] =
          std::min({edits[i - 1][j] + 1, edits[i][j - 1] + 1, edits[i - 1][j - 1] + replacement});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        edits[i][j] = std::min(edits[i][j], edits[i - 2][j - 2] + 1);
      }
    }
  }
  return edits[a.size()][b.size()];
}

// Of a word such as "--version", "--hdl-version" is the whole.
bool IsEndOfOption(const std::string& word, const std::string& option) {
  const bool is_option = word.size() > 2 && word.compare(0, 2, "--") == 0;
  if (!is_option || option.size() <= word.size()) return false;
  return option.compare(option.size() - word.size() + 1, std::string::npos, word, 1,
                        std::string::npos) == 0;
}

std::string Nearest(const std::string& word, const std::vector<std::string>& known) {
  // A short word is near to too many.
  std::size_t fewest = std::min(kMostEdits, word.size() / 3) + 1;
  std::string nearest;
  for (const std::string& each : known) {
    const std::size_t edits = EditsBetween(InLowerCase(word), InLowerCase(each));
    if (edits >= fewest || each == word) continue;
    fewest = edits;
    nearest = each;
  }
  if (!nearest.empty()) return nearest;
  const auto whole = std::find_if(known.begin(), known.end(), [&word](const std::string& option) {
    return IsEndOfOption(word, option);
  });
  return whole == known.end() ? "" : *whole;
}

}  // namespace

std::string DidYouMean(const std::string& word, const std::vector<std::string>& known) {
  const std::string nearest = Nearest(word, known);
  return nearest.empty() ? "" : "; did you mean \"" + nearest + "\"?";
}

}  // namespace kelproj
