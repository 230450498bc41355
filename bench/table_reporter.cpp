#include "table_reporter.h"

#include <algorithm>
#include <optional>
#include <ostream>
#include <sstream>

#include "benchmarks.h"
#include "text_table.h"

namespace bench {
namespace {

/// How many times its limit an operation of the library may take.
struct Target {
  const char* operation;
  double ratio;
  long smallest_size;  // Below it there is no target.
};

constexpr Target kTargets[] = {{"load", 0.45, 10'000},
                               {"load_without_text", 0.50, 10'000},
                               {"load_with_schema", 0.55, 10'000},
                               {"load_with_schema_without_text", 0.55, 10'000},
                               {"start_and_load", 0.95, 100},
                               {"start_and_load_with_schema", 1.05, 100},
                               {"export", 0.25, 10'000},
                               {"export_of_utf8", 0.25, 10'000},
                               {"peak_memory_load", 0.50, 100'000},
                               {"peak_memory_load_with_schema", 0.55, 100'000},
                               {"peak_memory_export", 0.60, 100'000},
                               {"GetDesignFileList", 1.2, 100'000},
                               {"AddDesignRTLFile", 1.1, 100'000},
                               {"GetFlowProcessParameterValue", 1.3, 100},
                               {"merge", 3.0, 100'000},
                               {"merge_shuffled", 3.0, 100'000},
                               {"merge_repetitive", 3.0, 100'000},
                               {"read_project_file", 1.10, 100},
                               {"write_project_file", 1.15, 10'000},
                               {"write_unchanged", 1.10, 100}};

/// What an element may take in a large project against a small one.
struct Growth {
  long small_size;
  long large_size;
  double target;
};

constexpr Growth kGrowths[] = {{1'000, 100'000, 1.25}, {10'000, 1'000'000, 1.5}};

/// The bytes that an operation on the largest project may take.
constexpr long kLargestSize = 1'000'000;
constexpr double kMostMemory = 1.2e9;

/// How many times as fast two threads shall be as one that have nothing to do with each other.
constexpr double kSpeedOfTwoThreads = 1.8;

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

std::string Fixed(double value, int decimals) {
  std::ostringstream text;
  text.setf(std::ios::fixed);
  text.precision(decimals);
  text << value;
  return text.str();
}

std::string Time(double nanoseconds) {
  return Fixed(nanoseconds, nanoseconds < 100 ? 1 : 0) + " ns";
}

bool IsMemory(const std::string& operation) { return operation.rfind(kPeakMemory, 0) == 0; }

std::string Quantity(const std::string& operation, double value) {
  return IsMemory(operation) ? Fixed(value / 1e6, 1) + " MB" : Time(value);
}

std::string Answer(bool is_met) { return is_met ? "yes" : "NO"; }

// The last cells of a row.
std::vector<std::string> RatioCells(double ratio, std::optional<double> target) {
  if (!target) return {Fixed(ratio, 2), "", ""};
  return {Fixed(ratio, 2), "<= " + Fixed(*target, 2), Answer(ratio <= *target)};
}

std::optional<double> TargetOf(const std::string& operation, long size) {
  for (const Target& target : kTargets) {
    if (operation == target.operation && size >= target.smallest_size) return target.ratio;
  }
  return std::nullopt;
}

void AddRow(TextTable& table, std::vector<std::string> cells,
            const std::vector<std::string>& last_cells) {
  cells.insert(cells.end(), last_cells.begin(), last_cells.end());
  table.Row(std::move(cells));
}

void AddGrowthRow(TextTable& table, const std::string& title, double small, double large,
                  std::optional<double> target) {
  AddRow(table, {title, Time(small), Time(large)}, RatioCells(large / small, target));
}

}  // namespace

bool TableReporter::ReportContext(const Context& context) {
  GetOutputStream() << "Medians on " << context.cpu_info.num_cpus
                    << " cores; times are those of one design file or element.\n\n";
  return true;
}

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    const std::string& name = run.run_name.function_name;
    const long size = std::stol(run.run_name.args);
    const auto library = run.counters.find(kLibrary);
    if (library == run.counters.end()) {
      times_[{name, size, run.threads}].push_back(1e9 / run.counters.at("items_per_second"));
    } else {
      const double bare = run.counters.at(kBare);
      Comparison& comparison = comparisons_[{name, size}];
      comparison.library.push_back(library->second);
      comparison.bare.push_back(bare);
      comparison.ratio.push_back(library->second / bare);
    }
  }
}

void TableReporter::Finalize() {
  PrintRatios(GetOutputStream());
  PrintGrowth(GetOutputStream());
  PrintLargestMemory(GetOutputStream());
  PrintThreads(GetOutputStream());
}

// In processor time.
void TableReporter::PrintRatios(std::ostream& out) const {
  TextTable table({"operation", "size", "library", "bare", "ratio", "target", "met"});
  for (const auto& [key, comparison] : comparisons_) {
    const auto& [operation, size] = key;
    AddRow(table,
           {operation, std::to_string(size), Quantity(operation, Median(comparison.library)),
            Quantity(operation, Median(comparison.bare))},
           RatioCells(Median(comparison.ratio), TargetOf(operation, size)));
  }
  table.Print(out);
}

void TableReporter::PrintGrowth(std::ostream& out) const {
  for (const auto& [small_size, large_size, target] : kGrowths) {
    TextTable table({"growth", std::to_string(small_size), std::to_string(large_size), "ratio",
                     "target", "met"});
    for (const auto& [key, small] : comparisons_) {
      const auto large = comparisons_.find({key.first, large_size});
      if (key.second != small_size || large == comparisons_.end() || IsMemory(key.first)) continue;
      AddGrowthRow(table, key.first, Median(small.library), Median(large->second.library), target);
      AddGrowthRow(table, key.first + ", bare", Median(small.bare), Median(large->second.bare),
                   std::nullopt);
    }
    for (const auto& [key, small] : times_) {
      const auto& [operation, size, threads] = key;
      const auto large = times_.find({operation, large_size, threads});
      const bool is_compared = comparisons_.count({operation, size}) > 0;
      if (is_compared || size != small_size || threads != 1 || large == times_.end()) continue;
      AddGrowthRow(table, operation, Median(small), Median(large->second), target);
    }
    table.Print(out);
  }
}

void TableReporter::PrintLargestMemory(std::ostream& out) const {
  TextTable table({"operation", "size", "library", "target", "met"});
  for (const auto& [key, comparison] : comparisons_) {
    const auto& [operation, size] = key;
    if (!IsMemory(operation) || size != kLargestSize) continue;
    const double memory = Median(comparison.library);
    table.Row({operation, std::to_string(size), Quantity(operation, memory),
               "<= " + Quantity(operation, kMostMemory), Answer(memory <= kMostMemory)});
  }
  table.Print(out);
}

// In wall time, of what the threads do together.
void TableReporter::PrintThreads(std::ostream& out) const {
  TextTable table(
      {"operation", "size", "1 thread", "2 threads", "4 threads", "speed of 2", "target", "met"});
  for (const auto& [key, one] : times_) {
    const auto& [operation, size, threads] = key;
    if (threads != 1) continue;
    const Values& two = times_.at({operation, size, 2});
    const double speed = Median(one) / Median(two);
    const bool has_target = operation == kApart;
    table.Row({operation, std::to_string(size), Time(Median(one)), Time(Median(two)),
               Time(Median(times_.at({operation, size, 4}))), Fixed(speed, 2),
               has_target ? ">= " + Fixed(kSpeedOfTwoThreads, 2) : "",
               has_target ? Answer(speed >= kSpeedOfTwoThreads) : ""});
  }
  table.Print(out);
}

}  // namespace bench
