#include <kel/exception.h>

kel_exception::kel_exception(const std::string& message, bool, bool)
    : message_(message) {}  // NOLINT(bugprone-throw-keyword-missing): it keeps the text

const char* kel_exception::what() const noexcept { return message_.what(); }
