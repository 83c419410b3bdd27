#include "fuzz/FilersHarness.h"

#include "filers/MInFilerTaggedXml.h"

#include <gtest/gtest.h>

#include <string>

TEST(HostileText, NoInputBreaksARuleOfReading)
{
    for (unsigned number = 0; number < 3000; ++number) {
        std::wstring document;
        std::string operations;
        MakeFilerInput(number, document, operations);
        ASSERT_EQ("", PlayFilerInput(document, operations)) << document << "\n" << operations;
    }
}

TEST(HostileText, EveryPrefixOfADocumentIsRefused)
{
    const std::wstring document = L"<r><g><v type='int'>1</v></g><w type='string'>&amp;</w></r>";
    for (std::size_t length = 0; length < document.size(); ++length) {
        MInFilerTaggedXml filer(document.substr(0, length).c_str(), nullptr, nullptr);
        EXPECT_FALSE(filer.EndGroup()) << length;
    }
}
