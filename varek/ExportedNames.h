#pragma once

namespace varek
{

/// The names under which a module exports its three functions, for those who look them up by
/// `GetProcAddress`. `Host` does.
struct ExportedNames {
    const char* attachMFlowLogger;          ///< joins logs
    const char* registerFatalErrorHandlers; ///< takes the callbacks
    const char* shutdown;                   ///< ends the module's threads
};

// clang-format off

/// By GCC and clang for mingw, with the standard library of GCC. Verified with both.
const ExportedNames mingwNames = {
    "_ZN5Varek7Runtime17AttachMFlowLoggerEP11MFlowLogger",
    "_ZN5Varek7Runtime26RegisterFatalErrorHandlersESt8auto_ptrINS0_21CallbackFunctor1ParamIRKNSt7__cxx1112basic_stringIwSt11char_traitsIwESaIwEEEEEES1_INS2_IP19_EXCEPTION_POINTERSEEE",
    "_ZN5Varek7Runtime8ShutdownEv"};

/// By the native compiler. Verified only as far as clang gives them for that compiler's target.
const ExportedNames nativeNames = {
    "?AttachMFlowLogger@Runtime@Varek@@YAXPEAVMFlowLogger@@@Z",
    "?RegisterFatalErrorHandlers@Runtime@Varek@@YAXV?$auto_ptr@V?$CallbackFunctor1Param@AEBV?$basic_string@_WU?$char_traits@_W@std@@V?$allocator@_W@2@@std@@@Runtime@Varek@@@std@@V?$auto_ptr@V?$CallbackFunctor1Param@PEAU_EXCEPTION_POINTERS@@@Runtime@Varek@@@4@@Z",
    "?Shutdown@Runtime@Varek@@YAXXZ"};

// clang-format on

} // namespace varek
