#include <algorithm>
#include <array>

#include <projectdb/project_db.h>

namespace projectdb {
namespace {

// By ParameterType.
constexpr std::array<const char*, 4> kTypeTexts = {"e_string", "e_bool", "e_option", "e_noarg"};

}  // namespace

std::string KelProjectDatabase::getParameterTypeStr(ParameterType type) {
  const auto position = static_cast<std::size_t>(type);
  return position < kTypeTexts.size() ? kTypeTexts[position] : "";
}

ParameterType KelProjectDatabase::getParameterTypeFromStr(const std::string& text) {
  const auto entry = std::find(kTypeTexts.begin(), kTypeTexts.end(), text);
  // The end of the table stands for "no type".
  static_assert(kNoParameterType == kTypeTexts.size());
  return static_cast<ParameterType>(entry - kTypeTexts.begin());
}

}  // namespace projectdb
