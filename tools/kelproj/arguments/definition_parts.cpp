#include "arguments/definition_parts.h"

namespace kelproj {

std::vector<const CLI::Option*> OptionsOf(const CLI::App& app, bool positional) {
  return app.get_options([positional](const CLI::Option* option) {
    return !option->get_group().empty() && option->get_positional() == positional;
  });
}

std::vector<const CLI::App*> CommandsOf(const CLI::App& program) {
  return program.get_subcommands([](const CLI::App* command) {
    return !command->get_name().empty() && !command->get_group().empty();
  });
}

std::vector<std::string> OptionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : OptionsOf(app, false)) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<std::string> CommandNames(const CLI::App& program) {
  std::vector<std::string> names;
  for (const CLI::App* command : CommandsOf(program)) names.push_back(command->get_name());
  return names;
}

bool IsFlag(const CLI::Option& option) { return option.get_items_expected_max() == 0; }

bool IsList(const CLI::Option& option) {
  return option.get_expected_max() >= CLI::detail::expected_max_vector_size;
}

std::string PositionalName(const CLI::Option& option) {
  const std::string& text = option.get_option_text();
  if (!text.empty()) return text;
  return option.get_name(true, false) + (IsList(option) ? "..." : "");
}

}  // namespace kelproj
