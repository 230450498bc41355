#include <algorithm>
#include <charconv>
#include <system_error>

#include <projectdb/vocabulary.h>

#include "base/assertions.h"
#include "project_db/project_data.h"

namespace projectdb {
namespace {

constexpr std::uint64_t kMostThreads = 65535;

}  // namespace

std::uint64_t KelProjectDatabase::ParseMaxThreads(std::string_view text,
                                                  std::uint64_t default_num) {
  assertions::AssertDefaultIsPositive(default_num);
  std::uint64_t count = 0;
  const char* const end = text.data() + text.size();
  const auto [parsed_to, error] = std::from_chars(text.data(), end, count);
  if (error != std::errc() || parsed_to != end || count == 0) return default_num;
  return std::min(count, kMostThreads);
}

std::uint64_t KelProjectDatabase::GetSynthesisMaxThreads(std::uint64_t default_num) const {
  return ParseMaxThreads(GetSynthesisParameterValue(kMaxThreadsParameter), default_num);
}

std::uint64_t KelProjectDatabase::GetPnRMaxThreads(std::uint64_t default_num) const {
  return ParseMaxThreads(GetPlaceAndRouteParameterValue(kMaxThreadsParameter), default_num);
}

}  // namespace projectdb
