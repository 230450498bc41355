#pragma once

#include <cstdint>
#include <string>

#include <sys/types.h>
#include <sys/xattr.h>

/// Access control lists of files and directories, in the form in which the system takes them.
namespace test_support {

constexpr char kAccessList[] = "system.posix_acl_access";
constexpr char kAccessListOfNewFiles[] = "system.posix_acl_default";

/// A list that gives its owner and one more user permissions, the group and others none.
inline std::string AccessListFor(std::uint32_t user) {
  constexpr std::uint32_t kVersion = 2;
  constexpr std::uint32_t kNoId = 0xFFFFFFFF;
  struct Entry {
    std::uint16_t tag;
    std::uint16_t permissions;
    std::uint32_t id;
  };
  const Entry entries[] = {
      {0x01, 6, kNoId},                    // the owner
      {0x02, 7, user},  {0x04, 0, kNoId},  // the group
      {0x10, 7, kNoId},                    // the most that users and groups may get
      {0x20, 0, kNoId},                    // others
  };
  return std::string(reinterpret_cast<const char*>(&kVersion), sizeof(kVersion)) +
         std::string(reinterpret_cast<const char*>(entries), sizeof(entries));
}

/// @param kind kAccessList or kAccessListOfNewFiles
/// @return false where there are no such lists
inline bool SetAccessList(const std::string& path, const char* kind, const std::string& list) {
  return ::setxattr(path.c_str(), kind, list.data(), list.size(), 0) == 0;
}

/// @return "" if the file has none
inline std::string AccessListOf(const std::string& path) {
  char list[1024];
  const ssize_t size = ::getxattr(path.c_str(), kAccessList, list, sizeof(list));
  return size < 0 ? "" : std::string(list, static_cast<std::size_t>(size));
}

}  // namespace test_support
