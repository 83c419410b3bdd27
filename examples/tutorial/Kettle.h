#pragma once

#include <varek/Export.h>

#include <functional>

/// Heats the water by so many degrees, on the module's own thread, while the caller waits. Raises
/// "Kettle.Heat:Boils" when it gets too hot, and has `whistle` called, on another thread.
VAREK_API void HeatWater(unsigned degrees, std::function<void(unsigned temperature)> whistle);
