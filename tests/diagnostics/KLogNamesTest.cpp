#include "diagnostics/KLogNames.h"

#include "tests/support/Allocations.h"

#include <map>
#include <random>
#include <string>

TEST(KLogNames, AnswersWhatAMapOfTheFirstNamesDoesAndStaysAsItWasWhereMemoryIsShort)
{
    KLogNames names;
    std::map<std::uint64_t, std::string> model;
    std::mt19937_64 random;
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t key = random() << random() % 64 >> random() % 64;
        const std::size_t length = i % 1000 == 0 ? 2 * KLogNames::blockSize : random() % 40;
        const std::string text(length, static_cast<char>(random()));
        const ShortageOutcome outcome =
            RunShortOfMemory(AllocationFailure(random() % 3), random() % 2 ? 1 : 1000,
                             [&] { names.Insert(key, text.data(), text.size()); });
        if (outcome == ShortageOutcome::NotMet)
            model.emplace(key, text);
        else
            ASSERT_EQ(ShortageOutcome::RaisedBadAlloc, outcome);
        ASSERT_EQ(model.count(key) != 0, names.Find(key) != nullptr);
    }
    std::size_t count = 0;
    for (const KLogNames::Name* name = names.GetNewest(); name; name = name->older, ++count) {
        EXPECT_EQ(name, names.Find(name->key));
        EXPECT_EQ(model.at(name->key), std::string(name->GetText(), name->length));
        EXPECT_EQ('\0', name->GetText()[name->length]);
    }
    EXPECT_EQ(model.size(), count);
}
