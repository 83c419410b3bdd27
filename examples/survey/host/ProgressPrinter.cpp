#include "examples/survey/host/ProgressPrinter.h"

#include "examples/survey/host/Console.h"

#include <sstream>

#include <windows.h>

ProgressPrinter::ProgressPrinter(const std::vector<std::wstring>& paths)
    : paths(paths), complete(EventReset::Automatic)
{
}

void ProgressPrinter::OnProgress(std::uint32_t survey, std::uint32_t percent)
{
    std::wostringstream line;
    line << L"  ... " << paths[survey] << L" " << percent << L" %\n";
    Console::Print(line.str());
    if (percent == 100)
        SetEvent(complete);
}

void ProgressPrinter::AwaitCompletion()
{
    WaitForSingleObject(complete, INFINITE);
}
