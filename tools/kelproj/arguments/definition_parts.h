#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

/// The parts of the arguments' definition, for texts and completions that are made from it. What
/// has no group is not spoken of.
namespace kelproj {

/// The options or the positionals of a command, in the order of their definition.
std::vector<const CLI::Option*> OptionsOf(const CLI::App& app, bool positional);

std::vector<const CLI::App*> CommandsOf(const CLI::App& program);

/// The long names, with their hyphens.
std::vector<std::string> OptionNames(const CLI::App& app);

std::vector<std::string> CommandNames(const CLI::App& program);

/// Whether an option has no value.
bool IsFlag(const CLI::Option& option);

/// Whether any number of values may be given.
bool IsList(const CLI::Option& option);

/// What help calls a positional, such as "FILE...".
std::string PositionalName(const CLI::Option& option);

}  // namespace kelproj
