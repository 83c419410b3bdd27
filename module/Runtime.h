#pragma once

#include "module/CallbackFunctor1Param.h"

#include <memory>
#include <string>

#ifdef VAREK_BUILDING_MODULE
#define VAREK_API __declspec(dllexport)
#else
/// In front of a function: the module exports it, and others import it.
#define VAREK_API __declspec(dllimport)
#endif

class MFlowLogger;
struct _EXCEPTION_POINTERS;

namespace Varek
{

/// What a host calls. Make the first of these calls from one thread; host and module come from the
/// same toolchain, since standard types pass between them.
namespace Runtime
{

/// Joins the host's flow logger to the module's: from now on the module's events and names go to
/// both. The logger is not owned and must stay for as long as the module does. A null logger
/// changes nothing; one that is no `MKLoggerAdapter` underneath ends the joining. Starts no thread.
VAREK_API void AttachMFlowLogger(MFlowLogger* logger);

/// Starts the module's two threads if need be, and replaces both callbacks for fatal failures.
/// Either may be empty, which removes that callback. The module owns them; it deletes the ones it
/// had.
///
/// `onSpontaneousError` is called with text when an `MException` ends an engine thread: an XML
/// document with the root "ExceptionChain" and in it the errors, or an empty text when the chain
/// could not be filed. `onCrash` is called with the raw context of a machine fault, or of a foreign
/// C++ exception, on the faulting thread and with its stack intact; the fault then goes on, and
/// unless the host catches it elsewhere the process ends. Both run on the engine thread that
/// failed. Nothing restarts it.
///
/// Register once, at the start. Raises the `MException` of a failed start; both callbacks are then
/// deleted uncalled.
VAREK_API void RegisterFatalErrorHandlers(
    std::auto_ptr<CallbackFunctor1Param<const std::wstring&>> onSpontaneousError,
    std::auto_ptr<CallbackFunctor1Param<_EXCEPTION_POINTERS*>> onCrash);

/// Stops the module for good: has the module's own code stop what it has started, executes what is
/// queued by then, ends both threads. Commands that arrive meanwhile are refused, their callers
/// told. May be repeated; the module does not start again before it is loaded anew.
///
/// Raises the `MException` of a failed start or stop. Called on one of the module's two threads it
/// raises "CannotStopSelf" (from a command) or "CannotFlushSelf" (from an event) at once.
VAREK_API void Shutdown();

} // namespace Runtime
} // namespace Varek
