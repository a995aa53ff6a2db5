// Any bytes as an Exif stream.

#include "support/gwFuzzBodies.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    gwFuzzExifStream(QByteArray(reinterpret_cast<const char*>(data), int(size)));
    return 0;
}
