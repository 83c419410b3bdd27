// What it costs to be traced, and what a dump costs.

#include "bench/SpdlogPeer.h"
#include "bench/support/Comparison.h"
#include "bench/support/ConstantCounter.h"
#include "bench/support/HeapCount.h"
#include "bench/support/Report.h"
#include "bench/support/Sample.h"
#include "bench/support/SecondThread.h"
#include "bench/support/TickClock.h"
#include "diagnostics/CrashDump.h"
#include "diagnostics/FlowId.h"
#include "diagnostics/KLogger.h"
#include "diagnostics/KLogRecord.h"
#include "diagnostics/MFlowLocation.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <ostream>
#include <streambuf>

#include <windows.h>

#include <dbghelp.h>

namespace
{

const std::uint32_t ringCapacity = 0x20000;
const std::size_t lengthOfAText = 256; // of a record, generously
const std::int32_t timingPoint = 0;
const std::int32_t scopePush = -7;
const std::int32_t scopePop = -8;
const wchar_t className[] = L"Bench";

/// The floor: what a record costs a program that writes it by hand, everything known where it is
/// written and nothing in between.
class HandWrittenRing
{
public:
    HandWrittenRing() : next(0), records(new KLogRecord[ringCapacity]()) {}

    void Record(std::int32_t kind, std::uint32_t a, std::uint32_t b, const void* object)
    {
        KLogRecord& record = records[next.fetch_add(1) % ringCapacity];
        LARGE_INTEGER ticks;
        QueryPerformanceCounter(&ticks);
        record.time = ticks.QuadPart;
        record.kind = kind;
        record.param1 = a;
        record.param2 = b;
        record.classId = FlowId(className);
        record.pointId = FlowId(className);
        record.object = reinterpret_cast<std::uintptr_t>(object);
        record.threadId = GetCurrentThreadId();
    }

private:
    std::atomic<std::uint32_t> next;
    const std::unique_ptr<KLogRecord[]> records;
};

HandWrittenRing handWritten;

/// A class whose function does nothing but be traced.
class Traced
{
public:
    __attribute__((noinline)) void Function()
    {
        static MFlowLocation location(className, L"Function");
        MFlowScope scope(location.SetObject(this));
    }
};

void LogTimingPoints(unsigned times)
{
    static MFlowLocation location(className, L"LogTimingPoints");
    for (unsigned i = 0; i < times; ++i)
        location.LogTimingPoint(i, times);
}

void RecordByHand(unsigned times)
{
    for (unsigned i = 0; i < times; ++i)
        handWritten.Record(timingPoint, i, times, nullptr);
}

void CallTracedFunction(unsigned times)
{
    Traced traced;
    for (unsigned i = 0; i < times; ++i)
        traced.Function();
}

void RecordTwiceByHand(unsigned times)
{
    for (unsigned i = 0; i < times; ++i) {
        handWritten.Record(scopePush, 0, 0, &handWritten);
        handWritten.Record(scopePop, 0, 0, &handWritten);
    }
}

/// Two threads at once, half of the operations each.
Comparison::Work OnBoth(SecondThread& second, const Comparison::Work& work)
{
    return [&second, work](unsigned times) { second.RunOnBoth([&] { work(times / 2); }); };
}

void CompareWithFloor()
{
    Comparison("timing point : record by hand", 2000, LogTimingPoints, RecordByHand).AtMost(1.15);
    Comparison("traced function : two records by hand", 1000, CallTracedFunction, RecordTwiceByHand)
        .AtMost(1.2);

    const ConstantCounter bare;
    Comparison("  bare: timing point", 10000, LogTimingPoints, RecordByHand).AtMost(2);
    Comparison("  bare: traced function", 5000, CallTracedFunction, RecordTwiceByHand).AtMost(2);
}

void CompareWithPeer()
{
    SpdlogPeer spdlog(ringCapacity);
    const Comparison::Work log = [&spdlog](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            spdlog.LogTimingPoint(i, times);
    };
    const Comparison::Work logByCounter = [&spdlog](unsigned times) {
        for (unsigned i = 0; i < times; ++i)
            spdlog.LogTimingPointByCounter(i, times);
    };
    Comparison("timing point : spdlog ring, its own clock", 2000, LogTimingPoints, log).AtMost(0.5);
    Comparison("  the same clock in both", 2000, LogTimingPoints, logByCounter).AtMost(0.5);

    const ConstantCounter bare;
    Comparison("  bare, no clock in either", 5000, LogTimingPoints, logByCounter).AtMost(0.5);
}

// A rate of 0.8 is a time of 1.25. Both threads meet before each measurement, so that it starts
// with both of them running.
void CompareTwoThreads()
{
    SecondThread second;
    Comparison("two threads at once : by hand", 4000, OnBoth(second, LogTimingPoints),
               OnBoth(second, RecordByHand))
        .Before([&] { second.RunOnBoth([] {}); })
        .AtMost(1.25);
}

void ShowQuantiles(const char* what, Sample& sample)
{
    std::printf("%-44s", what);
    for (double share : {0.5, 0.9, 0.99, 0.999})
        std::printf(" %8.1f", sample.Quantile(share));
    std::printf("\n");
}

/// Each call timed by itself. The cost of the clock is in every figure, and stands beside them.
void ShowSingleCalls()
{
    static MFlowLocation location(className, L"ShowSingleCalls");
    Sample clock;
    Sample counter;
    Sample record;
    for (std::uint32_t i = 0; i < 200000; ++i) {
        LARGE_INTEGER ticks;
        const std::uint64_t begin = TickClock::Now();
        const std::uint64_t afterNothing = TickClock::Now();
        QueryPerformanceCounter(&ticks);
        const std::uint64_t afterCounter = TickClock::Now();
        location.LogTimingPoint(i, i);
        const std::uint64_t afterRecord = TickClock::Now();
        clock.Add(TickClock::Nanoseconds(afterNothing - begin));
        counter.Add(TickClock::Nanoseconds(afterCounter - afterNothing));
        record.Add(TickClock::Nanoseconds(afterRecord - afterCounter));
    }
    std::printf("\n%-44s %8s %8s %8s %8s\n", "Single calls, ns", "50 %", "90 %", "99 %", "99.9 %");
    ShowQuantiles("the clock of this table", clock);
    ShowQuantiles("QueryPerformanceCounter", counter);
    ShowQuantiles("timing point", record);
}

/// Swallows what is written.
class NullBuffer : public std::streambuf
{
protected:
    int overflow(int c) override { return c == EOF ? 0 : c; }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

double SecondsOf(const std::function<void()>& work)
{
    const std::uint64_t begin = TickClock::Now();
    work();
    return TickClock::Nanoseconds(TickClock::Now() - begin) / 1e9;
}

void Fill(KLogger& core, std::uint32_t records)
{
    const std::uint32_t sixDigits = 100000; // texts of one length, whatever the number of records
    core.SetIdName(FlowId(className), "Bench");
    for (std::uint32_t i = 0; i < records; ++i)
        core.AddRecord(timingPoint, sixDigits + i, i % 10, FlowId(className), FlowId(className),
                       &core);
}

std::size_t PeakOfDumpFile(KLogger& core)
{
    HeapCount::ResetPeak();
    if (!core.WriteDumpFile())
        std::printf("the dump file cannot be opened\n");
    return HeapCount::PeakBytes();
}

void MeasureDump()
{
    CreateDirectoryW(L"C:\\Temp", nullptr);
    KLogger& quarter = *new KLogger; // a core is never freed
    KLogger& full = *new KLogger;
    Fill(quarter, ringCapacity / 4);
    Fill(full, ringCapacity);

    Report::Heading("Dump of a full ring");
    NullBuffer nowhere;
    std::ostream stream(&nowhere);
    const double formatting = SecondsOf([&] { full.WriteDump(stream); });
    Report::Figure("to nowhere: the formatting", ringCapacity / formatting, "records/s");

    std::size_t fullPeak = 0;
    const double writing = SecondsOf([&] { fullPeak = PeakOfDumpFile(full); });
    Report::Figure("to the file", ringCapacity / writing, "records/s");

    const std::size_t quarterPeak = PeakOfDumpFile(quarter);
    Report::Figure("peak heap of a file dump, a quarter full", static_cast<double>(quarterPeak),
                   "bytes");
    Report::FigureAtMost("peak heap of a file dump, full", static_cast<double>(fullPeak), "bytes",
                         static_cast<double>(quarterPeak + lengthOfAText));
}

double BytesOf(const wchar_t* path)
{
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    GetFileAttributesExW(path, GetFileExInfoStandard, &attributes);
    DeleteFileW(path);
    return attributes.nFileSizeLow;
}

/// The floor: the system's function alone, without any recorder's memory, and without loading
/// symbols.
void WriteBareMinidump()
{
    SymSetOptions(SymGetOptions() | SYMOPT_DEFERRED_LOADS);
    const wchar_t path[] = L"C:\\Temp\\bench-bare.dmp";
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    MiniDumpWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal, nullptr,
                      nullptr, nullptr);
    CloseHandle(file);
    DeleteFileW(path);
}

/// Too slow for a `Comparison`, and few rounds say enough.
void MeasureMinidump()
{
    Fill(*KLogger::GetModuleLogger(), ringCapacity);
    CrashDump crashDump(L"C:\\Temp\\bench");
    Sample ours;
    Sample bare;
    Sample ratios;
    double bytes = 0;
    for (int round = 0; round < 9; ++round) {
        const double ourTime = SecondsOf([&] { crashDump.WriteMinidump(nullptr); });
        bytes = BytesOf(crashDump.GetPath());
        const double bareTime = SecondsOf(WriteBareMinidump);
        ours.Add(ourTime * 1e9);
        bare.Add(bareTime * 1e9);
        ratios.Add(ourTime / bareTime);
    }
    Report::Columns("Minidump with a full ring");
    Report::Ratio("with the recorder : without", ours, bare, ratios, 1.5);
    Report::FigureAtMost("its size", bytes, "bytes", 6500000);
}

} // namespace

int main()
{
    Report::Columns("Recording");
    CompareWithFloor();
    CompareWithPeer();
    CompareTwoThreads();
    ShowSingleCalls();
    MeasureDump();
    MeasureMinidump();
}
