#pragma once

/// Makes the log core at static start-up if nothing has needed it before. Only its address is used,
/// as an object name in the log.
class KLoggerInitialiser
{
public:
    KLoggerInitialiser();
};
