// Any bytes as a minidump: every length, offset and address in it is hostile.

#include "fuzz/LogRules.h"
#include "viewer/reading/minidump/MinidumpDumps.h"

#include <memory>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // A block of just this size, so that one byte too far is seen.
    const std::unique_ptr<char[]> bytes(new char[size]);
    std::copy(data, data + size, bytes.get());
    try {
        for (Dump& dump : MinidumpDumps::Read(std::string_view(bytes.get(), size)))
            CheckRules(std::move(dump));
    } catch (const NoRecorder&) {
    }
    return 0;
}
