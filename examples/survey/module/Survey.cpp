#include "examples/survey/module/Survey.h"

#include "examples/survey/module/SurveyCommand.h"
#include "varek/Call.h"
#include "varek/Errors.h"
#include "varek/Worker.h"

namespace
{

[[noreturn]] void FailOnRequest()
{
    VAREK_TRACE();
    VAREK_RAISE(L"FailedOnRequest").With(L"option", L"--fatal").Throw();
}

} // namespace

SurveyReport SurveyFile(const std::wstring& path, const SurveyProgress& onProgress)
{
    return varek::Call([&] { return SurveyCommand(path, onProgress).Execute(); });
}

void SurveyFatal()
{
    std::promise<void> begun;
    varek::Worker worker;
    worker.After(std::chrono::seconds(0), [&] {
        begun.set_value();
        FailOnRequest();
    });
    worker.Start();
    begun.get_future().wait();
    worker.Stop();
}

void SurveyCrash()
{
    varek::Call([] {
        volatile int* const nowhere = nullptr;
        *nowhere = 1;
    });
}
