// Types described once, through both back ends, across versions, and into files.

#include "varek/Filing.h"
#include "tests/support/Allocations.h"
#include "tests/support/Raised.h"

#include <gtest/gtest.h>

#include <fstream>
#include <limits>

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
    bool flag = true;
    char letter = 'x';
    signed char tiny = -100;
    unsigned char byte = 200;
    wchar_t wide = 0x20AC;
    short shorter = -30000;
    unsigned short unsignedShort = 60000;
    int number = std::numeric_limits<int>::min();
    unsigned unsignedNumber = std::numeric_limits<unsigned>::max();
    long longNumber = -5;
    unsigned long unsignedLong = 5;
    long long longest = std::numeric_limits<long long>::min();
    unsigned long long unsignedLongest = std::numeric_limits<unsigned long long>::max();
    float ratio = 0.5f;
    double factor = -1.25e10;
    Mode mode = Mode::On;
    MString text = L"<a & \x20AC>";
    std::wstring standard = L" two\nlines ";
    Window window{-7, L"main"};
    std::vector<int> numbers{1, -2, 3};
    std::vector<bool> flags{true, false, true};
    std::vector<Window> windows{{1, L"a"}, {2, L""}};
    std::vector<std::vector<MString>> nested{{}, {L"deep"}};
    std::unique_ptr<Window> some{new Window{9, L"there"}};
    std::unique_ptr<int> none;
    MError error{L"Pump.Drain:RunsDry"};
    MException chain;

    Everything()
    {
        error.AddParameter(L"level", 3);
        chain.AddError(MError(L"cause"));
        chain.AddError(error);
    }
};

void Describe(varek::Filing& f, Everything& e)
{
    EXPECT_EQ(3u, f.Version(3));
    f(L"flag", e.flag), f(L"letter", e.letter), f(L"tiny", e.tiny), f(L"byte", e.byte);
    f(L"wide", e.wide), f(L"shorter", e.shorter), f(L"unsignedShort", e.unsignedShort);
    f(L"number", e.number), f(L"unsignedNumber", e.unsignedNumber);
    f(L"longNumber", e.longNumber), f(L"unsignedLong", e.unsignedLong);
    f(L"longest", e.longest), f(L"unsignedLongest", e.unsignedLongest);
    f(L"ratio", e.ratio), f(L"factor", e.factor), f(L"mode", e.mode);
    f(L"text", e.text), f(L"standard", e.standard), f(L"window", e.window);
    f(L"numbers", e.numbers), f(L"flags", e.flags), f(L"windows", e.windows);
    f(L"nested", e.nested), f(L"some", e.some), f(L"none", e.none);
    f(L"error", e.error), f(L"chain", e.chain);
}

struct OldSettings {
    int colour = 7, rate = 30;
};

void Describe(varek::Filing& filing, OldSettings& settings)
{
    filing(L"Colour", settings.colour);
    filing(L"Rate", settings.rate);
}

struct Settings {
    int rate = 0;
    double zoom = 0;
    std::vector<int> sizes;
    Window window;
    unsigned version = 0;
};

void Describe(varek::Filing& filing, Settings& settings)
{
    settings.version = filing.Version(2);
    filing.Retired<int>(L"Colour");
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
    return all;
}

std::string FileText()
{
    std::ifstream file("C:\\Temp\\face-filing-test.xml", std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

TEST(Filing, EveryTypeGoesThroughBothBackEnds)
{
    const Everything written;
    const MString text = varek::ToXml(written);
    Everything fromXml, fromRegistry;
    for (Everything* read : {&fromXml, &fromRegistry}) {
        read->numbers.clear();
        read->nested.clear();
        read->some.reset();
        read->none.reset(new int);
        read->text = L"";
        read->standard.clear();
        read->window = Window();
        read->longest = read->number = 0;
        read->mode = Mode::Off;
    }
    EXPECT_EQ("", Missing(varek::FromXml(text, fromXml)));
    EXPECT_TRUE(text == varek::ToXml(fromXml));
    varek::SaveRegistry(area, written);
    EXPECT_EQ("", Missing(varek::LoadRegistry(area, fromRegistry)));
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Varek\\FaceFilingTest");
    EXPECT_TRUE(text == varek::ToXml(fromRegistry)) << varek::ToUtf8(varek::ToXml(fromRegistry));
}

TEST(Filing, WhatIsMissingIsDefaultAndTold)
{
    const std::pair<const wchar_t*, const char*> documents[] = {
        {L"<Settings/>", "Zoom Rate Sizes Window "},
        {L"<Settings><Zoom type='float'>2</Zoom><Rate type='int'>x</Rate><Sizes>"
         L"<Count type='uint'>4000000000</Count><Item1 type='int'>1</Item1></Sizes><Window>"
         L"<Title type='string'>t</Title></Window></Settings>",
         "Rate Sizes/Item2 Window/Left "},
    };
    for (const auto& document : documents) {
        Settings settings;
        EXPECT_EQ(document.second, Missing(varek::FromXml(document.first, settings)));
        EXPECT_EQ(50, settings.rate);
        EXPECT_EQ(40, settings.window.left);
        EXPECT_EQ(settings.zoom == 2 ? 1u : 2u, settings.sizes.size());
    }
    Settings settings;
    EXPECT_EQ("nothing there: Zoom Rate Sizes Window ",
              Missing(varek::LoadXml(L"C:\\Temp\\no-such-file", settings)));
    EXPECT_EQ(50, settings.rate);
    settings.rate = 1;
    for (const wchar_t* text : {L"", L"<Other/>", L"<Settings>"})
        EXPECT_EQ("varek.FromXml:NotADocument", Raised([&] { varek::FromXml(text, settings); }));
    EXPECT_EQ(1, settings.rate);
}

TEST(Filing, ReadsWhatAnOlderVersionWrote)
{
    Settings settings;
    EXPECT_EQ("Zoom Sizes Window ", Missing(varek::FromXml(varek::ToXml(OldSettings()), settings)));
    EXPECT_EQ(30, settings.rate);
    EXPECT_EQ(0u, settings.version);
    EXPECT_TRUE(varek::FromXml(varek::ToXml(settings), settings).IsComplete());
    EXPECT_EQ(2u, settings.version);
}

TEST(Filing, AFileIsReplacedAsAWholeOrNotAtAll)
{
    Window window{3, L"\x20AC"};
    varek::SaveXml(path, window);
    const std::string saved = FileText();
    EXPECT_NE(std::string::npos, saved.find("<Title type=\"string\">\xE2\x82\xAC</Title>"));
    ForEachFailingAllocation(
        AllocationFailure::Throws, [&] { varek::SaveXml(path, window); },
        [&](ShortageOutcome) { EXPECT_EQ(saved, FileText()); });
    Window read;
    EXPECT_TRUE(varek::LoadXml(path, read).IsComplete());
    EXPECT_EQ(window.title, read.title);

    const std::string failure = Raised([&] { varek::SaveXml(L"C:\\Temp", window); });
    EXPECT_EQ(0u, failure.find("varek.SaveXml:CannotWrite path=C:\\Temp winErrorCode=")) << failure;
    EXPECT_EQ("varek.LoadXml:CannotRead path=C:\\Temp winErrorCode=5",
              Raised([&] { varek::LoadXml(L"C:\\Temp", window); }));
    WIN32_FIND_DATAW found;
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(L"C:\\Temp*.new", &found));
    DeleteFileW(path.c_str());
}
