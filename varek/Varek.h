#pragma once

/// \file
/// The whole face but for what tests use, varek/Testing.h.

#include "varek/Call.h"
#include "varek/CancelToken.h"
#include "varek/Errors.h"
#include "varek/Filing.h"
#include "varek/Host.h"
#include "varek/Post.h"
#include "varek/Text.h"
#include "varek/Trace.h"
#include "varek/Watchdog.h"
#include "varek/Worker.h"
