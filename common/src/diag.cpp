#include <kel/diag.h>

#include <cstdio>
#include <utility>

namespace Diag {
namespace {

const char* SeverityLabel(MessageType type) {
  switch (type) {
    case MessageType::kInfo:
      return "info: ";
    case MessageType::kWarning:
      return "warning: ";
    case MessageType::kError:
      break;
  }
  return "error: ";
}

void WriteToConsole(const DiagStorage& message) {
  const std::string line = SeverityLabel(message.type()) + message.text() + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace

DiagStorage::DiagStorage(Kel::BasicStringRef<char> identifier, MessageType type, std::string&& text,
                         Kel::BasicStringRef<char> second)
    : identifier_(identifier), type_(type), text_(std::move(text)), second_(second) {}

void DiagService::PostImpl(const DiagStorage& message) {
  std::shared_ptr<const Handler> handler;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler = handler_;
  }
  // Called without the lock: a handler may take its time, throw, or replace itself.
  if (handler) {
    (*handler)(message);
  } else {
    WriteToConsole(message);
  }
}

DiagService::Handler DiagService::SetHandler(Handler handler) {
  auto next = handler ? std::make_shared<const Handler>(std::move(handler)) : nullptr;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    handler_.swap(next);
  }
  return next ? *next : Handler();
}

DiagService& GlobalInst() {
  static DiagService service;
  return service;
}

}  // namespace Diag
