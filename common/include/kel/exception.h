#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include <kel/export.h>

/// A failure that ends an operation of the suite.
class KEL_EXPORT kel_exception : public std::exception {
 public:
  /// @param message UTF-8 text, given back by what().
  /// The two flags are the suite's; they have no meaning here.
  kel_exception(const std::string& message, bool, bool);

  const char* what() const noexcept override;

 private:
  // Holds the text because copying it cannot throw, as an exception's copy must not.
  std::runtime_error message_;
};
