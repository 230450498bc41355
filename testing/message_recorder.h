#pragma once

#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include <kel/diag.h>

namespace test_support {

/// Keeps the messages that are posted while it lives, in place of the console.
class MessageRecorder {
 public:
  struct Message {
    Diag::MessageType type;
    std::string text;
    bool operator==(const Message& other) const { return type == other.type && text == other.text; }
  };

  MessageRecorder()
      : former_(Diag::GlobalInst().SetHandler([this](const Diag::DiagStorage& message) {
          const std::lock_guard<std::mutex> lock(mutex_);
          messages_.push_back({message.type(), message.text()});
        })) {}
  ~MessageRecorder() { Diag::GlobalInst().SetHandler(former_); }
  MessageRecorder(const MessageRecorder&) = delete;
  MessageRecorder& operator=(const MessageRecorder&) = delete;

  std::vector<Message> messages() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return messages_;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Message> messages_;
  Diag::DiagService::Handler former_;
};

inline void PrintTo(const MessageRecorder::Message& message, std::ostream* out) {
  *out << "severity " << static_cast<int>(message.type) << ": " << message.text;
}

}  // namespace test_support
