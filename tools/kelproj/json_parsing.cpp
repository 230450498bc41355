#include "json_parsing.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "console.h"
#include "places.h"

namespace kelproj {
namespace {

/// Follows a parse, and refuses what is in one object twice.
class MemberCheck {
 public:
  void See(Json::parse_event_t event, const Json& parsed) {
    using Event = Json::parse_event_t;
    switch (event) {
      case Event::object_start:
      case Event::array_start:
        values_.push_back({NextPlace(), event == Event::array_start});
        break;
      case Event::object_end:
      case Event::array_end:
        values_.pop_back();
        CountElement();
        break;
      case Event::key:
        AddMember(parsed.get_ref<const std::string&>());
        break;
      case Event::value:
        CountElement();
        break;
    }
  }

 private:
  /// An object or list that has not ended yet.
  struct OpenValue {
    std::string place;
    bool is_list;
    std::size_t elements = 0;  ///< Of a list, those that have ended.
    std::string member = {};   ///< Of an object, the last one.
    std::unordered_set<std::string> members = {};
  };

  // Of the value that is next.
  std::string NextPlace() const {
    if (values_.empty()) return "";
    const OpenValue& outer = values_.back();
    return outer.is_list ? PlaceText(outer.place, std::to_string(outer.elements))
                         : MemberPlace(outer.place, outer.member);
  }

  void AddMember(const std::string& name) {
    OpenValue& object = values_.back();
    object.member = name;
    if (!object.members.insert(name).second) throw Trouble(NextPlace() + ": it is there twice");
  }

  void CountElement() {
    if (!values_.empty()) ++values_.back().elements;
  }

  std::vector<OpenValue> values_;
};

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

// "line 3, column 10", for the byte of that number, from 1.
std::string LineAndColumn(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, byte - 1);
  const std::string_view line = before.substr(before.rfind('\n') + 1);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const auto characters = std::count_if(line.begin(), line.end(), BeginsCharacter);
  return "line " + std::to_string(lines + 1) + ", column " + std::to_string(characters + 1);
}

}  // namespace

Json ParseJson(const std::string& text) {
  MemberCheck check;
  try {
    return Json::parse(text, [&check](int /*depth*/, Json::parse_event_t event, Json& parsed) {
      check.See(event, parsed);
      return true;
    });
  } catch (const Json::parse_error& error) {
    throw Trouble("the document is no JSON: " + LineAndColumn(text, error.byte));
  }
}

}  // namespace kelproj
