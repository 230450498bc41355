#include "check/versioned_file.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "base/failure.h"

namespace projectdb::files {
namespace {

// A load stops at a zero behind the project; an endless rest of zeros is not worth the time.
constexpr std::uint64_t kMostDigested = std::uint64_t{256} << 20U;

}  // namespace

std::size_t VersionedFile::Read(unsigned char* target, std::size_t most) {
  try {
    const std::size_t size = file_.Read(target, most);
    const std::uint64_t digested = std::min<std::uint64_t>(size, kMostDigested - digest_.size());
    digest_.Add(target, static_cast<std::size_t>(digested));
    return size;
  } catch (const Failure&) {
    failure_ = std::current_exception();
    throw;
  }
}

void VersionedFile::RequireReads() const {
  if (failure_) std::rethrow_exception(failure_);
}

ProjectFileVersion VersionedFile::Version() {
  ProjectFileVersion version = VersionWithoutDigest(status());
  if (version == ProjectFileVersion()) return version;
  constexpr std::size_t kBlockSize = 64 * 1024UL;
  std::array<unsigned char, kBlockSize> rest;
  while (digest_.size() < kMostDigested && Read(rest.data(), rest.size()) > 0) {
  }
  version.bytes_digest = digest_.Value();
  return version;
}

ProjectFileVersion VersionWithoutDigest(const FileStatus& status) {
  if (!status.IsRegular()) return {};
  return {status.device, status.number, status.size, status.changed_at, 0};
}

bool HasBytes(const ProjectFileVersion& version, std::string_view bytes) {
  if (version.size != bytes.size()) return false;
  BytesDigest digest;
  digest.Add(reinterpret_cast<const unsigned char*>(bytes.data()),
             std::min<std::size_t>(bytes.size(), kMostDigested));
  return version.bytes_digest == digest.Value();
}

bool IsOfVersion(const std::string& path, const ProjectFileVersion& version) {
  if (!IsRegularFile(path)) return version == ProjectFileVersion();
  VersionedFile file(path);
  ProjectFileVersion found = VersionWithoutDigest(file.status());
  found.bytes_digest = version.bytes_digest;
  return found == version && file.Version() == version;
}

}  // namespace projectdb::files
