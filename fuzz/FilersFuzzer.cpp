// filers-fuzz SECONDS [FIRST]: plays inputs one after the other, from the number FIRST on. It says
// which one breaks a rule; the last one begun is the one that crashes or hangs.

#include "fuzz/FilersHarness.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv)
{
    const std::chrono::seconds most(argc > 1 ? std::atoi(argv[1]) : 60);
    unsigned number = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 0;
    const auto begin = std::chrono::steady_clock::now();
    for (; std::chrono::steady_clock::now() - begin < most; ++number) {
        if (number % 1000 == 0) {
            std::printf("from %u\n", number);
            std::fflush(stdout);
        }
        std::wstring document;
        std::string operations;
        MakeFilerInput(number, document, operations);
        const std::string broken = PlayFilerInput(document, operations);
        if (broken.empty())
            continue;
        std::printf("input %u breaks a rule: %s\n%ls\n%s\n", number, broken.c_str(),
                    document.c_str(), operations.c_str());
        return 1;
    }
    std::printf("%u inputs\n", number);
    return 0;
}
