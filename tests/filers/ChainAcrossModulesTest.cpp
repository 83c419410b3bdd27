#include "filers/MFilerTaggedPair.h"
#include "filers/MInFilerTaggedXml.h"
#include "tests/filers/ChainModule.h"
#include "tests/filers/ErrorChains.h"

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

/// Keeps what it was given.
class KeptText : public TextReceiver
{
public:
    explicit KeptText(std::wstring& text) : text(text) {}
    void operator()(const std::wstring& given) override { text = given; }

private:
    std::wstring& text;
};

class Module
{
public:
    explicit Module(const wchar_t* file) : module(LoadLibraryW(file)) {}
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module()
    {
        Get<decltype(StopModule)>("StopModule")();
        FreeLibrary(module);
    }

    template <class Function>
    Function* Get(const char* name) const
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

private:
    HMODULE module;
};

/// The chain of a fatal error text, in one line.
std::wstring ReadChain(const std::wstring& text)
{
    MInFilerTaggedXml in(text.c_str(), L"ExceptionChain", nullptr);
    MFilerTaggedPair filer(&in, nullptr);
    MException exception;
    EXPECT_TRUE(filer.BeginGroup(L"Exception"));
    EXPECT_TRUE(exception.ReadErrors(filer, exception));
    return ChainSummary(exception);
}

} // namespace

TEST(ChainAcrossModules, FatalErrorOfOneIsCarriedIntoTheOther)
{
    std::wstring fatal;
    std::wstring carried;
    {
        const Module failing(L"failing-module.dll");
        const Module carrying(L"carrying-module.dll");
        failing.Get<decltype(FailOnEngineThread)>("FailOnEngineThread")(new KeptText(fatal));
        KeptText receiver(carried);
        carrying.Get<decltype(CarryChain)>("CarryChain")(fatal, receiver);
    }
    const std::wstring chain = L"Pump.Drain:Blocked pressure=17;Plant.Run:Stopped & cold;";
    EXPECT_EQ(chain, ReadChain(fatal));
    EXPECT_EQ(chain + L"Carrier;", ReadChain(carried));
}
