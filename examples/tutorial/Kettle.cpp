#include "Kettle.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "engine/MCommandSynchronous.h"
#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"

#include <windows.h>

namespace
{

class Kettle
{
public:
    static const wchar_t className[];

    void Heat(unsigned degrees);

private:
    void HeatOneDegree();

    int temperature = 20;
};

const wchar_t Kettle::className[] = L"Kettle";
const ClassName kettleName(Kettle::className);

// Traced: recorded when it is entered and when it is left.
void Kettle::Heat(unsigned degrees)
{
    static MFlowLocation location(className, L"Heat");
    MFlowScope scope(location.SetObject(this), degrees);
    for (unsigned i = 0; i < degrees; ++i)
        HeatOneDegree();
}

// Can fail: the failure is recorded where it is raised.
void Kettle::HeatOneDegree()
{
    static MFlowLocation location(className, L"HeatOneDegree");
    if (temperature == 100) {
        MError error;
        location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"Boils");
        error.AddParameter(L"temperature", temperature);
        location.Throw(error);
    }
    Sleep(1);
    ++temperature;
}

Kettle kettle;

// A command: executed on the module's thread.
class HeatCommand : public MCommandSynchronous
{
public:
    HeatCommand(const MExceptionSlot& slot, unsigned degrees)
        : MCommandSynchronous(slot), degrees(degrees)
    {
    }

private:
    void Execute() override { kettle.Heat(degrees); }

    unsigned degrees;
};

} // namespace

MExceptionSlot HeatWater(unsigned degrees)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    ModuleCommandProcessor::GetInstance().GetCommandProcessor()->ExecuteSynchronously(
        std::auto_ptr<MCommandSynchronous>(new HeatCommand(slot, degrees)));
    return slot;
}
