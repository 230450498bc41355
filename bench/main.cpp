#include <exception>
#include <iostream>

#include <malloc.h>

#include <kel/diag.h>

#include "benchmarks.h"
#include "table_reporter.h"

namespace {

// The thresholds of the memory allocator are those that they come to by themselves once a program
// has given back much; by then they would depend on what was measured before.
void FixMemoryThresholds() {
  constexpr int kMapThreshold = 32 << 20;
  mallopt(M_MMAP_THRESHOLD, kMapThreshold);
  mallopt(M_TRIM_THRESHOLD, 2 * kMapThreshold);
}

int Run(int argument_count, char** arguments) {
  benchmark::Initialize(&argument_count, arguments);
  if (benchmark::ReportUnrecognizedArguments(argument_count, arguments)) return 2;
  FixMemoryThresholds();
  Diag::GlobalInst().SetHandler([](const Diag::DiagStorage&) {});
  bench::RegisterXmlBenchmarks();
  bench::RegisterMemoryBenchmarks();
  bench::RegisterGetterBenchmarks();
  bench::RegisterAdderBenchmarks();
  bench::RegisterParameterBenchmarks();
  bench::RegisterMergeBenchmarks();
  bench::RegisterProjectFileBenchmarks();
  bench::TableReporter reporter;
  return benchmark::RunSpecifiedBenchmarks(&reporter) > 0 ? 0 : 1;
}

}  // namespace

int main(int argument_count, char** arguments) {
  try {
    return Run(argument_count, arguments);
  } catch (const std::exception& exception) {
    std::cerr << exception.what() << '\n';
    return 1;
  }
}
