#include "engine/StackReserve.h"

// A stack that overflows ends the process here.
void ReserveStackForFailures() {}
