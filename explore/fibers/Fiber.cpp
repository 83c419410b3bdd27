#include "explore/fibers/Fiber.h"

#include <cstdint>
#include <cstring>
#include <cxxabi.h>
#include <vector>

#include <sys/mman.h>
#include <ucontext.h>

namespace
{

const std::size_t stackSize = 256 * 1024;

std::vector<void*> idleStacks;

void* TakeStack()
{
    if (idleStacks.empty())
        return mmap(nullptr, stackSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    void* const stack = idleStacks.back();
    idleStacks.pop_back();
    return stack;
}

void* ExceptionsOfThread()
{
    return abi::__cxa_get_globals();
}

} // namespace

Fiber::Fiber(std::function<void()> body) : body(std::move(body)), stack(TakeStack()), begun(false)
{
}

Fiber::~Fiber()
{
    if (stack)
        idleStacks.push_back(stack);
}

void Fiber::Enter(Fiber& from)
{
    std::memcpy(from.exceptions, ExceptionsOfThread(), sizeof exceptions);
    std::memcpy(ExceptionsOfThread(), exceptions, sizeof exceptions);
    if (_setjmp(from.place) == 0)
        Resume();
}

void Fiber::Resume()
{
    if (begun)
        _longjmp(place, 1);
    begun = true;
    ucontext_t context;
    getcontext(&context);
    context.uc_stack.ss_sp = stack;
    context.uc_stack.ss_size = stackSize;
    const auto self = reinterpret_cast<std::uintptr_t>(this);
    makecontext(&context, reinterpret_cast<void (*)()>(&Fiber::Begin), 2,
                static_cast<unsigned>(self >> 32), static_cast<unsigned>(self));
    setcontext(&context);
}

// The arguments of a context are ints.
void Fiber::Begin(unsigned high, unsigned low)
{
    reinterpret_cast<Fiber*>(std::uintptr_t{high} << 32 | low)->body();
}
