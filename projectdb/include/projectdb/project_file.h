#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <kel/export.h>
#include <projectdb/check.h>
#include <projectdb/project_contents.h>

/// Project files as values: reading, writing and changing whole files, also by several programs at
/// once. All paths are native paths; on Windows they are UTF-8 text, and nothing is written under a
/// name that is not. Every function may run in any thread.
namespace projectdb {

namespace files {
class FileLock;
}

/// Which state of a file was read: two versions are equal only if the file is the same one, of the
/// same size and time of change, with the same bytes as far as they are looked at. A version that
/// no reading gave is that of no file.
struct ProjectFileVersion {
  std::uint64_t device = 0;
  std::uint64_t file = 0;       ///< Its number on the device; 0 for no file.
  std::uint64_t size = 0;       ///< In bytes.
  std::int64_t changed_at = 0;  ///< In nanoseconds since 1970, as the system keeps it.
  /// Of the first 256 MiB, so that a change within one clock tick shows too; 0 for a file that
  /// could not be read to its end.
  std::uint64_t bytes_digest = 0;

  friend bool operator==(const ProjectFileVersion& a, const ProjectFileVersion& b) {
    return a.device == b.device && a.file == b.file && a.size == b.size &&
           a.changed_at == b.changed_at && a.bytes_digest == b.bytes_digest;
  }
  friend bool operator!=(const ProjectFileVersion& a, const ProjectFileVersion& b) {
    return !(a == b);
  }
};

/// What a reading gives.
struct ProjectFile {
  /// What a load of the file into a new object would give; none if the load would leave the object
  /// without a project, or if the file cannot be read to its end.
  std::optional<ProjectContents> contents;
  std::vector<FileProblem> problems;  ///< As CheckProjectFile lists them.
  /// Whatever the file holds; that of no file if there is none, or no regular one.
  ProjectFileVersion version;
  /// What is no problem, but not kept: comments and security sections, each a warning in its place.
  /// Who writes over a file may want to tell of it.
  std::vector<FileProblem> unkept = {};
};

/// Reads a file, which is opened once, and once more only to find the line of text that is not
/// UTF-8; a pipe is read as well, once. A name that does not end in ".xml" is a problem of severity
/// error, but no obstacle: the contents are there.
///
/// @param path native path
/// @param schema_file native path of the XML schema, or "" as with
///        KelProjectDatabase::LoadProjectData; one that does not exist is a warning
/// @exception std::bad_alloc
KEL_EXPORT ProjectFile ReadProjectFile(const std::string& path, const std::string& schema_file);

/// Reads what a file would hold.
/// @param bytes of a project file, in any encoding that its XML declaration names
/// @param schema_file as with ReadProjectFile
/// @return contents with the empty text for a directory, and the version of no file; a schema that
///         the bytes name is not looked for, wherever it is
/// @exception std::bad_alloc
KEL_EXPORT ProjectFile ParseProjectFile(const std::string& bytes, const std::string& schema_file);

/// How FormatProjectFile writes.
struct FormatOptions {
  /// Whether the stamps of the last writing are those of the contents, each left out if it is
  /// empty, which a load does not mind; else this library's version and the local time.
  bool keep_stamps = false;
};

/// The bytes of the project's file in canonical order: info attributes by name, parameters by map
/// ("param", "dynparam", "defmacro", then others by name) and then by name, all else as in an
/// export. The same contents give the same bytes, but for the stamps, on every platform.
///
/// Plain parameters of a process, and the number of a type that has no text, are in no file: such a
/// type is left out, as kNoParameterType is.
///
/// @exception std::runtime_error "Failed writing XML file: " + reason + "\n" for contents that no
///            project file can hold or that a load would not give back, as with
///            ExportProjectDataDurably
/// @exception std::bad_alloc
KEL_EXPORT std::string FormatProjectFile(const ProjectContents& contents,
                                         const FormatOptions& options = {});

/// The file is not the one that was expected; nothing was written.
class KEL_EXPORT ProjectFileChanged : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// How WriteProjectFile writes.
struct WriteOptions {
  bool keep_stamps = false;  ///< As with FormatProjectFile.
  /// Nothing is written unless the file is still this one, or still missing. Of several that
  /// expect the same version, in threads and processes, one writes: it has the file's
  /// ProjectFileLock meanwhile, for which it waits, unless the process has it already or the file
  /// system has no locks to give.
  std::optional<ProjectFileVersion> expected = std::nullopt;
  /// Whether a file that says the same, but in other bytes than FormatProjectFile gives, is written
  /// anew.
  bool canonical = false;
  /// As with ReadProjectFile, to read the file that is there.
  std::string schema_file = {};
};

/// Saves a project in canonical order, and as safely as ExportProjectDataDurably does. A file that
/// says the same already, stamps and directory aside, is not touched, even if its schema refuses
/// it. What it says includes the values that its schema adds.
///
/// Without an expected version it takes no ProjectFileLock and replaces whatever is there. The path
/// may end in anything; a load wants ".xml". It is not the same file afterwards: another hard link
/// to the former one keeps that.
///
/// @return whether the file was written
/// @exception ProjectFileChanged if the file is not the expected one
/// @exception std::runtime_error as ExportProjectDataDurably, and if a version is expected of a
///            file that cannot be locked or read, or that goes while it is
/// @exception std::bad_alloc with the file as it was
KEL_EXPORT bool WriteProjectFile(const std::string& path, const ProjectContents& contents,
                                 const WriteOptions& options = {});

/// Keeps others who want the lock of a file away, in this process and in all others, for as long as
/// it lives. It keeps nobody from reading or writing the file who does not ask for the lock; who
/// replaces the file so, lets the next one in who asks.
///
/// The lock is on the file itself, by whatever path or symbolic link it is reached, and goes over
/// to the new file when this process replaces it by one of this library's safe saves, even if that
/// is through another hard link. The system gives it back when the process ends, however that ends;
/// nothing stays behind. A thread that asks for a lock that it holds waits for ever. A child
/// process that fork makes has a share in the lock, and takes it along if it replaces the file.
///
/// On Windows the lock is a hidden file ".kel_lock_" + name beside the one that it is on, which
/// goes with it, also when the process is ended. So the process must be allowed to make files in
/// the directory, the name has at most 245 characters, each hard link has a lock of its own, which
/// stays with its path, and no child process has a share in one. Who has the file open and does not
/// share it is waited for, but not for longer than a second and a bit.
///
/// Threads: each may take locks; one object belongs to one thread at a time.
class KEL_EXPORT ProjectFileLock {
 public:
  /// Waits until it has the lock.
  /// @exception std::runtime_error "Failed locking XML file " + path + ": " + reason + "\n" if that
  ///            is no regular file, cannot be opened, or cannot be locked where it is
  explicit ProjectFileLock(const std::string& path);

