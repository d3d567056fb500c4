#include "fuzz_codec.h"

const char* const kFuzzedCodec = "FlashPix";

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return quillane::fuzz::RunCodec(kFuzzedCodec, data, size);
}
