#pragma once

#include "tests/kelproj/kelproj_test.h"

namespace test_support {

/// Runs the program in a real repository, with a configuration of git of its own.
class GitTest : public KelprojTest {
 protected:
  void SetUp() override {
    if (RunProcess({"git", "--version"}).status != 0) GTEST_SKIP() << "there is no git";
    Succeed({"config", "--global", "user.name", "Zoë Brandt"});
    Succeed({"config", "--global", "user.email", "zoe@kel.example"});
    Succeed({"init", "--quiet", "--initial-branch=main"});
  }

  Outcome RunGit(std::vector<std::string> arguments, const std::string& directory = "") const {
    arguments.insert(arguments.begin(), "git");
    return RunProcess(arguments, {PathOf(directory), Environment()});
  }

  void Succeed(const std::vector<std::string>& arguments) const {
    const Outcome outcome = RunGit(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.err;
  }

  // Runs the program as one who works in the repository does.
  Outcome RunHere(const std::vector<std::string>& arguments,
                  const std::string& directory = "") const {
    return Run(arguments, {PathOf(directory), Environment()});
  }

  // It may tell something, such as that a file is not there.
  void Change(const std::vector<std::string>& arguments) const {
    const Outcome outcome = RunHere(arguments);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
  }

  void Commit(const std::string& message = "Change the project") const {
    Succeed({"add", "--all"});
    Succeed({"commit", "--quiet", "--message", message});
  }

  void SetName(const std::string& file, const std::string& name) const {
    Change({"set", file, "name", name});
  }

  std::string Home(const std::string& name) const { return home_ / name; }

 private:
  std::map<std::string, std::string> Environment() const {
    return {{"HOME", home_.path()}, {"GIT_CONFIG_NOSYSTEM", "1"}, {"GIT_EDITOR", "true"}};
  }

  TemporaryDirectory home_;
};

}  // namespace test_support
