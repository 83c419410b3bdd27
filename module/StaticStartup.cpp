// The static start-up of a module, from top to bottom in the order in which it happens.
//
// These are all the objects of the framework that need construction, ahead of any other static of
// the image; no other file has one. Each uses only what stands above it, apart from the bases of
// the class records, which are addresses. All run on the thread that loads the module.

#include "diagnostics/ClassName.h"
#include "diagnostics/KLoggerInitialiser.h"
#include "diagnostics/MFlowLogger.h"
#include "diagnostics/MKLoggerAdapterInitialiser.h"
#include "engine/MCommandProcessor.h"
#include "engine/MCommandSynchronous.h"
#include "engine/MDesyncEventScheduler.h"
#include "engine/MEngineThread.h"
#include "engine/MSchedulerThread.h"
#include "foundation/MDynClass.h"
#include "foundation/MError.h"
#include "foundation/MErrorOutOfMemory.h"
#include "foundation/MLocale.h"
#include "foundation/StandardLocale.h"
#include "module/ModuleCommandProcessor.h"

#ifdef __GNUC__
#define IN_START_ORDER __attribute__((init_priority(101)))
#else
#pragma warning(disable : 4073)
#pragma init_seg(lib)
#define IN_START_ORDER
#endif

namespace
{

struct FlowLogger {
    FlowLogger() { MFlowLogger::GetInstance(); }
};

struct ClassicLocale {
    ClassicLocale() { MLocale::GetClassicLocale(); }
};

// The log first, since everything after it may log.
IN_START_ORDER MKLoggerAdapterInitialiser adapterInitialiser;
IN_START_ORDER FlowLogger flowLogger;
IN_START_ORDER ClassName registryName(MDiagnosticsRegistry::className);

IN_START_ORDER ClassName localeName(MLocale::className);
IN_START_ORDER StandardLocale defaultLocale = MakeStandardLocale(""); // nothing reads it
IN_START_ORDER ClassicLocale classicLocale;

IN_START_ORDER MString stringClassName(L"MString");

} // namespace

IN_START_ORDER const MDynClass MError::dynClass(L"MError", &MDynObject::dynClass);
IN_START_ORDER const MDynClass MErrorOutOfMemory::dynClass(L"MErrorOutOfMemory", &MError::dynClass);

namespace
{

// Identities reserved for errors that nothing raises yet.
IN_START_ORDER const MDynClass errorInternal(L"MErrorInternal", &MError::dynClass);
IN_START_ORDER const MDynClass errorDivisionByZero(L"MErrorDivisionByZero", &MError::dynClass);
IN_START_ORDER const MDynClass errorBadInput(L"MErrorBadInput", &MError::dynClass);
IN_START_ORDER const MDynClass errorUserEscape(L"MErrorUserEscape", &MError::dynClass);

IN_START_ORDER MString timeClassName(L"MTime");

} // namespace

IN_START_ORDER const MDynClass MDynObject::dynClass(L"MDynObject", nullptr);

namespace
{

IN_START_ORDER ClassName commandName(MCommandSynchronous::className);
IN_START_ORDER ClassName desyncSchedulerName(MDesyncEventScheduler::className);
IN_START_ORDER ClassName processorName(MCommandProcessor::className);
IN_START_ORDER ClassName engineThreadName(MEngineThread::className);
IN_START_ORDER ClassName schedulerThreadName(MSchedulerThread::className);

IN_START_ORDER KLoggerInitialiser loggerInitialiser;

IN_START_ORDER ClassName moduleName(ModuleCommandProcessor::className);

} // namespace
