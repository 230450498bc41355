#pragma once

#include <string>
#include <string_view>

/// How temporary files are named, by which those that were left behind are known.
namespace projectdb::files {

inline constexpr std::string_view kTemporaryPrefix = ".kel_save_";

/// A name that cannot be foreseen and has no extension.
/// @exception Failure if the system gives no random numbers
std::string UnforeseeableName();

bool IsTemporaryName(std::string_view name);

}  // namespace projectdb::files
