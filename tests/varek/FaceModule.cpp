#include "tests/varek/FaceModule.h"

#include "varek/Call.h"
#include "varek/Post.h"
#include "varek/Testing.h" // without a framework

using std::chrono::milliseconds;

namespace
{

varek::Worker worker;

void ExpectError(const wchar_t* code, const Action& action)
{
    const varek::Recording recording;
    varek::Post(action);
    varek::AwaitEvents();
    recording.Expect(varek::Error(code));
}

} // namespace

FaceModule GetFaceModule()
{
    return {[](const Action& action) { varek::Call(action); },
            [](const Action& action) { varek::Post(action); },
            [](HANDLE handle, const Action& action) { worker.When(handle, action); },
            [](int period, const Action& action) { worker.Every(milliseconds(period), action); },
            [](int delay, const Action& action) { worker.After(milliseconds(delay), action); },
            [] { worker.Start(); },
            [] { worker.Stop(); },
            [] { varek::Watchdog(milliseconds(1000), nullptr); },
            ExpectError};
}
