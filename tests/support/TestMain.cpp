#include "diagnostics/MFlowLogger.h"
#include "tests/support/Allocations.h"

namespace
{

class BlockCounter : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo&) override { before = CountBlocks(); }

    // The report of a failure takes memory of its own, and so does the mark of `LeakCheck::Skip`.
    void OnTestEnd(const testing::TestInfo& test) override
    {
        if (test.result()->Passed() && test.result()->test_property_count() == 0) {
            EXPECT_EQ(before, CountBlocks()) << "heap blocks are out after the test";
        }
    }

    std::int64_t before = 0;
};

// What the first event, the first number and the first trace make is kept for good; no test is to
// answer for it.
void MakeWhatStays()
{
    SCOPED_TRACE("");
    MFlowLogger::GetInstance();
    MError().AddParameter(L"number", 1);
}

} // namespace

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    MakeWhatStays();
    testing::UnitTest::GetInstance()->listeners().Append(new BlockCounter);
    return RUN_ALL_TESTS();
}
