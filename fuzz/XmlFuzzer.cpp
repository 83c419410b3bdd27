#include "fuzz/XmlHarness.h"

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string broken = PlayXmlInput(data, size);
    if (!broken.empty()) {
        std::fprintf(stderr, "broken rule: %s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
