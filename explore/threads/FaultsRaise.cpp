#include "explore/kernel/Faults.h"

namespace
{

const struct FaultsRaise {
    FaultsRaise() { RaiseOnFaults(); }
} faultsRaise;

} // namespace
