#include "check/versioned_file.h"

#include <array>
#include <cerrno>

#include <sys/stat.h>

#include "base/system_calls.h"

namespace projectdb::files {
namespace {

// The 64-bit digest by Fowler, Noll and Vo: it tells changes apart that nobody made to deceive it.
constexpr std::uint64_t kDigestStart = 0xCBF29CE484222325;
constexpr std::uint64_t kDigestFactor = 0x100000001B3;

std::uint64_t Digest(std::uint64_t digest, const unsigned char* bytes, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) digest = (digest ^ bytes[i]) * kDigestFactor;
  return digest;
}

std::int64_t Nanoseconds(const timespec& time) {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  return static_cast<std::int64_t>(time.tv_sec) * kPerSecond + time.tv_nsec;
}

}  // namespace

VersionedFile::VersionedFile(const std::string& path) : file_(path), digest_(kDigestStart) {}

std::size_t VersionedFile::Read(unsigned char* target, std::size_t most) {
  const std::size_t size = file_.Read(target, most);
  digest_ = Digest(digest_, target, size);
  return size;
}

ProjectFileVersion VersionedFile::Version() {
  const struct stat& status = file_.status();
  if (!S_ISREG(status.st_mode)) return {};
  constexpr std::size_t kBlockSize = 64 * 1024UL;
  std::array<unsigned char, kBlockSize> rest;
  while (Read(rest.data(), rest.size()) > 0) {
  }
  return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size),
          Nanoseconds(status.st_mtim), digest_};
}

bool HasBytes(const ProjectFileVersion& version, std::string_view bytes) {
  const auto* begin = reinterpret_cast<const unsigned char*>(bytes.data());
  return version.size == bytes.size() &&
         version.bytes_digest == Digest(kDigestStart, begin, bytes.size());
}

ProjectFileVersion VersionOf(const std::string& path) {
  struct stat status {};
  if (CallSystem("stat", ::stat, path.c_str(), &status) != 0 && errno == ENOENT) return {};
  return VersionedFile(path).Version();
}

}  // namespace projectdb::files
