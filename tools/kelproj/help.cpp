#include "help.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include <kel/version.h>
#include <CLI/CLI.hpp>

#include "arguments/definition_parts.h"

namespace kelproj {
namespace {

// A text of its own says what may be left out.
std::string PositionalSynopsis(const CLI::Option& option) {
  const std::string name = PositionalName(option);
  const bool is_needed = option.get_required() || !option.get_option_text().empty();
  return is_needed ? name : "[" + name + "]";
}

std::string ShortestName(const CLI::Option& option) {
  return option.get_snames().empty() ? "--" + option.get_lnames().front()
                                     : "-" + option.get_snames().front();
}

std::string ValueOf(const CLI::Option& option) {
  return IsFlag(option) ? "" : " " + option.get_type_name();
}

// Of options that exclude each other, the first stands for all.
std::string Alternatives(const CLI::App& app, const CLI::Option& first) {
  std::string names;
  for (const CLI::Option* option : OptionsOf(app, false)) {
    const std::string text = ShortestName(*option) + ValueOf(*option);
    if (option == &first) {
      names = text;
    } else if (option->get_excludes().count(const_cast<CLI::Option*>(&first)) > 0) {
      if (names.empty()) return "";
      names += "|" + text;
    }
  }
  return "[" + names + "]";
}

std::string OptionSynopsis(const CLI::App& app, const CLI::Option& option) {
  if (&option == app.get_help_ptr() || &option == app.get_version_ptr()) return "";
  if (!option.get_excludes().empty()) return Alternatives(app, option);
  const std::string text = ShortestName(option) + ValueOf(option);
  return option.get_required() ? text : "[" + text + "]";
}

std::string NameOf(const CLI::App& app) {
  return app.get_parent() ? app.get_parent()->get_name() + " " + app.get_name() : app.get_name();
}

/// How a command, or the program, is called: lines that are indented like the first argument where
/// they go on.
/// @param indentation of the whole, which counts for the width too
std::string Synopsis(const CLI::App& app, std::size_t indentation) {
  constexpr std::size_t kWidth = 79;
  std::vector<std::string> parts;
  for (const CLI::Option* option : OptionsOf(app, true)) {
    parts.push_back(PositionalSynopsis(*option));
  }
  for (const CLI::Option* option : OptionsOf(app, false)) {
    parts.push_back(OptionSynopsis(app, *option));
  }
  if (!CommandsOf(app).empty()) parts.emplace_back("COMMAND ...");
  std::string synopsis = NameOf(app);
  const std::string line_break = "\n" + std::string(indentation + synopsis.size(), ' ');
  std::size_t width = indentation + synopsis.size();
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    if (width + 1 + part.size() > kWidth) {
      synopsis += line_break;
      width = line_break.size() - 1;
    }
    synopsis += " " + part;
    width += 1 + part.size();
  }
  return synopsis;
}

/// The names of an option, or of a positional, and of its value.
std::string Term(const CLI::Option& option) {
  if (option.get_positional()) return PositionalName(option);
  std::string names;
  for (const std::string& name : option.get_snames()) names += "-" + name + ", ";
  for (const std::string& name : option.get_lnames()) names += "--" + name + ", ";
  return names.substr(0, names.size() - 2) + ValueOf(option);
}

class Formatter : public CLI::Formatter {
 public:
  Formatter() {
    label("Positionals", "Arguments");
    column_width(24);
  }

  std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
    constexpr std::string_view kTitle = "Usage: ";
    return "\n" + std::string(kTitle) + Synopsis(*app, kTitle.size()) + "\n";
  }
  std::string make_option_name(const CLI::Option* option, bool /*positional*/) const override {
    return Term(*option);
  }
  std::string make_option_opts(const CLI::Option* /*option*/) const override { return ""; }
};

/// Writes a manual page.
class Manual {
 public:
  explicit Manual(const CLI::App& program) {
    out_ << ".TH KELPROJ 1 \"\" \"" << program.get_name() << " " << KEL_VERSION_NO << "\"\n";
  }

  void Section(std::string_view title) { out_ << ".SH " << Escaped(title) << "\n"; }
  void Subsection(std::string_view title) { out_ << ".SS " << Escaped(title) << "\n"; }
  void Line(std::string_view text) { out_ << Escaped(text) << "\n"; }

  void Synopsis(const CLI::App& command) {
    Verbatim(true);
    std::istringstream lines(kelproj::Synopsis(command, 0));
    for (std::string line; std::getline(lines, line);) Line(line);
    Verbatim(false);
  }

  // Indented lines stand for themselves, an empty line parts paragraphs.
  void Text(const std::string& text) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      Verbatim(line.rfind("  ", 0) == 0);
      if (line.empty()) {
        out_ << ".PP\n";
      } else {
        Line(line);
      }
    }
    Verbatim(false);
  }

  void Options(const std::vector<const CLI::Option*>& options) {
    for (const CLI::Option* option : options) {
      out_ << ".TP\n\\fB" << Escaped(Term(*option)) << "\\fR\n";
      Line(option->get_description());
    }
  }

  std::string str() const { return out_.str(); }

 private:
  // Hyphens that can be copied, and no line that the formatter takes for a request.
  static std::string Escaped(std::string_view text) {
    std::string escaped;
    if (!text.empty() && (text.front() == '.' || text.front() == '\'')) escaped = "\\&";
    for (const char c : text) {
      if (c == '\\') {
        escaped += "\\e";
      } else if (c == '-') {
        escaped += "\\-";
      } else {
        escaped += c;
      }
    }
    return escaped;
  }

  void Verbatim(bool verbatim) {
    if (verbatim != verbatim_) out_ << (verbatim ? ".nf\n" : ".fi\n");
    verbatim_ = verbatim;
  }

  std::ostringstream out_;
  bool verbatim_ = false;
};

}  // namespace

std::shared_ptr<CLI::FormatterBase> HelpFormatter() { return std::make_shared<Formatter>(); }

std::string ManualPage(const CLI::App& program) {
  Manual manual(program);
  manual.Section("NAME");
  manual.Line(program.get_name() + " - " + program.get_description());
  manual.Section("SYNOPSIS");
  for (const CLI::App* command : CommandsOf(program)) manual.Synopsis(*command);
  manual.Section("DESCRIPTION");
  manual.Text(program.get_footer());
  manual.Section("OPTIONS");
  manual.Options(OptionsOf(program, false));
  manual.Section("COMMANDS");
  for (const CLI::App* command : CommandsOf(program)) {
    manual.Subsection(command->get_name());
    manual.Synopsis(*command);
    manual.Text("\n" + command->get_description() + ".");
    manual.Options(OptionsOf(*command, true));
    manual.Options(OptionsOf(*command, false));
    manual.Text("\n" + command->get_footer());
  }
  return manual.str();
}

}  // namespace kelproj
