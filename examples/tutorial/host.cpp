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
    if (slot->GetErrorCount() == 0)
        std::wcout << L"done\n";
    else
        std::wcout << slot->GetError(0)->GetMessageText().c_str() << L"\n";
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
