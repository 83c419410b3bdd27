#pragma once

#include "engine/MExceptionSlot.h"
#include "examples/survey/module/SurveyReport.h"
#include "module/Runtime.h"

#include <string>

class ISurveyListener;

/// What the module offers beside the three functions of every module. Call from any thread but the
/// module's own.

/// Surveys the file at `path` on the module's engine thread and fills `report`. Progress goes to
/// `listener`, which may be null, under the caller's own number for the survey.
///
/// The slot that comes back holds the failure, if there was one: "CannotOpen" or "CannotRead" with
/// the parameters "path" and "winErrorCode". Raises what `ExecuteSynchronously` raises.
VAREK_API MExceptionSlot SurveyFile(const std::wstring& path, std::uint32_t survey,
                                    ISurveyListener* listener, SurveyReport& report);

/// Lets an exception end an engine thread of its own, and returns when that has happened. For
/// seeing what the host is told.
VAREK_API void SurveyFatal();

/// Writes through a null pointer on the engine thread. For seeing what then happens; it does not
/// return.
VAREK_API void SurveyCrash();
