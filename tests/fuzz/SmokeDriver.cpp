// Runs a fuzz target without libFuzzer: every seed, then a fixed series of
// mutations of them (bit flips, cut-offs, inserted and overwritten bytes,
// spliced seeds). The series is the same on every run, so a failure repeats.

#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/fuzz/FuzzTarget.h"

int main(int argc, char** argv) {
  const long iterations = argc > 1 ? std::strtol(argv[1], nullptr, 10) : 10000;
  const std::vector<qds::Bytes> seeds = FuzzSeeds();
  for (const auto& s : seeds) LLVMFuzzerTestOneInput(s.data(), s.size());
  std::mt19937 rng(12345);
  const auto pick = [&](std::size_t n) {
    return n == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
  };
  for (long i = 0; i < iterations; ++i) {
    qds::Bytes b = seeds.empty() ? qds::Bytes() : seeds[pick(seeds.size())];
    const int edits = 1 + static_cast<int>(pick(4));
    for (int e = 0; e < edits; ++e) {
      switch (pick(6)) {
        case 0:  // flip a bit
          if (!b.empty()) b[pick(b.size())] ^= static_cast<std::uint8_t>(1u << pick(8));
          break;
        case 1:  // cut off the end
          b.resize(pick(b.size() + 1));
          break;
        case 2:  // insert a byte
          b.insert(b.begin() + static_cast<long>(pick(b.size() + 1)), static_cast<std::uint8_t>(pick(256)));
          break;
        case 3:  // overwrite with an extreme value, which finds length checks
          if (!b.empty()) b[pick(b.size())] = pick(2) ? 0xFF : 0x00;
          break;
        case 4:  // splice in part of another seed
          if (!seeds.empty()) {
            const auto& o = seeds[pick(seeds.size())];
            const std::size_t from = pick(o.size() + 1);
            b.insert(b.begin() + static_cast<long>(pick(b.size() + 1)), o.begin() + static_cast<long>(from),
                     o.end());
          }
          break;
        default:  // drop a byte
          if (!b.empty()) b.erase(b.begin() + static_cast<long>(pick(b.size())));
          break;
      }
    }
    LLVMFuzzerTestOneInput(b.data(), b.size());
  }
  std::printf("%ld mutated inputs and %zu seeds ran without a fault\n", iterations, seeds.size());
  return 0;
}
