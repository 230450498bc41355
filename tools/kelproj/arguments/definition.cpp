#include "arguments/definition.h"

namespace kelproj {

CLI::App& AddCommand(CLI::App& program, const char* name, const char* summary,
                     const std::string& help) {
  CLI::App& command = *program.add_subcommand(name, summary);
  command.group("Commands");
  command.footer(help);
  return command;
}

void AddFile(CLI::App& command, std::string& file) {
  command.add_option("FILE", file, kFileHelp)->required();
}

void AddChangedFile(CLI::App& command, ChangedFile& file) {
  AddFile(command, file.path);
  AddForce(command, file.despite_errors);
}

void AddForce(CLI::App& command, bool& despite_errors) {
  command.add_flag("--force", despite_errors,
                   "Change a file with errors too; what does not load is lost");
}

void AddJson(CLI::App& command, bool& json) {
  command.add_flag("--json", json, "Print JSON, for programs");
}

std::vector<CLI::Option*> AddFileKinds(CLI::App& command, projectdb::Table<FileKind> kinds,
                                       const FileKind*& kind, const std::string& help) {
  std::vector<CLI::Option*> options;
  for (const FileKind& each : kinds) {
    options.push_back(command.add_flag_callback(
        each.option, [&kind, &each] { kind = &each; }, help + TitleInSentence(TermOf(each))));
  }
  ExcludeEachOther(options);
  return options;
}

CLI::Validator OneOf(const std::vector<std::string>& texts) {
  return CLI::IsMember(texts).description("");
}

void ExcludeEachOther(const std::vector<CLI::Option*>& options) {
  for (CLI::Option* option : options) {
    for (CLI::Option* other : options) {
      if (option != other) option->excludes(other);
    }
  }
}

}  // namespace kelproj
