// Types described once, through both back ends, across versions, and into files.

#include "varek/Filing.h"
#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "filers/MOutFilerTaggedXml.h"
#include "tests/support/FailingCalls.h"
#include "tests/support/Raised.h"
#include "tests/varek/LeavesNothing.h"
#include "varek/Errors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <fstream>
#include <functional>
#include <tuple>

#include <windows.h>

namespace
{

const wchar_t area[] = L"FaceFilingTest";
const std::wstring path = L"C:\\Temp\\face-filing-test.xml";

enum class Mode : unsigned char { Off, On = 250 };

struct Window {
    int left = 1;
    std::wstring title;
};

void Describe(varek::Filing& filing, Window& window)
{
    filing(L"Left", window.left, 40);
    filing(L"Title", window.title, L"none");
}

/// One of everything.
struct Everything {
    std::tuple<bool, char, signed char, unsigned char, wchar_t, short, unsigned short, int,
               unsigned, long, unsigned long, long long, unsigned long long, float, double, Mode,
               MString, std::wstring, Window, std::vector<int>, std::vector<bool>,
               std::vector<Window>, std::vector<std::vector<MString>>, std::unique_ptr<Window>,
               std::unique_ptr<int>, MError, MException>
        values;
    bool works = true; ///< whether filers take it, or have it
};

template <std::size_t... numbers>
void DescribeEach(varek::Filing& filing, Everything& all, std::index_sequence<numbers...>)
{
    const bool filed[] = {
        filing(varek::detail::ItemTag(numbers), std::get<numbers>(all.values))...};
    EXPECT_EQ(all.works ? 27 : 0, std::count(std::begin(filed), std::end(filed), true));
}

void Describe(varek::Filing& filing, Everything& all)
{
    EXPECT_EQ(all.works || !filing.IsReading() ? 3u : 0u, filing.Version(3));
    DescribeEach(filing, all, std::make_index_sequence<27>());
}

Everything Filled()
{
    MError error(L"Pump.Drain:RunsDry");
    error.AddParameter(L"level", 3);
    return {std::make_tuple(
        true, 'x', static_cast<signed char>(-100), static_cast<unsigned char>(200), L'\x20AC',
        static_cast<short>(-30000), static_cast<unsigned short>(60000), INT_MIN, UINT_MAX, -5L, 5UL,
        LLONG_MIN, ULLONG_MAX, 0.5f, -1.25e10, Mode::On, MString(L"<a & \x20AC>"),
        std::wstring(L" two\nlines "), Window{-7, L"main"}, std::vector<int>{1, -2, 3},
        std::vector<bool>{true, false, true}, std::vector<Window>{{1, L"a"}, {2, L""}},
        std::vector<std::vector<MString>>{{}, {L"deep"}},
        std::make_unique<Window>(Window{9, L"there"}), std::unique_ptr<int>(), error,
        MException(error))};
}

struct Settings {
    long long rate = 0;
    double zoom = 0;
    std::vector<int> sizes;
    Window window;
    unsigned version = 0;
};

void Describe(varek::Filing& filing, Settings& settings)
{
    settings.version = filing.Version(2);
    filing.Retired<int>(L"Colour");
    filing.Retired<Window>(L"Frame");
    filing(L"Zoom", settings.zoom, 1.5);
    filing(L"Rate", settings.rate, 50);
    filing(L"Sizes", settings.sizes, std::vector<int>{8, 9});
    filing(L"Window", settings.window);
}

std::string Missing(const varek::Reading& reading)
{
    std::string all = reading.wasThere ? "" : "nothing there: ";
    for (const MString& tag : reading.missing)
        all += varek::ToUtf8(tag) + " ";
    EXPECT_EQ(all.empty(), reading.IsComplete());
    return all;
}

std::string FileText()
{
    std::ifstream file("C:\\Temp\\face-filing-test.xml", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

const char createFile[] = "CreateFileW";
const char readFile[] = "ReadFile";
const char writeFile[] = "WriteFile";

} // namespace

extern "C" {
decltype(&CreateFileW) __imp_CreateFileW = CallOrFail<createFile, -1>;
decltype(&ReadFile) __imp_ReadFile = CallOrFail<readFile, FALSE>;
decltype(&WriteFile) __imp_WriteFile = CallOrFail<writeFile, FALSE>;
}

TEST(Filing, EveryTypeGoesThroughBothBackEnds)
{
    const Everything written = Filled();
    const MString text = varek::ToXml(written);
    Everything fromXml, fromRegistry;
    std::get<std::unique_ptr<int>>(fromXml.values).reset(new int);
    EXPECT_EQ("", Missing(varek::FromXml(text, fromXml)));
    EXPECT_TRUE(text == varek::ToXml(fromXml));
    varek::SaveRegistry(area, written);
    EXPECT_EQ("", Missing(varek::LoadRegistry(area, fromRegistry)));
    EXPECT_TRUE(text == varek::ToXml(fromRegistry));
}

TEST(Filing, WhatIsMissingIsDefaultAndTold)
{
    const struct {
        const wchar_t* text;
        const char* missing;
        int rate;
    } documents[] = {
        {L"<Settings/>", "Zoom Rate Sizes Window ", 50},
        {L"<Settings><Colour type='int'>7</Colour><Frame><Left type='int'>1</Left></Frame>"
         L"<Rate type='string'>-30</Rate></Settings>",
         "Zoom Sizes Window ", -30}, // of an older version
        {L"<Settings><Zoom type='float'>2</Zoom><Rate type='string'/><Sizes>"
         L"<Count type='uint'>4000000000</Count><Item1 type='int'>1</Item1></Sizes><Window>"
         L"<Left type='int'>x</Left><Title type='string'>t</Title></Window></Settings>",
         "Rate Sizes/Item2 Window/Left ", 50},
        {L"<Settings><Rate type='string'>30x</Rate></Settings>", "Zoom Rate Sizes Window ", 50},
        {L"<Settings><Rate type='string'>9223372036854775808</Rate></Settings>",
         "Zoom Rate Sizes Window ", 50},
    };
    for (const auto& document : documents) {
        Settings settings;
        EXPECT_EQ(document.missing, Missing(varek::FromXml(document.text, settings)));
        EXPECT_EQ(document.rate, settings.rate);
        EXPECT_EQ(0u, settings.version);
        EXPECT_EQ(40, settings.window.left);
        EXPECT_EQ(settings.zoom == 2 ? 1u : 2u, settings.sizes.size());
    }
    Settings settings;
    for (const wchar_t* file : {L"C:\\Temp\\no-such-file", L"C:\\no\\such\\folder"})
        EXPECT_EQ("nothing there: Zoom Rate Sizes Window ",
                  Missing(varek::LoadXml(file, settings)));
    EXPECT_EQ(50, settings.rate);
    settings.rate = 1;
    for (const wchar_t* text : {L"", L"<Other/>", L"<Settings>"})
        EXPECT_EQ("varek.FromXml:NotADocument", Raised([&] { varek::FromXml(text, settings); }));
    EXPECT_EQ(1, settings.rate);
    EXPECT_TRUE(varek::FromXml(varek::ToXml(settings), settings).IsComplete());
    EXPECT_EQ(2u, settings.version);
}

TEST(Filing, FailuresHaveTheFormThatTheyHaveEverywhere)
{
    MException chain((MError(L"Valve.Open:Stuck"))), read((MError(L"Before")));
    chain.AddError(std::get<MError>(Filled().values));
    MOutFilerTaggedXml document(L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(nullptr, &document);
    MString text;
    EXPECT_TRUE(chain.Write(filer, L"Exception") && document.GetDocumentText(&text));
    EXPECT_TRUE(text == varek::ToXml(chain, L"ExceptionChain"));
    EXPECT_EQ("", Missing(varek::FromXml(text, read, L"ExceptionChain")));
    EXPECT_EQ(varek::What(chain), varek::What(read));
    MError error;
    EXPECT_EQ("", Missing(varek::FromXml(varek::ToXml(*chain.GetError(0)), error)));
    EXPECT_TRUE(error.GetCode() == L"Valve.Open:Stuck");
}

TEST(Filing, WhatCannotBeFiledIsToldAndReadAsNew)
{
    Everything fresh, all = Filled();
    std::get<Window>(fresh.values) = {40, L"none"};
    MOutFilerTaggedXml closed(nullptr, nullptr), open(L"r", nullptr);
    MInFilerTaggedXml nothing(MString(), nullptr, nullptr);
    varek::Filing writing(closed), reading(nothing, true), filing(open);
    all.works = false;
    for (varek::Filing* refused : {&writing, &reading}) {
        Describe(*refused, all);
        EXPECT_FALSE((*refused)(L"Group", all));
    }
    EXPECT_EQ(28u, reading.GetReading().missing.size()); // each, and the group
    EXPECT_EQ("varek.ToXml:CannotFile tag=Version", Raised([&] { varek::ToXml(all, L"9"); }));
    all.works = true;
    EXPECT_TRUE(varek::ToXml(fresh) == varek::ToXml(all));
    for (const wchar_t* tag : {L"Window", L"Other"}) {
        const varek::FilingGroup group(filing, tag);
        while (open.EndGroup()) {
        }
    }
    EXPECT_TRUE(filing.GetFailedTag() == L"Window"); // which had been ended before
}

TEST(Filing, WhateverFailsNothingIsLeftAndAFileIsReplacedAsAWholeOrNotAtAll)
{
    Window window{3, L"\x20AC"};
    Settings settings;
    varek::SaveXml(path, window);
    const std::string saved = FileText();
    EXPECT_NE(std::string::npos, saved.find("<Title type=\"string\">\xE2\x82\xAC</Title>"));
    const std::function<void()> filings[] = {
        [&] { varek::SaveXml(path, window); }, [&] { varek::LoadXml(path, window); },
        [&] { varek::SaveRegistry(area, settings); }, [&] { varek::LoadRegistry(area, settings); }};
    for (const auto& file : filings) {
        EXPECT_TRUE(LeavesNothing([&] {
            settings = Settings();
            ForEachFailingAllocation(AllocationFailure::Throws, file, [&](ShortageOutcome outcome) {
                EXPECT_NE(ShortageOutcome::Completed, outcome);
                EXPECT_EQ(saved, FileText());
            });
        }));
        for (const char* call : {createFile, readFile, writeFile}) {
            FailNext(call, 5);
            const std::string told = Raised(file);
            EXPECT_EQ(DisarmFailingCall() != "",
                      told.find("face-filing-test.xml winErrorCode=5") != std::string::npos);
            EXPECT_EQ(saved, FileText());
        }
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\FaceFilingTest");
    EXPECT_TRUE(varek::LoadXml(path, window).IsComplete());
    EXPECT_EQ(L"\x20AC", window.title);
    std::ofstream("C:\\Temp\\face-filing-test.xml", std::ios::binary) << "\xEF\xBB\xBF" + saved;
    EXPECT_EQ("", Missing(varek::LoadXml(path, window)));

    const std::string failure = Raised([&] { varek::SaveXml(L"C:\\Temp", window); });
    EXPECT_EQ(0u, failure.find("varek.SaveXml:CannotWrite path=C:\\Temp winErrorCode=")) << failure;
    WIN32_FIND_DATAW found;
    for (const wchar_t* fresh : {L"C:\\Temp*.new", L"C:\\Temp\\face-filing-test*.new"})
        EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(fresh, &found));
    DeleteFileW(path.c_str());
}
