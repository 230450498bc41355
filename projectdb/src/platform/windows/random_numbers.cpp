#include "platform/random_numbers.h"

#include "platform/windows/windows_system.h"

#include <bcrypt.h>  // After the system's own header, without which it does not compile.

namespace projectdb::files {
namespace {

BOOL FillWithRandomBytes(unsigned char* bytes, ULONG size) {
  const NTSTATUS status = BCryptGenRandom(nullptr, bytes, size, BCRYPT_USE_SYSTEM_PREFERRED_RNG);
  if (status >= 0) return TRUE;
  SetLastError(ERROR_GEN_FAILURE);
  return FALSE;
}

}  // namespace

std::array<std::uint64_t, 2> RandomNumbers() {
  std::array<std::uint64_t, 2> numbers{};
  RequireSuccess(CallSystem("BCryptGenRandom", FillWithRandomBytes,
                            reinterpret_cast<unsigned char*>(numbers.data()),
                            static_cast<ULONG>(sizeof(numbers))));
  return numbers;
}

}  // namespace projectdb::files
