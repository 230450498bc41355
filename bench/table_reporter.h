#pragma once

#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

/// Collects what all benchmarks measure and prints, at their end, what the medians come to: the
/// library against its limit, with the targets, and the time of each operation.
class TableReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  /// Of each repetition: nanoseconds for each element, or bytes.
  using Values = std::vector<double>;

  struct Comparison {
    Values library;
    Values bare;
    Values ratio;
  };

  void PrintRatios(std::ostream& out) const;
  void PrintGrowth(std::ostream& out) const;
  void PrintLargestMemory(std::ostream& out) const;
  void PrintThreads(std::ostream& out) const;

  /// By the name of the operation and the number of design files or elements.
  std::map<std::pair<std::string, long>, Comparison> comparisons_;

  /// By the name, the number and the threads.
  std::map<std::tuple<std::string, long, long>, Values> times_;
};

}  // namespace bench
