#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "console.h"

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace kelproj {

/// Runs the command that the arguments ask for.
using Request = std::function<ExitStatus(const Console&)>;

/// The program's arguments: their definition, and what is given of them.
class Arguments {
 public:
  Arguments();
  ~Arguments();
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

  /// @param arguments without the program's name
  /// @exception CLI::ParseError if they are wrong, or ask for help or the version
  void Parse(const std::vector<std::string>& arguments);

  /// What is wrong with the arguments.
  std::string Reason(const CLI::ParseError& error) const;

  const CLI::App& program() const { return *program_; }
  bool verbose() const { return verbose_; }
  const Request& request() const { return request_; }  ///< Set by Parse.

 private:
  std::unique_ptr<CLI::App> program_;
  Request request_;
  bool verbose_ = false;
};

}  // namespace kelproj
