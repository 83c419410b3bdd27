#pragma once

/// \file
/// VAREK_API, for the header that a module gives to its hosts.

#include "module/Runtime.h"
