#include "soak/module/Activities.h"

#include "engine/MMutexLock.h"
#include "varek/Varek.h"
#include "xml/MXmlMarkup.h"

#include <atomic>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include <windows.h>

namespace
{

VAREK_TRACED_NAMESPACE(Soak);

using std::chrono::milliseconds;

void Expect(bool holds, const wchar_t* otherwise)
{
    VAREK_TRACE();
    if (!holds)
        VAREK_RAISE(otherwise).Throw();
}

/// The short code that a call fails with.
template <class Action>
std::wstring FailureOf(Action action)
{
    try {
        action();
    } catch (MException& exception) {
        const std::wstring code = exception.GetFailure()->GetCode().c_str();
        return code.substr(code.find(L':') + 1);
    }
    return std::wstring();
}

struct Pump {
    VAREK_TRACED_CLASS(Pump);

    int Drain(int litres)
    {
        VAREK_TRACE(litres);
        if (litres > level)
            VAREK_RAISE(L"RunsDry").With(L"level", level).Throw();
        return level -= litres;
    }

    int level = 100;
};

struct Rates {
    std::wstring name;
    std::vector<double> values;
};

void Describe(varek::Filing& filing, Rates& rates)
{
    filing(L"Name", rates.name);
    filing(L"Values", rates.values);
}

bool operator==(const Rates& one, const Rates& other)
{
    return one.name == other.name && one.values == other.values;
}

Rates SomeRates()
{
    Rates rates{L"quer <durch> den \"Garten\"", {}};
    for (int i = 0; i < 50; ++i)
        rates.values.push_back(i / 8.0);
    return rates;
}

/// Different for each thread, since they do the same at the same time.
std::wstring OwnName(const wchar_t* prefix)
{
    return prefix + std::to_wstring(GetCurrentThreadId());
}

void EditDocument()
{
    MXmlMarkup document;
    Expect(document.LoadText(L"<list><item id='1'>first</item><item>second</item></list>") == 1,
           L"NotADocument");
    document.FindElement();
    document.EnterElement();
    for (int i = 0; i < 20; ++i)
        document.AddElement(L"item", std::to_wstring(i).c_str(), 0);
    while (document.FindElement(L"item"))
        document.SetAttribute(document.GetMainIndex(), L"id", L"a longer value than before");
    const std::wstring text = document.GetDocumentText();
    Expect(document.LoadText(text.c_str()) == 1, L"NotADocumentAnyMore");
}

void CallThatIsGivenUp()
{
    const auto mayEnd = std::make_shared<std::promise<void>>();
    std::shared_future<void> end = mayEnd->get_future().share();
    const std::wstring failure = FailureOf([&] {
        varek::CallFor(milliseconds(5), [end, mayEnd] { end.wait_for(milliseconds(50)); });
    });
    mayEnd->set_value();
    Expect(failure == L"TimedOut" || failure.empty(), L"NotGivenUp");
}

void CallThatIsTakenBack()
{
    varek::CancelToken token;
    std::future<int> taken = varek::CallAsync([] { return 1; }, token);
    token.Cancel();
    const std::wstring failure = FailureOf([&] { taken.get(); });
    Expect(failure == L"Cancelled" || failure.empty(), L"NotTakenBack");
}

/// A worker that is started and stopped again and again. A new one each time would show: the module
/// remembers each until its shutdown.
class Ticker
{
public:
    Ticker()
    {
        worker.Every(milliseconds(1), [this] { ++ticks; });
    }

    void Run()
    {
        MMutexLock lock(mutex);
        const int before = ticks;
        worker.Start();
        while (ticks == before)
            Sleep(1);
        worker.Stop();
    }

private:
    MMutex mutex; // one thread's turn
    std::atomic<int> ticks{0};
    varek::Worker worker;
} ticker;

void RunProcessor()
{
    MCommandProcessor processor(nullptr, nullptr, nullptr, nullptr, 0);
    processor.Start();
    Expect(varek::Call(processor, [] { return 7; }) == 7, L"WrongAnswer");
    std::future<int> answer = varek::CallAsync(processor, [] { return 8; });
    processor.Stop();
    Expect(answer.get() == 8, L"WrongAnswer");
}

void RunScheduler()
{
    std::promise<void> fired;
    MDesyncEventScheduler scheduler(nullptr);
    varek::Post(scheduler, [&] { fired.set_value(); });
    scheduler.Enable();
    fired.get_future().wait();
    varek::Post(scheduler, [kept = std::make_shared<Rates>()] { kept->name.clear(); });
    scheduler.Disable();
}

} // namespace

void ExecuteCommands()
{
    Pump pump;
    for (int i = 0; i < 20; ++i)
        Expect(varek::Call([&] { return pump.Drain(5); }) == 95 - 5 * i, L"WrongLevel");
    Expect(FailureOf([&] { varek::Call([&] { pump.Drain(5); }); }) == L"RunsDry", L"NotDry");
    CallThatIsTakenBack();
    CallThatIsGivenUp();
    varek::Call([] {}); // what was given up is over now
}

void DeliverEvents()
{
    const auto sum = std::make_shared<std::atomic<int>>(0);
    std::promise<void> done;
    for (int i = 1; i <= 50; ++i)
        varek::Post([sum, i] {
            *sum += i;
            if (i % 10 == 0)
                Expect(false, L"EventFails");
        });
    varek::Post([&] { done.set_value(); });
    done.get_future().wait();
    Expect(*sum == 50 * 51 / 2, L"EventsLost");
}

void FileDocuments()
{
    const Rates rates = SomeRates();
    Rates read;
    varek::FromXml(varek::ToXml(rates), read);
    Expect(read == rates, L"WrongText");

    const std::wstring path = OwnName(L"C:\\Temp\\soak-");
    read = Rates();
    varek::SaveXml(path, rates);
    varek::LoadXml(path, read);
    DeleteFileW(path.c_str());
    Expect(read == rates, L"WrongFile");

    const std::wstring area = OwnName(L"Soak\\Thread ");
    read = Rates();
    varek::SaveRegistry(area.c_str(), rates);
    varek::LoadRegistry(area.c_str(), read);
    Expect(read == rates, L"WrongRegistry");

    EditDocument();
}

void StartAndStopThreads()
{
    RunProcessor();
    RunScheduler();
    ticker.Run();
}
