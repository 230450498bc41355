#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "arguments/arguments.h"
#include "file_kinds.h"
#include "stored_project.h"

/// What the definitions of commands have in common.
namespace kelproj {

inline constexpr char kFileHelp[] = "The project file; its name ends in .xml";

CLI::App& AddCommand(CLI::App& program, const char* name, const char* summary,
                     const std::string& help);

/// Arguments that live as long as the command, which is requested once they are parsed.
/// @param require throws a CLI::ParseError if what is given does not fit together
template <typename CommandArguments>
CommandArguments& Requested(
    CLI::App& command, Request& request,
    const std::function<void(const CommandArguments&)>& require = [](const auto&) {}) {
  const auto arguments = std::make_shared<CommandArguments>();
  command.callback([arguments, require, &request] {
    require(*arguments);
    request = [arguments](const Console& console) { return Run(*arguments, console); };
  });
  return *arguments;
}

void AddFile(CLI::App& command, std::string& file);
void AddChangedFile(CLI::App& command, ChangedFile& file);
void AddForce(CLI::App& command, bool& despite_errors);
void AddJson(CLI::App& command, bool& json);

/// Options that choose one of the kinds of files; it is null if none is given.
/// @param help of each, before the kind's title
std::vector<CLI::Option*> AddFileKinds(CLI::App& command, projectdb::Table<FileKind> kinds,
                                       const FileKind*& kind, const std::string& help);

/// One of these texts. Help tells them where they are described.
CLI::Validator OneOf(const std::vector<std::string>& texts);

void ExcludeEachOther(const std::vector<CLI::Option*>& options);

void DefineChangingCommands(CLI::App& program, Request& request);
void DefineAskingCommands(CLI::App& program, Request& request);
void DefineGitCommands(CLI::App& program, Request& request);
void DefineTextCommands(CLI::App& program, Request& request);

}  // namespace kelproj
