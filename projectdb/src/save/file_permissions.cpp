#include "save/file_permissions.h"

#include <cerrno>

#include <linux/limits.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "base/system_calls.h"

namespace projectdb::files {
namespace {

constexpr mode_t kPermissionBits = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
constexpr gid_t kSameGroup = static_cast<gid_t>(-1);
constexpr char kAccessList[] = "system.posix_acl_access";

// Whether the process may do that.
bool ChangeOwner(const FileDescriptor& file, uid_t owner, gid_t group) {
  if (CallSystem("fchown", ::fchown, file.number(), owner, group) == 0) return true;
  // EINVAL: a user or group that the process's user namespace does not know.
  if (errno != EPERM && errno != EINVAL) ThrowSystemFailure();
  return false;
}

// Another group keeps only the permissions that all others have too.
mode_t WithoutPrivilegesOfGroup(mode_t mode) {
  const mode_t others_as_group = (mode & S_IRWXO) << 3U;
  return mode & (S_IRWXU | S_IRWXO | others_as_group);
}

// A file may have a list without having been given one: that of its directory for new files.
void RemoveAccessList(const FileDescriptor& file) {
  const int result = CallSystem("fremovexattr", ::fremovexattr, file.number(), kAccessList);
  if (result != 0 && errno != ENODATA) ThrowSystemFailure();
}

void CopyAccessList(const std::string& former_path, const FileDescriptor& file) {
  std::string list(XATTR_SIZE_MAX, '\0');
  const ssize_t size = CallSystem("getxattr", ::getxattr, former_path.c_str(), kAccessList,
                                  list.data(), list.size());
  if (size >= 0) {
    RequireSuccess(CallSystem("fsetxattr", ::fsetxattr, file.number(), kAccessList, list.data(),
                              static_cast<std::size_t>(size), 0));
  } else if (errno == ENODATA) {
    RemoveAccessList(file);
  } else if (errno != ENOTSUP) {
    ThrowSystemFailure();
  }
}

}  // namespace

void CopyPermissions(const std::string& former_path, const struct stat& former,
                     const FileDescriptor& file) {
  const struct stat created = file.Status();
  // The group before its permissions, and the owner, who may set them, last.
  const bool has_group =
      created.st_gid == former.st_gid || ChangeOwner(file, kSameOwner, former.st_gid);
  const mode_t former_mode = former.st_mode & kPermissionBits;
  const mode_t mode = has_group ? former_mode : WithoutPrivilegesOfGroup(former_mode);
  CopyAccessList(former_path, file);
  if ((file.Status().st_mode & kPermissionBits) != mode) {
    RequireSuccess(CallSystem("fchmod", ::fchmod, file.number(), mode));
  }
  if (created.st_uid != former.st_uid) ChangeOwner(file, former.st_uid, kSameGroup);
}

}  // namespace projectdb::files
