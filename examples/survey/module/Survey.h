#pragma once

#include "examples/survey/module/SurveyReport.h"
#include "varek/Export.h"

#include <functional>
#include <string>

/// What the module offers beside the three functions of every module. Call from any thread but the
/// module's own.

/// Told how much of a file has been surveyed. Called on the module's scheduler thread, one call at
/// a time, later than the survey goes on, and possibly after it has ended.
typedef std::function<void(std::uint32_t percent)> SurveyProgress;

/// Surveys the file at `path` on the module's engine thread. Raises "CannotOpen" or "CannotRead"
/// with the parameters "path" and "winErrorCode", and what `varek::Call` raises.
VAREK_API SurveyReport SurveyFile(const std::wstring& path, const SurveyProgress& onProgress);

/// Lets an exception end an engine thread of its own, and returns when that has happened. For
/// seeing what the host is told.
VAREK_API void SurveyFatal();

/// Writes through a null pointer on the engine thread. For seeing what then happens; it does not
/// return.
VAREK_API void SurveyCrash();
