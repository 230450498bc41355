#pragma once

#include <string>
#include <vector>

#include <projectdb/project_contents.h>

/// What other programs read to know the files of a project. What a program could not read as it is
/// meant is refused: a name or value with a character for which its format has no quotes.
namespace kelproj {

/// A command file for option -f of simulators and linters: the project's macros, its define
/// parameters, and the files; a word is quoted, and its quotes and backslashes escaped, where it
/// needs that. A define parameter that is a text by its type, and no literal of Verilog, is written
/// as one.
/// @exception Trouble for what the file cannot say
std::string CommandFile(const projectdb::ProjectContents& project,
                        const std::vector<std::string>& names);

/// The same for option -c of iverilog, which knows no quotes around words.
/// @exception Trouble for what the file cannot say
std::string IverilogCommandFile(const projectdb::ProjectContents& project,
                                const std::vector<std::string>& names);

/// A rule by which make remakes the target when one of the files is newer. Each file is also the
/// target of an empty rule, so that make goes on if it is there no longer.
/// @exception Trouble for what the rule cannot say
std::string MakeRules(const std::string& target, const std::vector<std::string>& names);

}  // namespace kelproj
