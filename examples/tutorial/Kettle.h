#pragma once

#include "engine/MExceptionSlot.h"
#include "module/Runtime.h"

/// Heats the water by so many degrees, on the module's own thread, while the caller waits. What
/// went wrong, if anything, is in the slot that comes back. Raises `MException` after `Shutdown`.
VAREK_API MExceptionSlot HeatWater(unsigned degrees);
