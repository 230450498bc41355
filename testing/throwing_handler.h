#pragma once

#include <functional>
#include <stdexcept>
#include <utility>

#include <kel/diag.h>

namespace test_support {

/// What a throwing handler throws, with the text of the message.
struct HandlerFailure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws HandlerFailure from some messages, while it lives, in place of the console.
class ThrowingHandler {
 public:
  /// @param is_chosen tells from which messages
  explicit ThrowingHandler(std::function<bool(const Diag::DiagStorage&)> is_chosen)
      : former_(Diag::GlobalInst().SetHandler(
            [is_chosen = std::move(is_chosen)](const Diag::DiagStorage& message) {
              if (is_chosen(message)) throw HandlerFailure(message.text());
            })) {}
  explicit ThrowingHandler(Diag::MessageType type)
      : ThrowingHandler(
            [type](const Diag::DiagStorage& message) { return message.type() == type; }) {}
  ~ThrowingHandler() { Diag::GlobalInst().SetHandler(former_); }
  ThrowingHandler(const ThrowingHandler&) = delete;
  ThrowingHandler& operator=(const ThrowingHandler&) = delete;

 private:
  Diag::DiagService::Handler former_;
};

}  // namespace test_support
