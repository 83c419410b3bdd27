#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What is to be known about a dump beside its records: what is missing in it, and what is damaged.
struct Findings {
    bool noHeader = false;
    bool headerDamaged = false;
    bool noWallClock = false; ///< the recorder itself did not know it
    bool cutOff = false;
    std::size_t secondDumpLine = 0; ///< where another dump begins, 0 for nowhere
    std::size_t tornRecords = 0;    ///< whose two lines differ, or of which one is missing
    std::size_t halfWritten = 0;    ///< without a thread, which a writer stores last
    std::size_t outOfBounds = 0;
    std::size_t outOfOrder = 0; ///< later in the dump than a later event of the same thread
    std::size_t foreignLines = 0;
    std::size_t firstForeignLine = 0;
    std::size_t lostBegins = 0; ///< scopes that were entered before the oldest record
    std::size_t lostEnds = 0;   ///< scopes that were not left
    std::size_t strayEnds = 0;  ///< ends that fit no scope

    /// A sentence for each.
    std::vector<std::string> Sentences() const;
};
