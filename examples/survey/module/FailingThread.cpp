#include "examples/survey/module/FailingThread.h"

#include "diagnostics/ClassName.h"
#include "diagnostics/MFlowLocation.h"
#include "foundation/MError.h"

const wchar_t FailingThread::className[] = L"FailingThread";

namespace
{

const ClassName registered(FailingThread::className);

} // namespace

void FailingThread::ThreadFunction()
{
    static MFlowLocation location(className, L"ThreadFunction");
    MFlowScope scope(location.SetObject(this));
    SignalThreadStarted();

    MError error;
    location.SetObject(this).SetLine(__LINE__).RaiseRootError(error, L"FailedOnRequest");
    error.AddParameter(L"option", L"--fatal");
    location.Throw(error);
}
