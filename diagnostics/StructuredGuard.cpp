#include "diagnostics/StructuredGuard.h"

#include <windows.h>

#if defined(__GNUC__) && !defined(__clang__)

// This compiler has no __try. The routine below is the same thing by hand: a frame whose handler is
// the system's own __C_specific_handler with a scope table of one row. The filter is entered with
// the pointers in rcx and the frame's stack pointer in rdx, where the two arguments were kept.
asm(R"(
    .text
    .p2align 4
    .seh_proc VarekRunGuarded
VarekRunGuarded:
    pushq %rbp
    .seh_pushreg %rbp
    subq $48, %rsp
    .seh_stackalloc 48
    .seh_endprologue
    .seh_handler __C_specific_handler, @except
    movq %rdx, 32(%rsp)
    movq %r8, 40(%rsp)
    movq %rcx, %rax
    movq %r8, %rcx
.LguardBegin:
    call *%rax
    nop
.LguardEnd:
    movl $1, %eax
.LguardLeave:
    addq $48, %rsp
    popq %rbp
    ret
.LguardAccepted:
    xorl %eax, %eax
    jmp .LguardLeave
.LguardFilter:
    movq %rdx, %rax
    movq %rcx, %rdx
    movq 40(%rax), %rcx
    jmp *32(%rax)
    .seh_handlerdata
    .long 1
    .rva .LguardBegin, .LguardEnd, .LguardFilter, .LguardAccepted
    .text
    .seh_endproc
)");

extern "C" int VarekRunGuarded(GuardedBody body, GuardFilter filter, void* context);

bool RunGuarded(GuardedBody body, GuardFilter filter, void* context)
{
    return VarekRunGuarded(body, filter, context) != 0;
}

#else

bool RunGuarded(GuardedBody body, GuardFilter filter, void* context)
{
    __try {
        body(context);
        return true;
    } __except (filter(context, GetExceptionInformation())) {
        return false;
    }
}

#endif
