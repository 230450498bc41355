#include <kel/internal_error.h>

#include <cstdio>
#include <cstdlib>

namespace Kel::Detail {

void InternalErrorImpl(BasicStringRef<char> condition, BasicStringRef<char> message) {
  std::fputs("internal error: ", stderr);
  std::fwrite(condition.data, 1, condition.size, stderr);
  if (message.size != 0) {
    std::fputs(": ", stderr);
    std::fwrite(message.data, 1, message.size, stderr);
  }
  std::fputc('\n', stderr);
  std::abort();
}

}  // namespace Kel::Detail
