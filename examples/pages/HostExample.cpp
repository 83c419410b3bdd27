// What docs/host.md and docs/reading-a-dump.md show, as a test: a host of varek.dll.

#include "diagnostics/CrashDump.h"
#include "diagnostics/MFlowLogger.h"
#include "module/Runtime.h"
#include "tests/support/LeakCheck.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

class FatalTextPrinter : public Varek::Runtime::CallbackFunctor1Param<const std::wstring&>
{
    void operator()(const std::wstring&) override {}
};

class MiniDumpWriter : public Varek::Runtime::CallbackFunctor1Param<_EXCEPTION_POINTERS*>
{
    void operator()(_EXCEPTION_POINTERS* pointers) override
    {
        crashDump.WriteMinidump(pointers); // C:\Dumps\pump-20261121-231805-042-4711.dmp
        crashDump.WriteText();             // C:\Dumps\pump-20261121-231806-130-4711.log
    }

    CrashDump crashDump{L"C:\\Dumps\\pump"}; // made at the start of the host
};

void RunHost()
{
    using namespace Varek::Runtime;

    AttachMFlowLogger(MFlowLogger::GetInstance()); // 1. see the module's events in our log

    RegisterFatalErrorHandlers( // 2. starts the module's two threads
        std::auto_ptr<CallbackFunctor1Param<const std::wstring&>>(new FatalTextPrinter),
        std::auto_ptr<CallbackFunctor1Param<_EXCEPTION_POINTERS*>>(new MiniDumpWriter));

    // ... call what the module exports of its own ...

    Shutdown(); // 3. stops them, for good
}

void Dump(std::ostream& stream)
{
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(stream);
    MFlowLogger::GetInstance()->GetImplementation()->DumpToFile(); // C:\Temp\DebugDump.log
}

} // namespace

TEST(HostExample, JoinsTheLogStartsAndStops)
{
    LeakCheck::Skip(); // the module keeps its own state until it is unloaded
    RunHost();
    std::ostringstream stream;
    Dump(stream);
    const std::string dump = stream.str();
    EXPECT_EQ(0u, dump.find("%% Reference time: "));
    EXPECT_NE(std::string::npos, dump.find("% State_change to Running in_class MEngineThread"));
    EXPECT_NE(std::string::npos, dump.find("(Command processor thread)"));
}
