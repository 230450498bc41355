#include "platform/output_file.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "platform/paths.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {

struct OutputFile::State {
  std::optional<OpenFile> file;
  DWORD error = ERROR_SUCCESS;  // The first failure's.
};

OutputFile::OutputFile(const std::string& path) : state_(std::make_unique<State>()) {
  if (!IsNameToWrite(path)) return;
  const HANDLE handle = WaitToOpen(paths::FromBytes(path), {GENERIC_WRITE, CREATE_ALWAYS});
  if (handle != NoFile()) state_->file.emplace(reinterpret_cast<OpenFile::Handle>(handle));
}

OutputFile::~OutputFile() = default;

bool OutputFile::is_open() const { return state_->file.has_value(); }

void OutputFile::Write(const unsigned char* bytes, std::size_t count) {
  constexpr std::size_t kMostAtOnce = std::numeric_limits<int>::max();
  while (count > 0 && state_->error == ERROR_SUCCESS) {
    const auto wanted = static_cast<DWORD>(std::min(count, kMostAtOnce));
    DWORD written = 0;
    if (CallSystem("WriteFile", ::WriteFile, HandleOf(*state_->file), LPCVOID{bytes}, wanted,
                   &written, LPOVERLAPPED{nullptr}) == 0) {
      state_->error = GetLastError();
    }
    bytes += written;
    count -= written;
  }
}

void OutputFile::Close() {
  if (!state_->file->Close() && state_->error == ERROR_SUCCESS) state_->error = GetLastError();
  if (state_->error != ERROR_SUCCESS) ThrowSystemFailure(state_->error);
}

}  // namespace projectdb::files
