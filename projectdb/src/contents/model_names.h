#pragma once

#include <array>

#include "base/name.h"

/// Names that the model itself gives a meaning; the project file uses them too.
namespace projectdb {

/// By ProcType.
inline constexpr std::array<Name, 4> kProcessNames = {
    Name("synthesis"), Name("place_and_route"), Name("bitstream_generation"), Name("debugger")};

inline constexpr Name kParameterMap = "param";  ///< Ordinary parameters of any process.
inline constexpr Name kDefineMap = "dynparam";  ///< Verilog define parameters of synthesis.
inline constexpr Name kMacroMap = "defmacro";   ///< Verilog macros of synthesis.

/// Info attributes that stand for fields of the project.
inline constexpr Name kProjectName = "name";
inline constexpr Name kSoftwareVersion = "sw_version";
inline constexpr Name kLastModifyTime = "last_change_date";

}  // namespace projectdb
