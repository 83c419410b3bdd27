// Writes the dump of a full ring, as an application leaves it that has been busy for a while:
// threads that serve requests through several levels of traced functions, objects with and without
// a name, changes of state, and a failure now and then.

#include "diagnostics/ClassName.h"
#include "diagnostics/CrashDump.h"
#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLocation.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MError.h"
#include "foundation/MException.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include <windows.h>

namespace
{

class Valve
{
public:
    Valve();
    ~Valve();

    void Turn(unsigned request);

private:
    static const wchar_t className[];
    static const ClassName name;
};

class Pump
{
public:
    void Drain(unsigned request);

private:
    static const wchar_t className[];
    static const ClassName name;

    unsigned turns = 0;
};

class Station
{
public:
    Station();

    void Serve(unsigned request);

private:
    void ChangeState(std::uint32_t state);

    static const wchar_t className[];
    static const ClassName name;

    Pump namedPump;
    Pump pump;
};

const wchar_t Valve::className[] = L"Valve";
const ClassName Valve::name(Valve::className);
const wchar_t Pump::className[] = L"Pump";
const ClassName Pump::name(Pump::className);
const wchar_t Station::className[] = L"Station";
const ClassName Station::name(Station::className);

Valve::Valve()
{
    static MFlowLocation location(className, L"Valve");
    location.SetObject(this).SetLine(__LINE__).LogConstruction();
}

Valve::~Valve()
{
    static MFlowLocation location(className, L"~Valve");
    location.SetObject(this).SetLine(__LINE__).LogDestruction();
}

void Valve::Turn(unsigned request)
{
    static MFlowLocation location(className, L"Turn");
    MFlowScope scope(location.SetObject(this));
    if (request % 50 == 0) {
        MError error;
        location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"Jammed");
        location.Throw(error);
    }
}

void Pump::Drain(unsigned request)
{
    static MFlowLocation location(className, L"Drain");
    MFlowScope scope(location.SetObject(this), request, 0);
    Valve valve;
    for (int i = 0; i < 3; ++i, ++turns)
        valve.Turn(request);
    location.SetObject(this).LogTimingPoint(request, turns);
}

Station::Station()
{
    MDiagnosticsRegistry& registry = *GetDiagnosticsRegistry();
    registry.RegisterStateName(FlowId(className), 0, L"Waiting");
    registry.RegisterStateName(FlowId(className), 1, L"Serving");
    registry.RegisterObjectName(this, L"station on the river");
    registry.RegisterObjectName(&namedPump, L"main pump");
}

void Station::ChangeState(std::uint32_t state)
{
    static MFlowLocation location(className, L"ChangeState");
    location.SetObject(this).LogStateChange(state, 0);
}

void Station::Serve(unsigned request)
{
    static MFlowLocation location(className, L"Serve");
    MFlowScope scope(location.SetObject(this), request, 0);
    ChangeState(1);
    try {
        (request % 2 == 0 ? namedPump : pump).Drain(request);
    } catch (const MException& exception) {
        location.SetObject(this).SetLine(__LINE__).DismissError(exception);
    }
    ChangeState(0);
}

void ServeRequests(unsigned thread)
{
    const unsigned requests = 1800; // 16 records each: more from all threads than the ring holds
    if (thread != 0)
        GetDiagnosticsRegistry()->RegisterThreadName((L"Clerk " + std::to_wstring(thread)).c_str());
    Station station;
    for (unsigned request = 0; request < requests; ++request) {
        station.Serve(request);
        std::this_thread::yield(); // all threads are in the dump, and take turns in it
    }
}

bool WriteMinidump(const std::string& name)
{
    CrashDump crashDump(L"full-ring");
    const std::wstring path(name.begin(), name.end());
    return crashDump.WriteMinidump(nullptr) &&
           MoveFileExW(crashDump.GetPath(), path.c_str(), MOVEFILE_REPLACE_EXISTING);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: full-ring TEXT MINIDUMP\n");
        return 2;
    }
    std::vector<std::thread> threads;
    threads.reserve(6);
    for (unsigned thread = 0; thread < 6; ++thread)
        threads.emplace_back(ServeRequests, thread);
    for (std::thread& thread : threads)
        thread.join();

    std::ofstream file(argv[1]);
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(file);
    return file && WriteMinidump(argv[2]) ? 0 : 1;
}
