// A fuzz target: what is done with one input. The same is run by the fuzzer, which makes inputs, and by the replay,
// which reads those that are kept.
#pragma once

#include <cstddef>
#include <cstdint>

// The fuzzer's name for it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
