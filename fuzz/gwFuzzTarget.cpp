// One libFuzzer target: GW_FUZZ_BODY names the body of tests/support that
// takes each input.

#include "support/gwFuzzBodies.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    GW_FUZZ_BODY(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
