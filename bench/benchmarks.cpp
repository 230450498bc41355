#include "benchmarks.h"

#include <ctime>

namespace bench {

double Stopwatch::Now() {
  std::timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
}

benchmark::internal::Benchmark* Register(const std::string& name,
                                         const std::vector<std::int64_t>& sizes, const Run& run) {
  return benchmark::RegisterBenchmark(name.c_str(), run)->ArgsProduct({sizes});
}

benchmark::internal::Benchmark* RegisterForThreads(const std::string& name,
                                                   const std::vector<std::int64_t>& sizes,
                                                   const Run& run) {
  return Register(name, sizes, run)->ThreadRange(1, 4)->UseRealTime();
}

}  // namespace bench
