#pragma once

#include "viewer/model/Recording.h"

#include <string>

/// What was going on when the dump was taken: the scopes in which each thread was, and for how
/// long; its last event, and the silence since. The thread that crashed stands first, then those
/// that were active last. Below stand the errors that nothing had dismissed, with the scopes around
/// them.
class EndReport
{
public:
    /// Of what passes the filters.
    static std::string Compose(const Recording& recording);

private:
    explicit EndReport(const Recording& recording) : recording(recording) {}

    void AddThreads();
    void AddThread(const Timeline& timeline, const DumpRecord* last);
    void AddCrash();
    void AddIdle(const std::vector<std::int32_t>& idle);
    void AddErrors();
    void AddError(const DumpRecord& error);
    void AddLine(std::int64_t time, const std::string& what);

    const Recording& recording;
    std::string text;
};
