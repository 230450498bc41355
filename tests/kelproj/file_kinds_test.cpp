#include "file_kinds.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace {

std::vector<std::string> KeysOfFiles() {
  std::vector<std::string> keys;
  for (const projectdb::ProjectTerm& term : projectdb::ProjectTerms()) {
    if (term.file_ending) keys.emplace_back(term.key);
  }
  return keys;
}

TEST(FileKinds, AreThoseOfWhichTheVocabularyNamesFiles) {
  std::vector<std::string> keys;
  for (const kelproj::FileKind& kind : kelproj::FileKinds()) keys.emplace_back(kind.key);
  EXPECT_THAT(keys, testing::UnorderedElementsAreArray(KeysOfFiles()));
}

}  // namespace
