#pragma once

#include <string>

namespace kelproj {

/// Whether the text is a number as Verilog writes it, without x and z digits, or a hexadecimal one
/// as C does, which programs read too. A minus sign may stand before one without a base.
bool IsVerilogNumber(const std::string& text);

/// The same number for programs that know no underscores between digits.
std::string WithoutUnderscores(std::string number);

}  // namespace kelproj
