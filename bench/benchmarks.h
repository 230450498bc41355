#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace bench {

// The argument of every benchmark is the number of design files or of elements.

/// Loading and exporting against the XML library alone.
void RegisterXmlBenchmarks();

/// The peak memory of a process that loads or exports against the XML library alone.
void RegisterMemoryBenchmarks();

/// Getters of lists, one against a loop over the same records.
void RegisterGetterBenchmarks();

/// Adders, some against the same containers under the same lock.
void RegisterAdderBenchmarks();

/// Single values, one against the same map under the same lock.
void RegisterParameterBenchmarks();

/// A merge against one comparison of two of its projects.
void RegisterMergeBenchmarks();

/// Reading, writing and not writing whole files against the class's operations and against reading.
void RegisterProjectFileBenchmarks();

/// What a comparison gives of its two sides: nanoseconds for each element, or bytes.
inline constexpr char kLibrary[] = "library";
inline constexpr char kBare[] = "bare";

/// How the names of comparisons begin that give bytes.
inline constexpr char kPeakMemory[] = "peak_memory";

/// How the names of comparisons end whose bare parse leaves out the text between the tags, as the
/// library does. Without a schema the other builds a node of each blank.
inline constexpr char kWithoutText[] = "_without_text";

/// The name of what threads do that have nothing to do with each other.
inline constexpr char kApart[] = "LoadProjectData, a file for each thread";

/// Sizes of lists; the growth is measured from the second to the last.
inline const std::vector<std::int64_t> kListSizes = {100, 1'000, 100'000};

inline std::size_t SizeOf(const benchmark::State& state) {
  return static_cast<std::size_t>(state.range(0));
}

/// The object of one size that all benchmarks share, made by Object(size) at the first call.
template <typename Object>
Object& Cached(std::size_t size) {
  static std::mutex mutex;
  static std::map<std::size_t, Object> objects;
  const std::lock_guard<std::mutex> lock(mutex);
  return objects.try_emplace(size, size).first->second;
}

/// Adds up processor time of its thread.
class Stopwatch {
 public:
  void Start() { start_ = Now(); }
  void Stop() { total_ += Now() - start_; }
  double nanoseconds() const { return total_; }

 private:
  static double Now();

  double start_ = 0;
  double total_ = 0;
};

/// Runs both sides in turns, each with the stopwatch that it starts and stops around its work on so
/// many elements. On a busy machine two measurements are comparable only if they are neighbours.
template <typename Library, typename Bare>
void Compare(benchmark::State& state, std::size_t elements, Library library, Bare bare) {
  Stopwatch of_library;
  Stopwatch of_bare;
  for (auto _ : state) {
    library(of_library);
    bare(of_bare);
    bare(of_bare);
    library(of_library);
  }
  const double count =
      2.0 * static_cast<double>(state.iterations()) * static_cast<double>(elements);
  state.counters[kLibrary] = of_library.nanoseconds() / count;
  state.counters[kBare] = of_bare.nanoseconds() / count;
}

/// Says how many elements each iteration took.
inline void CountElements(benchmark::State& state, std::size_t elements) {
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(elements));
}

using Run = std::function<void(benchmark::State&)>;

/// Registers a benchmark for all sizes.
benchmark::internal::Benchmark* Register(const std::string& name,
                                         const std::vector<std::int64_t>& sizes, const Run& run);

/// Registers one that 1, 2 and 4 threads run at once.
benchmark::internal::Benchmark* RegisterForThreads(const std::string& name,
                                                   const std::vector<std::int64_t>& sizes,
                                                   const Run& run);

}  // namespace bench
