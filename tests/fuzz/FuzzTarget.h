#pragma once
// What every fuzz target provides besides LLVMFuzzerTestOneInput: valid
// inputs to start mutating from, made with the program's own writers so they
// always match the current byte layouts.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/Bytes.h"

std::vector<qds::Bytes> FuzzSeeds();

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
