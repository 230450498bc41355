#include "platform/output_file.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "platform/paths.h"
#include "platform/windows/windows_system.h"

namespace projectdb::files {

namespace {

// Devices and pipes have no end to be set.
bool Truncate(HANDLE file) {
  return CallSystem("GetFileType", ::GetFileType, file) != FILE_TYPE_DISK ||
         CallSystem("SetEndOfFile", ::SetEndOfFile, file) != 0;
}

}  // namespace

struct OutputFile::State {
  std::optional<OpenFile> file;
  DWORD error = ERROR_SUCCESS;  // The first failure's.
};

OutputFile::OutputFile(const std::string& path) : state_(std::make_unique<State>()) {
  if (!IsNameToWrite(path)) return;
  // The system would deny to make a file anew that is hidden.
  const HANDLE handle = WaitToOpen(paths::FromBytes(path), {GENERIC_WRITE, OPEN_ALWAYS});
  if (handle == NoFile()) return;
  state_->file.emplace(reinterpret_cast<OpenFile::Handle>(handle));
  if (!Truncate(handle)) state_->error = GetLastError();
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
