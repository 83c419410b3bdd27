// Any bytes as a dump: the viewer reads them or says that they are none, and what it makes of them
// keeps the rules of its forms.

#include "fuzz/LogRules.h"
#include "viewer/reading/text/TextDumps.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (Dump& dump : TextDumps::Read(std::string(data, data + size)))
        CheckRules(std::move(dump));
    return 0;
}
