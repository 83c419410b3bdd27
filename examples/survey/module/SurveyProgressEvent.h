#pragma once

#include "engine/MDesyncEvent.h"

#include <cstdint>

class ISurveyListener;

/// Carries the progress of a survey to its listener, over the scheduler thread.
class SurveyProgressEvent final : public MDesyncEvent
{
public:
    SurveyProgressEvent(ISurveyListener* listener, std::uint32_t survey, std::uint32_t percent);

    void Fire() override;

private:
    ISurveyListener* listener;
    std::uint32_t survey;
    std::uint32_t percent;
};
