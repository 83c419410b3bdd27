#pragma once

#include <cstddef>

/// Whether the blocks made from now on are the scenario's.
void MarkBlocks(bool scenarios);

/// Blocks of the scenario's that are out.
std::size_t MarkedBlocks();

/// The scenario's freed blocks are kept, filled with what no pointer can be, until this call.
void ForgetFreedBlocks();
