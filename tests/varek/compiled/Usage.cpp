// What users write, for every language that they may write it in.

#include <varek/Varek.h>

#include <iostream>

namespace
{

struct Pumps {
    int level = 0;
    std::vector<std::wstring> names;
#if __cplusplus >= 201703L
    std::optional<double> limit;
#endif
};

void Describe(varek::Filing& filing, Pumps& pumps)
{
    filing(L"Level", pumps.level, 50);
    filing(L"Names", pumps.names);
#if __cplusplus >= 201703L
    filing(L"Limit", pumps.limit);
#endif
}

template <class T>
class Pump
{
    VAREK_TRACED_CLASS(Pump);

public:
    void Drain(T litres)
    {
        VAREK_TRACE(litres);
        const auto check = [&] {
            VAREK_TRACE();
            if (litres > level)
                VAREK_RAISE(L"RunsDry").With(L"level", level).WithLastError().Throw();
        };
        check();
    }

private:
    T level = 100;
};

} // namespace

int Use(MCommandProcessor& processor, MDesyncEventScheduler& scheduler)
{
    Pump<int> pump;
    varek::CancelToken token;
    varek::Call(processor, [&] { pump.Drain(1); });
    auto future = varek::CallAsync(
        processor, [] { return std::make_unique<int>(2); }, token);
    varek::Post(scheduler, [owned = std::make_unique<int>(3)] { (void)*owned; });
    varek::Worker worker;
    worker.Every(std::chrono::seconds(1), [] {});
    Pumps pumps;
    varek::SaveXml(L"pumps.xml", pumps);
    MString text = varek::ToXml(pumps);
    if (text == L"" || L"" != text || text == std::wstring() || text < text)
        std::wcout << text + L"\n";
#if __cplusplus >= 201703L
    if (std::wstring_view(L"x") == text)
        varek::Raise(MFlowLocation(L"Class", L"Function"), L"Code")
            .With(L"view", std::wstring_view())
            .Throw();
#endif
    for (wchar_t character : text)
        std::wcout << character;
    return varek::CallFor(std::chrono::seconds(1), processor,
                          [future = future.share()] { return *future.get(); });
}
