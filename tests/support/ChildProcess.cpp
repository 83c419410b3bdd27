#include "tests/support/ChildProcess.h"

#include <cstring>

#include <windows.h>

namespace
{

const char option[] = "--scenario";
const DWORD hangMs = 20000;
const UINT hangExitCode = 124;
const DWORD pipeBytes = 0x10000; // what a child can say before it ends

const ChildScenario* scenarios = nullptr;

std::string ReadToEnd(HANDLE pipe)
{
    std::string text;
    char chunk[4096];
    DWORD got = 0;
    while (ReadFile(pipe, chunk, sizeof chunk, &got, nullptr) && got > 0)
        text.append(chunk, got);
    return text;
}

std::string ComposeCommandLine(const char* scenario)
{
    char executable[MAX_PATH];
    GetModuleFileNameA(nullptr, executable, MAX_PATH);
    return std::string("\"") + executable + "\" " + option + " " + scenario;
}

} // namespace

ChildScenario::ChildScenario(const char* name, int (*body)())
    : name(name), body(body), next(scenarios)
{
    scenarios = this;
}

ChildOutcome ChildScenario::RunInChild() const
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    CreatePipe(&readEnd, &writeEnd, &inherited, pipeBytes);
    SetHandleInformation(readEnd, HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = writeEnd;
    PROCESS_INFORMATION child = {};
    std::string commandLine = ComposeCommandLine(name);
    const bool created = CreateProcessA(nullptr, &commandLine[0], nullptr, nullptr, TRUE, 0,
                                        nullptr, nullptr, &startup, &child) != 0;
    CloseHandle(writeEnd);

    if (!created)
        return {0xFFFFFFFF, "no child process"};
    if (WaitForSingleObject(child.hProcess, hangMs) == WAIT_TIMEOUT)
        TerminateProcess(child.hProcess, hangExitCode);
    WaitForSingleObject(child.hProcess, INFINITE);
    DWORD exitCode = 0;
    GetExitCodeProcess(child.hProcess, &exitCode);
    const ChildOutcome outcome = {exitCode, ReadToEnd(readEnd)};
    CloseHandle(readEnd);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    return outcome;
}

bool ChildScenario::IsChild(int argc, char** argv, int& exitCode)
{
    if (argc != 3 || std::strcmp(argv[1], option) != 0)
        return false;
    const ChildScenario* scenario = scenarios;
    while (scenario && std::strcmp(scenario->name, argv[2]) != 0)
        scenario = scenario->next;
    exitCode = scenario ? scenario->body() : 125;
    return true;
}
