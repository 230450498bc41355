#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// Reads arguments from bytes that can also be written by hand; beyond the end they are 0 and "".
class Input {
 public:
  explicit Input(std::string_view bytes) : rest_(bytes) {}

  bool empty() const { return rest_.empty(); }

  unsigned char Byte() {
    if (rest_.empty()) return 0;
    const char byte = rest_.front();
    rest_.remove_prefix(1);
    return static_cast<unsigned char>(byte);
  }

  /// A digit stands for its value; any other byte begins a number of four bytes.
  int Number() {
    const unsigned char byte = Byte();
    if (byte >= '0' && byte <= '9') return byte - '0';
    std::array<unsigned char, 4> bytes{byte, Byte(), Byte(), Byte()};
    std::int32_t number = 0;
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
  }

  /// A byte below 32 at the beginning stands for a text that means something to the library.
  /// Otherwise the text ends before the next line feed; a backslash lets any byte stand for itself.
  std::string Text() {
    if (rest_.empty()) return {};
    const auto first = static_cast<unsigned char>(rest_.front());
    if (first < kTexts.size() && first != '\n') {
      rest_.remove_prefix(1);
      return std::string(kTexts.at(first));
    }
    std::string text;
    while (!rest_.empty()) {
      char byte = static_cast<char>(Byte());
      if (byte == '\n') break;
      if (byte == '\\') byte = static_cast<char>(Byte());
      text += byte;
    }
    return text;
  }

  /// At most nine texts.
  std::vector<std::string> Texts() {
    std::vector<std::string> texts(static_cast<unsigned>(Byte()) % 10U);
    for (std::string& text : texts) text = Text();
    return texts;
  }

 private:
  static constexpr std::array<std::string_view, 32> kTexts = {"",
                                                              "param",
                                                              "dynparam",
                                                              "defmacro",
                                                              "synthesis",
                                                              "place_and_route",
                                                              "debugger",
                                                              "max_threads",
                                                              "name",
                                                              "sw_version",
                                                              "",
                                                              "last_change_date",
                                                              "vendor:id",
                                                              "other:id",
                                                              "xml:lang",
                                                              "kel:name",
                                                              "xmlns:vendor",
                                                              "a.sdc",
                                                              "x.sdc/",
                                                              "a.csv",
                                                              "a.interface.csv",
                                                              "/abs/a.v",
                                                              "../up.v",
                                                              "e_noarg",
                                                              "65535",
                                                              "\xff",
                                                              "\xc3\xa9\xf0\x9f\x98\x80",
                                                              "\r\n\t",
                                                              "<&>\"'",
                                                              "\x01",
                                                              "\xef\xbf\xbf",
                                                              "ns0:a"};

  std::string_view rest_;
};

}  // namespace fuzz
