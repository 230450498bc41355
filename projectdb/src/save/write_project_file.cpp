#include "save/write_project_file.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <string>

#include "base/failure.h"
#include "check/read_project_file.h"
#include "check/versioned_file.h"
#include "contents/same_project.h"
#include "platform/file_lock.h"
#include "platform/file_status.h"
#include "platform/locking.h"
#include "save/canonical_document.h"
#include "save/replace_file.h"
#include "xml/errors.h"
#include "xml/platform.h"
#include "xml/writer.h"

namespace projectdb {
namespace {

std::string BytesOf(const ProjectContents& contents, const FormatOptions& options) {
  return xml::WriteDOMDocumentToBytes(*CanonicalDocument(contents, options));
}

void WriteTo(const std::string& path, const ProjectContents& contents,
             const FormatOptions& options) {
  xml::WriteDOMDocumentToFile(path, CanonicalDocument(contents, options).get());
}

// Whether the file has the very bytes that it would be given. New stamps are no reason to write.
bool IsCanonical(const ProjectFile& former, const ProjectContents& contents,
                 const WriteOptions& options) {
  const std::string bytes = BytesOf(options.keep_stamps ? contents : *former.contents, {true});
  return files::HasBytes(former.version, bytes);
}

// Whether the file's contents are all that it says. An error in no line is of its name alone.
bool IsWhole(const ProjectFile& file) {
  return file.contents &&
         std::none_of(file.problems.begin(), file.problems.end(), [](const FileProblem& problem) {
           return problem.severity == ProblemSeverity::kError && problem.line > 0;
         });
}

bool Holds(const ProjectFile& former, const ProjectContents& contents,
           const WriteOptions& options) {
  return IsWhole(former) && HaveSameProject(*former.contents, contents) &&
         (!options.canonical || IsCanonical(former, contents, options));
}

// What the file says counts even if its schema refuses that. Where the schema adds values to it,
// they count: without them a change that takes one away would not be written.
bool SaysTheSame(const std::string& path, const FileReading& former,
                 const ProjectContents& contents, const WriteOptions& options) {
  if (Holds(former.file, contents, options)) return true;
  const bool is_there = former.file.version != ProjectFileVersion();
  if (!is_there || former.file.contents) return false;
  const ProjectFile without_schema = ReadWholeFile(path, std::nullopt).file;
  return without_schema.version == former.file.version && Holds(without_schema, contents, options);
}

/// The file is not the one that this process has locked, or another thread gave its lock back.
class LockLost : public std::exception {};

[[noreturn]] void ThrowChanged(const std::string& path) {
  throw ProjectFileChanged(WritingPrefix(path) + "it is not the file that was expected\n");
}

// What no save replaces is not read either: a pipe might keep the reader waiting.
FileReading FormerFile(const std::string& path, const std::string& schema_file) {
  return files::IsRegularFile(path) ? ReadWholeFile(path, schema_file) : FileReading();
}

void RequireExpected(const std::string& path, const FileReading& former,
                     const ProjectFileVersion& expected) {
  if (former.failure && files::IsRegularFile(path)) {
    throw Failure("it cannot be read: " + *former.failure);
  }
  if (former.file.version != expected) ThrowChanged(path);
}

bool Write(const std::string& path, const FileReading& former, const ProjectContents& contents,
           const WriteOptions& options, bool needs_lock) {
  RequireWritable(contents);
  if (options.expected) RequireExpected(path, former, *options.expected);
  if (SaysTheSame(path, former, contents, options)) return false;
  files::Replacement replacement;
  replacement.write = [&](const std::string& file) {
    WriteTo(file, contents, {options.keep_stamps});
  };
  if (options.expected) {
    replacement.confirm = [&](bool is_locked) {
      if (needs_lock && !is_locked) throw LockLost();
      if (!files::IsOfVersion(path, *options.expected)) ThrowChanged(path);
    };
    replacement.refuse = [&] { ThrowChanged(path); };
  }
  files::ReplaceFile(path, replacement);
  return true;
}

/// The lock of a file that is to be written.
struct LockForWriting {
  bool is_there = false;  ///< Whether this process has it, or may: it shows before the replacement.
  std::unique_ptr<files::FileLock> own = nullptr;  ///< Null if it was there before.
};

bool MayBeLockedHere(const std::string& path) {
  try {
    return files::IsLockedHere(path);
  } catch (const Failure&) {
    // It shows before the file is replaced.
    return true;
  }
}

// Others who expect a version, or update the file, are to wait until this one is written.
LockForWriting Lock(const std::string& path, const WriteOptions& options) {
  const bool is_needed = options.expected && *options.expected != ProjectFileVersion();
  if (!is_needed) return {};
  if (MayBeLockedHere(path)) return {true};
  try {
    return {true, std::make_unique<files::FileLock>(path, std::nullopt)};
  } catch (const files::NoLocks&) {
    return {};
  } catch (const Failure&) {
    if (files::IsRegularFile(path)) throw;
    // It is not the expected one, unless it is back by then; its lock is asked for anew then.
    return {true};
  }
}

/// As xml::WithPrefixedErrors. The XML library is there until none of its exceptions is left.
template <typename Action>
auto WithXmlLibrary(const std::string& prefix, Action action) {
  return xml::WithBadAlloc([&] {
    const xml::Platform platform;
    return xml::WithPrefixedErrors(prefix, action);
  });
}

}  // namespace

bool WriteOver(const std::string& path, const FileReading& former, const ProjectContents& contents,
               const WriteOptions& options) {
  return WithXmlLibrary(WritingPrefix(path), [&] {
    try {
      return Write(path, former, contents, options, true);
    } catch (const LockLost&) {
      ThrowChanged(path);
    }
  });
}

bool WriteProjectFile(const std::string& path, const ProjectContents& contents,
                      const WriteOptions& options) {
  for (;;) {
    try {
      return WithXmlLibrary(WritingPrefix(path), [&] {
        const LockForWriting lock = Lock(path, options);
        const FileReading former = FormerFile(path, options.schema_file);
        return Write(path, former, contents, options, lock.is_there);
      });
    } catch (const LockLost&) {
      // It is asked for anew.
    }
  }
}

std::string FormatProjectFile(const ProjectContents& contents, const FormatOptions& options) {
  return WithXmlLibrary("Failed writing XML file: ", [&] { return BytesOf(contents, options); });
}

}  // namespace projectdb
