#pragma once

/// Has machine faults raise structured exceptions from now on.
void RaiseOnFaults();
