// Reads arbitrary bytes as a binary property list and checks the round trip through both forms.

#include "PlistRoundTrip.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Text documents are the other target's.
    if (size < 8 || std::memcmp(data, "bplist00", 8) != 0)
        return 0;
    checkRoundTrip(data, size);
    return 0;
}
