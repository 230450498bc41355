#include "save/replace_file.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>

#include <xercesc/util/IOException.hpp>

#include "base/failure.h"
#include "platform/file_lock.h"
#include "platform/file_permissions.h"
#include "platform/open_file.h"
#include "platform/paths.h"
#include "platform/save_target.h"
#include "platform/temporary_file.h"

namespace projectdb::files {
namespace {

// Of an error that may name the file that was written in place of the target.
std::string ReasonOf(const std::string& error, const std::string& written_path) {
  const std::string prefix = WritingPrefix(written_path);
  const std::size_t begin = error.rfind(prefix, 0) == 0 ? prefix.size() : 0;
  const std::size_t end = error.find_last_not_of('\n');
  return error.substr(begin, end + 1 - begin);
}

void WriteInto(const TemporaryFile& file, const Replacement& replacement) {
  const std::string path = paths::ToBytes(file.path());
  try {
    replacement.write(path);
  } catch (const xercesc::IOException&) {
    // It does not tell the system's reason; a second try does.
    OpenForWriting(path);
    throw Failure("the temporary file could not be opened");
  } catch (const std::runtime_error& error) {
    throw Failure(ReasonOf(error.what(), path));
  }
}

// The lock that this process may have on the former file goes with the new one.
void PutInPlace(TemporaryFile& file, const SaveTarget& target, const Replacement& replacement) {
  const std::filesystem::path name = target.path.filename();
  std::optional<LockHandover> handover;
  if (target.former) {
    handover.emplace(paths::ToBytes(target.path), *target.former, file.file());
  }
  replacement.confirm(handover && handover->HasLock());
  if (replacement.refuse && !target.former) {
    if (!file.LinkTo(name)) replacement.refuse();
  } else {
    file.RenameTo(name);
  }
  const bool is_taken_over = handover && handover->Complete();
  if (!is_taken_over) file.Unlock();
}

}  // namespace

void ReplaceFile(const std::string& path, const Replacement& replacement) {
  const SaveTarget target = FindSaveTarget(path);
  const Directory directory(target.path.parent_path());
  RemoveAbandonedFiles(directory);
  // What it is to replace may be secret.
  TemporaryFile file(directory, target.former ? &target.path : nullptr);
  WriteInto(file, replacement);
  const FileStatus written = file.file().Status();
  if (written.names == 0) throw Failure("the temporary file was removed");
  if (written.size == 0) return;
  if (target.former) CopyPermissions(target.path, *target.former, file.file());
  file.Flush();
  PutInPlace(file, target, replacement);
  directory.Flush();
}

}  // namespace projectdb::files
