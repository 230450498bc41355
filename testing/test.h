#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// What every test is written with.
namespace test_support {

using testing::AllOf, testing::AnyOf, testing::Contains, testing::Each, testing::ElementsAre,
    testing::EndsWith, testing::HasSubstr, testing::IsEmpty, testing::Not, testing::Pair,
    testing::SizeIs, testing::StartsWith, testing::UnorderedElementsAre;

/// The text so many times.
inline std::string Repeated(const std::string& text, std::size_t times) {
  std::string repeated;
  while (times-- > 0) repeated += text;
  return repeated;
}

/// The text of the exception of that type that a call ends in; "" if it ends well.
template <typename Exception = std::runtime_error, typename Call>
std::string ErrorOf(Call call) {
  try {
    call();
  } catch (const Exception& error) {
    return error.what();
  }
  return {};
}

/// Names the tests of a suite after the member "name" of their parameters.
struct ByName {
  template <typename Row>
  std::string operator()(const testing::TestParamInfo<Row>& test) const {
    std::string name = test.param.name;
    for (char& c : name) {
      const bool is_letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
      if (!is_letter && (c < '0' || c > '9')) c = '_';
    }
    return name;
  }
};

}  // namespace test_support
