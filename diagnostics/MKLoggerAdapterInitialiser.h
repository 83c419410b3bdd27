#pragma once

/// The first static object of a module: it brings up the flow logger, and the log core under it,
/// before anything else can log. Only its address is used, as an object name in the log.
class MKLoggerAdapterInitialiser
{
public:
    MKLoggerAdapterInitialiser();
};
