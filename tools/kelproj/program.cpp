#include "program.h"

#include <exception>
#include <ostream>
#include <string_view>

#include <CLI/CLI.hpp>

#include "arguments/arguments.h"

namespace kelproj {
namespace {

ExitStatus Fail(const Console& console, std::string_view reason,
                ExitStatus status = ExitStatus::kTrouble) {
  WriteMessage(console.err, Diag::MessageType::kError, reason);
  return status;
}

// Help and the version come as errors too, with a status that says that they are none.
ExitStatus Answer(const Console& console, const Arguments& arguments,
                  const CLI::ParseError& error) {
  const CLI::App& program = arguments.program();
  if (error.get_exit_code() == 0) {
    program.exit(error, console.out, console.err);
    return ExitStatus::kYes;
  }
  Fail(console, arguments.Reason(error));
  console.err << "Try: " << program.get_name();
  for (const CLI::App* command : program.get_subcommands()) {
    console.err << ' ' << command->get_name();
  }
  console.err << " --help\n";
  return ExitStatus::kTrouble;
}

ExitStatus RunParsed(const std::vector<std::string>& words, const Console& console) {
  Arguments arguments;
  try {
    arguments.Parse(words);
  } catch (const CLI::ParseError& error) {
    return Answer(console, arguments, error);
  }
  const LibraryMessages messages(console.err, arguments.verbose());
  return arguments.request()(console);
}

}  // namespace

ExitStatus RunProgram(const std::vector<std::string>& arguments, const Console& console) {
  try {
    const ExitStatus status = RunParsed(arguments, console);
    return console.out.flush() ? status : Fail(console, "standard output cannot be written");
  } catch (const Refusal& refusal) {
    return Fail(console, refusal.what(), ExitStatus::kNo);
  } catch (const std::exception& exception) {
    return Fail(console, exception.what());
  } catch (...) {
    return Fail(console, "an unknown failure");
  }
}

}  // namespace kelproj
