#pragma once
// Under libFuzzer, writes the target's seeds into the first corpus folder on
// the command line before the fuzzer reads it.

#include <string>

#include "platform/Files.h"
#include "tests/fuzz/FuzzTarget.h"

inline void WriteSeedsToCorpus(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    const std::string folder = qds::CreateDirectories(argv[i]);
    int n = 0;
    for (const auto& seed : FuzzSeeds()) qds::WriteAllBytes(folder + "seed" + std::to_string(n++), seed);
    return;
  }
}

#define QDS_FUZZ_INITIALIZE                                      \
  extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) { \
    WriteSeedsToCorpus(*argc, *argv);                            \
    return 0;                                                    \
  }
