#include "viewer/reading/minidump/MinidumpDumps.h"

#include "viewer/forms/TextForms.h"
#include "viewer/reading/minidump/RecorderMemory.h"
#include "viewer/reading/TimeAxis.h"

#include <algorithm>

namespace
{

constexpr char kindsThatDo[] =
    "; one that holds it is written by the framework's own functions for hosts, with full memory, "
    "or with private memory and data segments";

struct Code {
    std::uint32_t number;
    const char* name;
};

constexpr Code codes[] = {
    {0xC0000005, "access violation"},    {0xC0000017, "no memory"},
    {0xC000001D, "illegal instruction"}, {0xC0000094, "integer division by zero"},
    {0xC00000FD, "stack overflow"},      {0xC0000374, "heap corruption"},
    {0xC0000409, "security check"},      {0x80000003, "breakpoint"},
    {0xE06D7363, "C++ exception"},       {0x20474343, "C++ exception"},
};

std::string NameOf(const MinidumpFile::Exception& exception)
{
    const std::string number = TextForms::Address(exception.code).substr(8);
    const auto code = std::find_if(std::begin(codes), std::end(codes), [&](const Code& known) {
        return known.number == exception.code;
    });
    return code == std::end(codes) ? "exception " + number : std::string(code->name) + " " + number;
}

std::string Describe(const MinidumpFile::Exception& exception,
                     const std::vector<MinidumpFile::Module>& modules)
{
    constexpr std::uint32_t accessViolation = 0xC0000005;
    std::string text = NameOf(exception) + " at " + MinidumpFile::Place(exception.address, modules);
    if (exception.code == accessViolation && exception.parameters >= 2)
        text += std::string(exception.parameter[0] == 1   ? ", writing "
                            : exception.parameter[0] == 0 ? ", reading "
                                                          : ", executing ") +
                TextForms::Address(exception.parameter[1]);
    return text;
}

/// What the file tells of the process, for all its recorders alike.
void AddProcess(const MinidumpFile& file, const std::vector<MinidumpFile::Module>& modules,
                Dump& dump)
{
    if (const std::optional<MinidumpFile::Exception> exception = file.ExceptionStream())
        dump.crash =
            Crash{static_cast<std::int32_t>(exception->threadId), Describe(*exception, modules)};
    dump.process = (modules.empty() ? "process" : modules.front().name);
    const std::string system = file.System();
    if (!system.empty())
        dump.process += " on " + system;
    for (const std::uint32_t thread : file.Threads())
        dump.livingThreads.push_back(static_cast<std::int32_t>(thread));
}

std::string RecorderOf(std::uint64_t address, const std::vector<MinidumpFile::Module>& modules)
{
    const std::string place = MinidumpFile::Place(address, modules);
    return place.substr(0, place.rfind('+'));
}

} // namespace

std::vector<Dump> MinidumpDumps::Read(std::string_view bytes)
{
    const MinidumpFile file(bytes);
    const AddressSpace memory = file.Memory();
    const std::vector<MinidumpFile::Module> modules = file.Modules();
    const std::vector<RecorderLayout> layouts = RecorderLayout::FindAll(memory);
    if (layouts.empty())
        throw NoRecorder(std::string("the minidump does not hold a flight recorder") + kindsThatDo);

    std::vector<Dump> dumps;
    for (const RecorderLayout& layout : layouts) {
        std::optional<Dump> dump = RecorderMemory::Read(layout, memory, modules);
        if (!dump)
            continue;
        TimeAxis::PutInOrder(*dump);
        AddProcess(file, modules, *dump);
        dump->recorder = RecorderOf(layout.self, modules);
        dumps.push_back(std::move(*dump));
    }
    if (dumps.empty())
        throw NoRecorder(std::string("the minidump does not hold the ring of its flight recorder") +
                         kindsThatDo);
    std::stable_sort(dumps.begin(), dumps.end(), [](const Dump& one, const Dump& other) {
        return one.records.size() < other.records.size();
    });
    return dumps;
}
