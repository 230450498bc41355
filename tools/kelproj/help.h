#pragma once

#include <memory>
#include <string>

namespace CLI {
class App;
class FormatterBase;
}  // namespace CLI

/// Texts that are made from the definition of the arguments. An indented line of a description
/// stands for itself; other lines flow.
namespace kelproj {

/// The form of what --help prints.
std::shared_ptr<CLI::FormatterBase> HelpFormatter();

/// The manual page, for man(7).
std::string ManualPage(const CLI::App& program);

}  // namespace kelproj
