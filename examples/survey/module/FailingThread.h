#pragma once

#include "engine/MEngineThread.h"

/// An engine thread that lets an exception out as soon as it has started, to show what reaches the
/// host then.
class FailingThread : public MEngineThread
{
public:
    static const wchar_t className[];

    explicit FailingThread(IThreadErrorHandler* errorHandler) : MEngineThread(errorHandler) {}

private:
    void ThreadFunction() override;
    void OnFlush() override {}
    void OnStop() override {}
};
