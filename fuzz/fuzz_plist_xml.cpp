// Reads arbitrary bytes as an XML property list and checks the round trip through both forms.

#include "PlistRoundTrip.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // Binary documents are the other target's.
    if (size >= 6 && std::memcmp(data, "bplist", 6) == 0)
        return 0;
    checkRoundTrip(data, size);
    return 0;
}
