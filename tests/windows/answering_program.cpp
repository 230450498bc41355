// Stands for another program: whatever it is asked, it prints what the environment has as answer.

#include <cstdio>
#include <cstdlib>

int main() {
  const char* const answer = std::getenv("ANSWER");
  if (!answer) return EXIT_FAILURE;
  return std::fputs(answer, stdout) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}
