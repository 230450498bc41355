#include "json_parsing.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "console.h"

namespace kelproj {
namespace {

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

// "line 3, column 10", for the byte of that number, from 1.
std::string LineAndColumn(std::string_view text, std::size_t byte) {
  const std::string_view before = text.substr(0, byte - 1);
  const std::string_view line = before.substr(before.rfind('\n') + 1);
  const auto lines = std::count(before.begin(), before.end(), '\n');
  const auto characters = std::count_if(line.begin(), line.end(), BeginsCharacter);
  return "line " + std::to_string(lines + 1) + ", column " + std::to_string(characters + 1);
}

/// Goes through a text from one end to the other, and refuses what a parse alone would not, or not
/// with its place.
class Inspection : public ParsedJson::json_sax_t {
 public:
  explicit Inspection(const std::string& text) : text_(text) {}

  bool null() override { return EndValue(); }
  bool boolean(bool /*value*/) override { return EndValue(); }
  bool number_integer(number_integer_t /*value*/) override { return EndValue(); }
  bool number_unsigned(number_unsigned_t /*value*/) override { return EndValue(); }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override {
    return EndValue();
  }
  bool string(string_t& /*value*/) override { return EndValue(); }
  bool binary(binary_t& /*value*/) override { return EndValue(); }

  bool start_object(std::size_t /*size*/) override { return BeginValue(false); }
  bool start_array(std::size_t /*size*/) override { return BeginValue(true); }
  bool end_object() override { return EndOpenValue(); }
  bool end_array() override { return EndOpenValue(); }

  bool key(string_t& name) override {
    OpenValue& object = values_.back();
    object.member = name;
    if (!object.members.insert(name).second) throw Trouble(Place() + ": it is there twice");
    return true;
  }

  bool parse_error(std::size_t byte, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    throw Trouble("the document is no JSON: " + LineAndColumn(text_, byte));
  }

 private:
  /// An object or list that has not ended yet.
  struct OpenValue {
    bool is_list;
    std::size_t elements = 0;  ///< Of a list, those that have ended.
    std::string member = {};   ///< Of an object, the last one.
    std::unordered_set<std::string> members = {};
  };

  bool BeginValue(bool is_list) {
    values_.push_back({is_list});
    return true;
  }

  bool EndOpenValue() {
    values_.pop_back();
    return EndValue();
  }

  bool EndValue() {
    if (!values_.empty()) ++values_.back().elements;
    return true;
  }

  // Of the member or element that is next.
  std::string Place() const {
    std::string place;
    for (const OpenValue& value : values_) {
      if (value.is_list) {
        place.append("[").append(std::to_string(value.elements)).append("]");
      } else {
        place.append(place.empty() ? "" : ".").append(value.member);
      }
    }
    return place;
  }

  const std::string& text_;
  std::vector<OpenValue> values_;
};

}  // namespace

ParsedJson ParseJson(const std::string& text) {
  Inspection inspection(text);
  ParsedJson::sax_parse(text, &inspection);
  return ParsedJson::parse(text);
}

}  // namespace kelproj
