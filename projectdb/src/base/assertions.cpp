#include "base/assertions.h"

#include <cstdint>
#include <cstdio>

#include <kel/exception.h>
#include <kel/internal_error.h>

namespace projectdb::assertions {
namespace {

// A fixed location that support scripts look for in reports, wherever the check itself stands.
constexpr char kSourceFile[] = "projectdb/src/project_db.cpp";
constexpr int kSourceLine = 1670;
constexpr char kFunction[] = "ParseMaxThreads";

constexpr char kFailedDefault[] =
    "[Internal] Assertion: 'default_num > 0' failed\n"
    "    in file: %s on line: %d\n"
    "    in function: %s\n"
    "    with message: ";

std::string FailedDefaultText() {
  const int length = std::snprintf(nullptr, 0, kFailedDefault, kSourceFile, kSourceLine, kFunction);
  if (length < 0) return "Something went wrong parsing error msg.";
  std::string text(static_cast<std::size_t>(length) + 1, '\0');
  std::snprintf(text.data(), text.size(), kFailedDefault, kSourceFile, kSourceLine, kFunction);
  text.pop_back();
  return text;
}

}  // namespace

void AssertDefaultIsPositive(std::uint64_t default_num) {
  if (default_num == 0) throw kel_exception(FailedDefaultText(), false, false);
}

void AssertNotNull(const void* pointer, std::string_view condition) {
  if (pointer == nullptr) {
    Kel::Detail::InternalErrorImpl({condition.size(), condition.data()}, {});
  }
}

}  // namespace projectdb::assertions
