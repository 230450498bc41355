#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Local files as URIs. Paths are native bytes, UTF-8 by convention.
namespace projectdb::xml {

/// The text with everything escaped that cannot stand in the path of a URI.
std::string EscapeForUri(std::string_view text);

/// The "file" URI of a path, made absolute, with everything outside ASCII escaped. However a
/// directory is spelled, its files have one URI: the parser knows by it which it has read already.
std::string FileUri(const std::filesystem::path& path);

/// The local path that a URI reference names.
/// @param reference absolute ("file:///…") or relative to the base
/// @param base_uri a URI that FileUri made
/// @return nothing if the reference names no local file: another scheme, another host
std::optional<std::filesystem::path> LocalPath(std::string_view reference,
                                               std::string_view base_uri);

}  // namespace projectdb::xml
