#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include <kel/export.h>
#include <kel/string_ref.h>

/// The suite's diagnostics service: what a tool has to say to its user goes through here.
namespace Diag {

/// Severity of a message.
enum class MessageType { kInfo = 0, kWarning = 1, kError = 2 };

/// One message, ready to post. It owns its text; the two references stay their caller's.
class KEL_EXPORT DiagStorage {
 public:
  DiagStorage(Kel::BasicStringRef<char> identifier, MessageType type, std::string&& text,
              Kel::BasicStringRef<char> second);

  MessageType type() const { return type_; }
  const std::string& text() const { return text_; }  ///< UTF-8.
  Kel::BasicStringRef<char> identifier() const { return identifier_; }
  Kel::BasicStringRef<char> second() const { return second_; }

 private:
  Kel::BasicStringRef<char> identifier_;
  MessageType type_;
  std::string text_;
  Kel::BasicStringRef<char> second_;
};

/// Delivers messages to the user. All operations may be called from any thread.
class KEL_EXPORT DiagService {
 public:
  /// Called with each message, by the thread that posts it, possibly by several at once. A poster
  /// may hold a lock of its own: a handler must not call back into the object that posts.
  using Handler = std::function<void(const DiagStorage&)>;

  /// Hands the message to the handler or, without one, writes it as one line to standard error
  /// ("info: …", "warning: …", "error: …"). What the handler throws reaches the caller.
  void PostImpl(const DiagStorage& message);

  /// Replaces the handler and returns the former one; an empty handler stands for the console.
  /// A post under way in another thread may still reach the former handler.
  Handler SetHandler(Handler handler);

 private:
  std::mutex mutex_;
  std::shared_ptr<const Handler> handler_;
};

/// The process-wide diagnostics object, the same at every call.
KEL_EXPORT DiagService& GlobalInst();

}  // namespace Diag
