#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What is to be known about a dump beside its records: what is missing in it, and what is damaged.
struct Findings {
    bool noHeader = false;
    bool headerDamaged = false;
    bool noWallClock = false;  ///< the recorder itself did not know it
    bool notMerged = false;    ///< without a wall clock to merge it by
    bool namesMissing = false; ///< the minidump does not hold them all
    bool cutOff = false;
    bool wasMailed = false;        ///< lines had been quoted, indented, trimmed or wrapped
    bool guessedUtf16 = false;     ///< without a mark that says so
    std::size_t firstLine = 0;     ///< where the header stands in its text, from 1
    std::size_t dumpsBeside = 0;   ///< in the same file
    std::size_t dumpNumber = 0;    ///< of this one among them, from 1
    std::string recorders;         ///< of a minidump: all that there are in it
    std::size_t ageJumps = 0;      ///< places at which the ages went over to another reference
    std::size_t tornRecords = 0;   ///< whose two lines differ, or of which one is missing
    std::size_t doubtfulNames = 0; ///< lines that can be read in several ways
    std::size_t halfWritten = 0;   ///< without a thread, which a writer stores last
    std::size_t outOfBounds = 0;
    std::size_t outOfOrder = 0; ///< later in the dump than a later event of the same thread
    std::size_t foreignLines = 0;
    std::size_t firstForeignLine = 0;
    std::size_t lostBegins = 0; ///< scopes that were entered before the oldest record
    std::size_t lostEnds = 0;   ///< scopes that were not left
    std::size_t strayEnds = 0;  ///< ends that fit no scope

    /// A sentence for each.
    std::vector<std::string> Sentences() const;

    std::string DumpsBeside() const;
};
