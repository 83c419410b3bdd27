#include "examples/survey/module/Survey.h"

#include "examples/survey/module/FailingThread.h"
#include "examples/survey/module/SurveyCommand.h"
#include "foundation/MException.h"
#include "module/ModuleCommandProcessor.h"

namespace
{

class CrashCommand : public MCommandSynchronous
{
public:
    CrashCommand() : MCommandSynchronous(MExceptionSlot()) {}

private:
    void Execute() override
    {
        volatile int* const nowhere = nullptr;
        *nowhere = 1;
    }
};

void ExecuteOnEngineThread(MCommandSynchronous* command)
{
    std::auto_ptr<MCommandSynchronous> owned(command);
    ModuleCommandProcessor::GetInstance().GetCommandProcessor()->ExecuteSynchronously(owned);
}

} // namespace

MExceptionSlot SurveyFile(const std::wstring& path, std::uint32_t survey, ISurveyListener* listener,
                          SurveyReport& report)
{
    const MExceptionSlot slot(std::auto_ptr<MException>(new MException));
    ExecuteOnEngineThread(new SurveyCommand(slot, path, survey, listener, report));
    return slot;
}

void SurveyFatal()
{
    FailingThread thread(&ModuleCommandProcessor::GetInstance());
    thread.Start();
    thread.Stop();
}

void SurveyCrash()
{
    ExecuteOnEngineThread(new CrashCommand);
}
