#pragma once

#include <cstdint>

/// Told how a survey gets on. Called on the module's scheduler thread, one call at a time, later
/// than the survey goes on, and possibly after it has ended: keep the listener until `Shutdown`.
class ISurveyListener
{
public:
    virtual void OnProgress(std::uint32_t survey, std::uint32_t percent) = 0;

protected:
    ~ISurveyListener() = default;
};
