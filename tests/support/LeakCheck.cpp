#include "tests/support/LeakCheck.h"

#include "diagnostics/MFlowLogger.h"
#include "foundation/MError.h"
#include "tests/support/Allocations.h"

std::int64_t LeakCheck::expected = 0;
bool LeakCheck::skipped = false;

// What the first event, the first number and the first trace make is kept for good; no test is to
// answer for it.
LeakCheck::LeakCheck()
{
    SCOPED_TRACE("");
    MFlowLogger::GetInstance();
    MError().AddParameter(L"number", 1);
}

void LeakCheck::Skip()
{
    skipped = true;
}

void LeakCheck::OnTestStart(const testing::TestInfo&)
{
    expected = CountBlocks();
    skipped = false;
}

// The report of a failure takes memory of its own.
void LeakCheck::OnTestEnd(const testing::TestInfo& test)
{
    if (test.result()->Passed() && !skipped) {
        EXPECT_EQ(expected, CountBlocks()) << "heap blocks are out after the test";
    }
}
