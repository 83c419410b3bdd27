#include "tests/support/ProcessHandles.h"

#include "explore/kernel/Faults.h"
#include "explore/kernel/Handles.h"

namespace
{

const struct FaultsRaise {
    FaultsRaise() { RaiseOnFaults(); }
} faultsRaise;

} // namespace

std::set<void*> ListHandles()
{
    std::set<void*> handles;
    const Turn turn("ListHandles");
    VisitHandles(
        [](void* found, HANDLE handle) { static_cast<std::set<void*>*>(found)->insert(handle); },
        &handles);
    return handles;
}
