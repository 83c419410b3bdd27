#pragma once

#include <cstdint>

class KLogger;

/// Where the flight recorder of a module lies and how to read it out of raw memory: for tools that
/// have a dump of the process, and neither symbols nor the compiler that built it.
///
/// The image of every module and host that records holds one, in a section named "recorder". What
/// is said here is all that a reader needs; numbers are little-endian, addresses have 64 bits, and
/// offsets are counted in bytes from the start of what they lie in.
///
/// **Finding it.** Look for `marker` in the memory of the dump, at addresses divisible by 16; what
/// is found is a description when `self` is the address where it stands. There can be several in a
/// process, one in each image. A reader goes by `version` and refuses one that it does not know; a
/// later description of the same version may be longer, which `size` tells, and begins like this.
///
/// **The core** lies at `core`. From there:
///
/// - The ring is `capacity` records of `recordSize` bytes, at the address held by `records`. Record
///   number n stands in slot n modulo `capacity`; `writeIndex` is the number of the latest, and
///   runs from 0xFFFFFFFF on, which is none yet, over 0 and up, and round. The oldest record is the
///   one behind the latest, or the one in slot 0 if that slot is all zero. A slot of zeroes has
///   never been written; any slot can be in the middle of being written.
/// - A record's `time` counts ticks, of which `counterFrequency` make a second. The recorder was
///   started at the tick `startCounter`, when the clock on the wall showed `startSeconds` since
///   1970 (UTC) and `startMilliseconds`; `startDate` is that instant as text in the local time of
///   the process, 26 bytes at most, with a line end and a zero, and empty if it could not be told.
/// - There are five tables of names: of kinds of events, by kind; of threads, by id; of classes,
///   functions and errors, by the low 32 bits of the address of the wide literal of that name; of
///   states, by id of the class times 100 plus state, cut to 32 bits, and of messages, by id; and
///   of objects, by address.
///
/// **A table of names** is a list. Its `newestName` is the address of the name given last, and the
/// name's `olderName` that of the one before; 0 ends it. A name's `nameKey` has 64 bits, of which
/// all tables but that of objects use the lower 32. Its text is `nameLength` bytes at `nameText`,
/// followed by a zero. Names are only ever added, and complete before they can be found. The memory
/// that the names of a table lie in is a list too, for who copies it: from the table's
/// `newestBlock` over the `olderBlock` of each block to 0; a block's `blockSize` is its bytes from
/// its address on.
///
/// **In a minidump** written by `CrashDump` the memory of the recorders is kept in streams of its
/// own: one of the type `RecorderBlocksStream`, which holds a `RecorderBlock` for each piece of
/// memory, and for the piece of index i one of the type `RecorderFirstBlockStream` + i with its
/// bytes. Descriptions, cores, rings and names are all among them. Other dumps have the same bytes
/// in their lists of memory, if they hold the process's private memory and the data of its images.
struct RecorderDescription {
    char marker[16];                 ///< 0: "Varek recorder", then the bytes 1A and 00
    std::uint32_t version;           ///< 16: 1
    std::uint32_t size;              ///< 20: bytes of this description, 168
    const RecorderDescription* self; ///< 24: the address of this description
    const KLogger* core;             ///< 32: the address of the core; 0 before there is one

    // Offsets in the core.
    std::uint32_t coreSize;          ///< 40: bytes of the core itself
    std::uint32_t records;           ///< 44: u64, address of the ring; 0 when there is none
    std::uint32_t counterFrequency;  ///< 48: i64, ticks a second
    std::uint32_t startSeconds;      ///< 52: i64
    std::uint32_t startMilliseconds; ///< 56: u16
    std::uint32_t startCounter;      ///< 60: i64
    std::uint32_t startDate;         ///< 64: 26 bytes
    std::uint32_t capacity;          ///< 68: u32, slots in the ring
    std::uint32_t writeIndex;        ///< 72: u32
    std::uint32_t kindNames;         ///< 76: table of names
    std::uint32_t threadNames;       ///< 80: table of names
    std::uint32_t idNames;           ///< 84: table of names
    std::uint32_t stateNames;        ///< 88: table of names
    std::uint32_t objectNames;       ///< 92: table of names

    // Offsets in a record.
    std::uint32_t recordSize; ///< 96: bytes of a record
    std::uint32_t time;       ///< 100: i64, ticks
    std::uint32_t kind;       ///< 104: i32
    std::uint32_t param1;     ///< 108: u32
    std::uint32_t param2;     ///< 112: u32
    std::uint32_t classId;    ///< 116: u32
    std::uint32_t pointId;    ///< 120: u32
    std::uint32_t object;     ///< 124: u64, an address
    std::uint32_t threadId;   ///< 128: u32

    // Offsets in a table of names.
    std::uint32_t newestName;  ///< 132: u64, address of a name; 0 when there is none
    std::uint32_t newestBlock; ///< 136: u64, address of a block; 0 when there is none

    // Offsets in a name.
    std::uint32_t olderName;  ///< 140: u64, address of a name; 0 when there is none
    std::uint32_t nameKey;    ///< 144: u64
    std::uint32_t nameLength; ///< 148: u64, bytes of the text
    std::uint32_t nameText;   ///< 152: the first byte of the text

    // Offsets in a block of names.
    std::uint32_t olderBlock; ///< 156: u64, address of a block; 0 when there is none
    std::uint32_t blockSize;  ///< 160: u64, bytes of the block

    std::uint32_t reserved; ///< 164: 0
};

static_assert(sizeof(RecorderDescription) == 168, "its bytes are what readers go by");

/// One piece of recorder memory in a minidump.
struct RecorderBlock {
    std::uint64_t address; ///< where it lay
    std::uint64_t size;    ///< its bytes
};

/// The types of the streams in a minidump that hold the memory of recorders.
enum RecorderStream : std::uint32_t {
    RecorderBlocksStream = 0x56520001, ///< the list of the pieces
    RecorderFirstBlockStream =
        0x56530000 ///< the bytes of the first piece; those of the next follow
};
