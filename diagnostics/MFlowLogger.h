#pragma once

#include "diagnostics/MFlowLoggerImplementation.h"

/// The holder through which a module reaches its flow logger, and the handle by which a host joins
/// its own logger to a module's.
///
/// A program that links the framework has a flow logger of its own:
///
///     Varek::Runtime::AttachMFlowLogger(MFlowLogger::GetInstance()); // the module feeds our log
///     MFlowLogger::GetInstance()->GetImplementation()->DumpToStream(std::cout);
///
/// Traced code does not use this class but `MFlowLocation`.
class MFlowLogger
{
public:
    /// The module's holder, made at the first call and never freed.
    static MFlowLogger* GetInstance();

    /// Holds the module's own flow logger.
    MFlowLogger();

    /// Holds a logger of another kind, which is not owned.
    explicit MFlowLogger(MFlowLoggerImplementation* implementation);

    /// Never null.
    MFlowLoggerImplementation* GetImplementation() { return implementation; }

    /// Feeds this logger into `other`'s; a null `other`, or one that is no module's own logger,
    /// ends that. Does nothing on a null `this`.
    void Attach(MFlowLogger* other);

private:
    static MFlowLogger* MakeInstance();

    static MFlowLogger* instance;

    MFlowLoggerImplementation* implementation;
};

inline MFlowLogger* MFlowLogger::GetInstance()
{
    return instance ? instance : MakeInstance();
}
