#include "diagnostics/KLogger.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(KLogger, EmptyRingDumpsItsHeaderOnly)
{
    KLogger core;
    std::ostringstream dump;
    core.WriteDump(dump);
    const std::string text = dump.str();
    EXPECT_EQ(0u, text.find("%% Reference time: "));
    EXPECT_EQ(text.size() - 3, text.rfind("%%\n"));
    EXPECT_EQ(std::string::npos, text.find("\n% "));
}
