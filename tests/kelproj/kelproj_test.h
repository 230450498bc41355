#pragma once

#include <algorithm>
#include <filesystem>
#include <sstream>

#include <nlohmann/json.hpp>

#include "testing/saves.h"
#include "testing/shipped_files.h"
#include "testing/temporary_directory.h"
#include "testing/test.h"
#include "tests/kelproj/process.h"

namespace test_support {

/// Path of the built program.
std::string KelprojProgram();

/// Runs the program within this process, in a directory.
/// @param input what it reads on standard input
Outcome RunKelprojHere(const std::vector<std::string>& arguments, const std::string& directory,
                       const std::string& input);

inline Outcome Printed(std::string out) { return {0, std::move(out), ""}; }
inline Outcome Done() { return Printed(""); }
inline Outcome AnsweredNo(std::string out = "") { return {1, std::move(out), ""}; }
inline Outcome Failed(const std::string& reason) {
  return {2, "", "kelproj: error: " + reason + "\n"};
}
/// The outcome of what is not done because the answer is no.
inline Outcome Refused(const std::string& reason) {
  return {1, "", "kelproj: error: " + reason + "\n"};
}
inline Outcome DoneWithWarning(const std::string& warning) {
  return {0, "", "kelproj: warning: " + warning + "\n"};
}
/// The outcome of a change that puts into the file what deserves a look.
inline Outcome DoneWithContentWarning(const std::string& warning) {
  return {0, "", "blinker.xml: warning: " + warning + "\n"};
}
/// The outcome of wrong arguments: trouble, with a reason and the command's help named.
/// @param words that the reason has; the rest of it is the argument parser's
inline testing::Matcher<const Outcome&> IsWrongUse(const std::string& command,
                                                   const std::vector<std::string>& words) {
  testing::Matcher<const std::string&> error =
      AllOf(StartsWith("kelproj: error: "), EndsWith("\nTry: " + command + " --help\n"));
  for (const std::string& word : words) error = AllOf(error, HasSubstr(word));
  return AllOf(testing::Field(&Outcome::status, 2), testing::Field(&Outcome::out, ""),
               testing::Field(&Outcome::err, error));
}

/// Gives a file or directory other permissions for as long as it lives.
class Permissions {
 public:
  Permissions(const std::string& path, unsigned permissions)
      : path_(path), former_(std::filesystem::status(path).permissions()) {
    std::filesystem::permissions(path_, std::filesystem::perms(permissions));
  }
  ~Permissions() { std::filesystem::permissions(path_, former_); }
  Permissions(const Permissions&) = delete;
  Permissions& operator=(const Permissions&) = delete;

 private:
  std::string path_;
  std::filesystem::perms former_;
};

/// Runs the program in a new directory.
class KelprojTest : public testing::Test {
 protected:
  // In a process of its own if the settings ask for what only such a process has: starting one
  // takes longer than what most commands do. One thread at a time may do so.
  Outcome Run(const std::vector<std::string>& arguments,
              const ProcessSettings& settings = {}) const {
    if (!settings.environment.empty() || !settings.output.empty() || settings.obeys_permissions) {
      return RunAsProcess(arguments, settings);
    }
    return RunKelprojHere(arguments, DirectoryOf(settings), settings.input);
  }

  // Runs the built program in a process of its own.
  Outcome RunAsProcess(std::vector<std::string> arguments, ProcessSettings settings = {}) const {
    arguments.insert(arguments.begin(), KelprojProgram());
    settings.directory = DirectoryOf(settings);
    return RunProcess(arguments, settings);
  }

  // Runs the program so that permissions of files bind it.
  Outcome RunUnprivileged(const std::vector<std::string>& arguments) const {
    return Run(arguments, {".", {}, "", true});
  }

  // On some systems root cannot give up its rights.
  bool PermissionsBind() const {
    WriteFile(PathOf("secret"), "");
    const Permissions none(PathOf("secret"), 0);
    return RunProcess({"cat", PathOf("secret")}, {".", {}, "", true}).status != 0;
  }

  void MakeProject(const std::string& file = "blinker.xml") const {
    ASSERT_EQ(Run({"new", "blinker", "-o", file}), Done());
  }

  std::string Get(const std::string& file, const std::string& key) const {
    return Run({"get", file, key}).out;
  }

  // What "show --json" has under the key.
  nlohmann::json Shown(const std::string& key, const std::string& file = "blinker.xml") const {
    nlohmann::json value = nlohmann::json::parse(Run({"show", file, "--json"}).out);
    std::istringstream parts(key);
    for (std::string part; std::getline(parts, part, '.');) value = nlohmann::json(value.at(part));
    return value;
  }

  // The names of the files of a list as they are stored.
  std::vector<std::string> Listed(const std::string& key) const {
    std::vector<std::string> names;
    for (const nlohmann::json& entry : Shown(key)) {
      const char* const name = key == "ip" ? "path" : "name";
      names.push_back(entry.is_object() ? entry.at(name) : entry);
    }
    return names;
  }

  void ExpectUnchangedBy(const std::vector<std::string>& arguments,
                         const testing::Matcher<const Outcome&>& outcome) const {
    const std::string before = Read("blinker.xml");
    EXPECT_THAT(Run(arguments), outcome);
    EXPECT_EQ(Read("blinker.xml"), before);
  }

  std::string Directory() const {
    std::string name = PathText(directory_.path());
    // The program writes slashes on every system.
    constexpr auto kSeparator = static_cast<char>(std::filesystem::path::preferred_separator);
    std::replace(name.begin(), name.end(), kSeparator, '/');
    return name;
  }
  // The directory that holds all others, on the drive of the directory if there are drives.
  std::string Root() const { return PathText(directory_.path().root_name()) + "/"; }
  std::string PathOf(const std::string& name) const { return Directory() + "/" + name; }
  std::string Read(const std::string& name) const { return ReadFile(PathOf(name)); }
  void Write(const std::string& name, const std::string& bytes) const {
    WriteFile(PathOf(name), bytes);
  }

  std::vector<std::string> Names() const { return NamesIn(directory_.path()); }

 private:
  std::string DirectoryOf(const ProcessSettings& settings) const {
    return settings.directory == "." ? Directory() : settings.directory;
  }

  TemporaryDirectory directory_;
};

}  // namespace test_support
