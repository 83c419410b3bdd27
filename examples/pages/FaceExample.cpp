// What the README and docs/face.md show, as a test.

#include "tests/support/LeakCheck.h"
#include "varek/Varek.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

class Pump
{
    VAREK_TRACED_CLASS(Pump);

public:
    int Drain(int litres)
    {
        VAREK_TRACE(litres); // recorded again when the block is left
        if (litres > level)
            VAREK_RAISE(L"RunsDry").With(L"level", level).Throw();
        return level -= litres;
    }

private:
    int level = 100;
};

struct Display : std::enable_shared_from_this<Display> {
    void Show(int newLevel) { level = newLevel; }
    void Show(const MString& newFailure) { failure = newFailure; }

    std::atomic<int> level{0};
    MString failure;
};

struct Settings {
    int rate = 0;
    std::vector<std::wstring> names;
};

void Describe(varek::Filing& filing, Settings& settings)
{
    filing(L"Rate", settings.rate, 50); // 50 where there is none
    filing(L"Names", settings.names);
}

void Drain(Pump& pump, Display& display)
{
    try {
        const int level = varek::Call([&] { return pump.Drain(80); });
        display.Show(level);
    } catch (MException& exception) {
        display.Show(varek::FullText(exception)); // Pump.Drain:RunsDry (level=20)
    }
}

void Announce(Display& display, int level)
{
    varek::Post([display = display.shared_from_this(), level] { display->Show(level); });
}

unsigned Survey(const std::wstring& path, const varek::CancelToken&)
{
    return static_cast<unsigned>(path.size());
}

unsigned SurveyLater(const std::wstring& path)
{
    varek::CancelToken token;
    std::future<unsigned> size = varek::CallAsync([=] { return Survey(path, token); }, token);

    varek::CallFor(std::chrono::seconds(2), [path] { Survey(path, varek::CancelToken()); });
    return size.get();
}

void OpenValve(const std::wstring& path)
{
    static MFlowLocation location(L"Valve", L"Open");
    varek::Raise(location.SetLine(__LINE__), L"CannotOpen")
        .With(L"path", path)
        .WithLastError() // taken before anything could change it
        .Throw();
}

#if __cplusplus >= 201703L
struct Limits {
    std::optional<std::vector<double>> levels; // before C++17, a std::unique_ptr
};

void Describe(varek::Filing& filing, Limits& limits)
{
    filing(L"Levels", limits.levels);
}

MString Refuse(std::wstring_view path)
{
    static MFlowLocation location(L"Valve", L"Open");
    if (MString(L"valve") != path)
        varek::Raise(location.SetLine(__LINE__), L"Refused").With(L"path", path).Throw();
    return varek::ToXml(Limits());
}
#endif

std::string Explain(const MException& exception)
{
    std::string text;
    for (const MError& error : varek::Errors(exception))
        text += varek::ToUtf8(error.GetCode()) + "\n";
    if (const MError* error = varek::FindError(exception, L"CannotOpen"))
        text += varek::ToUtf8(L"no " + varek::ParameterOf(*error, L"path"));
    return text;
}

int Keep(const std::wstring& path, Settings& settings)
{
    varek::SaveXml(path, settings); // as it was or as it is now, whatever happens
    varek::LoadRegistry(L"Pumps", settings);

    const varek::Reading reading = varek::LoadXml(path, settings);
    for (const MString& tag : reading.missing)
        OutputDebugStringW(tag.c_str());
    return settings.rate;
}

int Watch(HANDLE folderChanged)
{
    std::atomic<int> looks{0};
    varek::Worker watcher;
    watcher.When(folderChanged, [&] { ++looks; });
    watcher.Every(std::chrono::minutes(1), [&] { ++looks; });
    watcher.Start();

    varek::Watchdog watchdog(std::chrono::seconds(5), [](const varek::Overrun& overrun) {
        OutputDebugStringA(overrun.dump.c_str());
    });
    while (looks == 0)
        Sleep(1);
    return looks;
}

} // namespace

TEST(FaceExample, DoesWhatThePagesSay)
{
    LeakCheck::Skip(); // the module keeps its threads and names
    Pump pump;
    const auto display = std::make_shared<Display>();
    Drain(pump, *display);
    EXPECT_EQ(20, display->level);
    Drain(pump, *display);
    EXPECT_STREQ(L"Pump.Drain:RunsDry (level=20)", display->failure.c_str());
    Announce(*display, 7);
    while (display->level != 7)
        Sleep(1);

    EXPECT_EQ(4u, SurveyLater(L"path"));
    try {
        OpenValve(L"pipe");
    } catch (MException& exception) {
        EXPECT_EQ("Valve.Open:CannotOpen\nno pipe", Explain(exception));
    }
#if __cplusplus >= 201703L
    EXPECT_THROW(Refuse(L"pipe"), MException);
#endif
    Settings settings;
    settings.rate = 9;
    EXPECT_EQ(9, Keep(L"face-example.xml", settings));
    DeleteFileW(L"face-example.xml");
    const HANDLE changed = CreateEventW(nullptr, FALSE, TRUE, nullptr);
    EXPECT_EQ(1, Watch(changed));
    CloseHandle(changed);
}