  /// Gives up after so long a wait, with a std::runtime_error as above.
  ProjectFileLock(const std::string& path, std::chrono::milliseconds longest_wait);

  ~ProjectFileLock();
  ProjectFileLock(const ProjectFileLock&) = delete;
  ProjectFileLock& operator=(const ProjectFileLock&) = delete;

 private:
  std::unique_ptr<files::FileLock> lock_;
};

/// How UpdateProjectFile goes about it.
struct UpdateOptions {
  std::string schema_file;   ///< As with ReadProjectFile.
  bool keep_stamps = false;  ///< As with FormatProjectFile.
  /// Whether a file with problems of severity error is changed too, if it has contents; what a load
  /// leaves out is then lost.
  bool despite_errors = false;
  /// How long to wait for the file's lock; for ever if not given.
  std::optional<std::chrono::milliseconds> longest_wait = std::nullopt;
  /// Is given what each reading of the file gave, before an error in it ends the update and before
  /// the contents change: who tells people of the problems needs no reading of their own.
  std::function<void(const ProjectFile&)> on_reading = nullptr;
  bool canonical = false;  ///< As with WriteProjectFile.
};

/// Changes a project file, so that no change by anybody else who uses this function or
/// ProjectFileLock is lost: takes the lock, reads the file, has its contents changed, and writes
/// them with WriteProjectFile. A program that replaces the file without the lock may lose changes.
///
/// What a load does not keep is lost: comments, deprecated and foreign elements, refused
/// parameters.
///
/// @param path native path of a project file
/// @param change is called once for each reading of the file, which is read again if somebody
///        without the lock replaced it meanwhile; an exception of it passes on, and nothing is
///        written
/// @param options what else there is to choose
/// @return whether the file was written
/// @exception std::runtime_error with the first error of the file, or as ProjectFileLock and
///            WriteProjectFile; the file is then as it was, unless only the flush of its directory
///            failed
/// @exception std::bad_alloc with the file as it was
KEL_EXPORT bool UpdateProjectFile(const std::string& path,
                                  const std::function<void(ProjectContents&)>& change,
                                  const UpdateOptions& options = {});

}  // namespace projectdb
