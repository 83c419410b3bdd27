#pragma once

#include <cstddef>

/// Where the output goes when it goes nowhere else.
namespace Terminal
{

/// How many characters fit into a line of the terminal that standard output is; 0 if it is none.
std::size_t Width();

} // namespace Terminal
