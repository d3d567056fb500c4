#pragma once
#include <cstddef>
#include <cstdint>

/// Name of the codec that this program feeds, as in the table of codecs.
extern const char* const kFuzzedCodec;

/// The entry that the fuzzer and the replay call; always 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace quillane::fuzz {

/// Probes and decodes the bytes with one codec, whatever they begin with, and shows the picture.
/// A Failure is an answer; anything else that goes wrong ends the program. Always 0.
int RunCodec(const char* name, const std::uint8_t* data, std::size_t size);

} // namespace quillane::fuzz
