#include "platform/file_permissions.h"

#include <linux/limits.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/posix/posix_system.h"

namespace projectdb::files {
namespace {

constexpr uid_t kSameOwner = static_cast<uid_t>(-1);
constexpr gid_t kSameGroup = static_cast<gid_t>(-1);
constexpr char kAccessList[] = "system.posix_acl_access";

// Whether the process may do that.
bool ChangeOwner(const OpenFile& file, uid_t owner, gid_t group) {
  if (CallSystem("fchown", ::fchown, DescriptorOf(file), owner, group) == 0) return true;
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
void RemoveAccessList(const OpenFile& file) {
  const int result = CallSystem("fremovexattr", ::fremovexattr, DescriptorOf(file), kAccessList);
  if (result != 0 && errno != ENODATA) ThrowSystemFailure();
}

void CopyAccessList(const std::filesystem::path& former_path, const OpenFile& file) {
  std::string list(XATTR_SIZE_MAX, '\0');
  const ssize_t size = CallSystem("getxattr", ::getxattr, former_path.c_str(), kAccessList,
                                  list.data(), list.size());
  if (size >= 0) {
    RequireSuccess(CallSystem("fsetxattr", ::fsetxattr, DescriptorOf(file), kAccessList,
                              list.data(), static_cast<std::size_t>(size), 0));
  } else if (errno == ENODATA) {
    RemoveAccessList(file);
  } else if (errno != ENOTSUP) {
    ThrowSystemFailure();
  }
}

}  // namespace

void CopyPermissions(const std::filesystem::path& former_path, const FileStatus& former,
                     const OpenFile& file) {
  const FileStatus created = file.Status();
  // The group before its permissions, and the owner, who may set them, last.
  const bool has_group =
      created.group == former.group || ChangeOwner(file, kSameOwner, former.group);
  const mode_t mode = has_group ? former.permissions : WithoutPrivilegesOfGroup(former.permissions);
  CopyAccessList(former_path, file);
  if (file.Status().permissions != mode) {
    RequireSuccess(CallSystem("fchmod", ::fchmod, DescriptorOf(file), mode));
  }
  if (created.owner != former.owner) ChangeOwner(file, former.owner, kSameGroup);
}

}  // namespace projectdb::files
