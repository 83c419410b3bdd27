#pragma once

#include "viewer/model/records/Dump.h"

#include <string>

/// Shows a dump in every way, and aborts with the rule of its forms that is broken.
void CheckRules(Dump dump);
