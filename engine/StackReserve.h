#pragma once

/// Keeps room at the end of the calling thread's stack, so that an overflow leaves enough of it to
/// run the failure handlers and the host's callback.
void ReserveStackForFailures();
