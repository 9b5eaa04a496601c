#pragma once
// Keeps each benchmark's real time per iteration, in milliseconds whatever
// unit it was shown in, so that a program can print its figures against
// their goals once every benchmark has run.

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) millis_[r.benchmark_name()] = r.GetAdjustedRealTime() * ToMillis(r.time_unit);
    ConsoleReporter::ReportRuns(runs);
  }
  // 0 for a benchmark that did not run (filtered out).
  double Ms(const std::string& name) const {
    const auto it = millis_.find(name);
    return it == millis_.end() ? 0.0 : it->second;
  }

 private:
  static double ToMillis(benchmark::TimeUnit unit) {
    switch (unit) {
      case benchmark::kNanosecond:
        return 1e-6;
      case benchmark::kMicrosecond:
        return 1e-3;
      case benchmark::kSecond:
        return 1e3;
      default:
        return 1;
    }
  }
  std::map<std::string, double> millis_;
};
