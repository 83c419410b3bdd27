#pragma once

#include <cstddef>

namespace varek
{

/// How many handles of the system this process holds open, any thread's. For tests of what is left
/// behind. Wine keeps no count: there the values that handles can have are tried one by one, which
/// takes some milliseconds, and ends where a hundred in a row are closed.
std::size_t CountOpenHandles();

} // namespace varek
