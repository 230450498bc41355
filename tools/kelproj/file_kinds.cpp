#include "file_kinds.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <stdexcept>

#include "console.h"

namespace kelproj {
namespace {

using projectdb::ProjectTerm;
using projectdb::Table;

// Behind those with flat lists stand the IP instances, and last the one that is no list.
constexpr std::array<FileKind, 7> kFileKinds = {{
    {"--rtl", projectdb::kDesignFilesKey, true},
    {"--sim", projectdb::kSimulationFilesKey, true},
    {"--misc", projectdb::kMiscellaneousFilesKey, false},
    {"--sdc", projectdb::kTimingConstraintFilesKey, false},
    {"--isf", projectdb::kIsfFilesKey, false},
    {"--ip", projectdb::kIPInstancesKey, false},
    {"--interface", projectdb::kInterfaceConstraintFileKey, false},
}};

// The options of the kinds for a sentence, such as "--rtl, --sim and --misc".
std::string OptionsInSentence(Table<FileKind> kinds) {
  std::string options;
  for (const FileKind& kind : kinds) {
    if (!options.empty()) options += &kind + 1 == kinds.end() ? " and " : ", ";
    options += kind.option;
  }
  return options;
}

}  // namespace

Table<FileKind> FileKinds() { return {kFileKinds.data(), kFileKinds.size()}; }

Table<FileKind> ListedFileKinds() { return {kFileKinds.data(), kFileKinds.size() - 1}; }

Table<FileKind> FlatFileKinds() { return {kFileKinds.data(), kFileKinds.size() - 2}; }

const FileKind& InstanceKind() { return *(ListedFileKinds().end() - 1); }

const ProjectTerm& TermOf(const FileKind& kind) {
  const Table<ProjectTerm> terms = projectdb::ProjectTerms();
  const auto* const term =
      std::find_if(terms.begin(), terms.end(),
                   [&kind](const ProjectTerm& each) { return each.key == kind.key; });
  if (term == terms.end()) throw std::logic_error(std::string("there is no term ") + kind.key);
  return *term;
}

std::string TitleInSentence(const ProjectTerm& term) {
  std::string title(term.title);
  const auto is_upper = [&title](std::size_t at) {
    return at < title.size() && std::isupper(static_cast<unsigned char>(title[at])) != 0;
  };
  // An abbreviation stays as it is.
  if (is_upper(0) && !is_upper(1)) {
    title[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(title[0])));
  }
  return title;
}

void RequireKind(const FileKind* kind) {
  if (!kind) throw Trouble("one of " + OptionsInSentence(ListedFileKinds()) + " is needed");
}

}  // namespace kelproj
