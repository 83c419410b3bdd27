#include "varek/OpenHandles.h"

#include "explore/kernel/Handles.h"

std::size_t varek::CountOpenHandles()
{
    const Turn turn("CountOpenHandles");
    return CountHandles();
}
