#include "Kettle.h"

#include "diagnostics/MDiagnosticsRegistry.h"
#include "diagnostics/MFlowLogger.h"
#include "foundation/MException.h"

#include <fstream>
#include <iostream>

namespace
{

void Heat(unsigned degrees)
{
    const MExceptionSlot slot = HeatWater(degrees);
    std::wcout << L"Heating by " << degrees << L": ";
    if (const MError* failure = slot->GetFailure())
        std::wcout << failure->GetMessageText().c_str() << L"\n";
    else
        std::wcout << L"done\n";
}

} // namespace

int main()
{
    GetDiagnosticsRegistry()->RegisterThreadName(L"Host");
    Varek::Runtime::AttachMFlowLogger(MFlowLogger::GetInstance());

    Heat(30);
    Heat(40);
    Heat(30);
    Varek::Runtime::Shutdown();

    std::ofstream dump("kettle.log");
    MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(dump);
}
