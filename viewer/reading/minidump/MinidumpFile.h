#pragma once

#include "viewer/reading/minidump/AddressSpace.h"

#include <string>

/// A minidump of Windows, taken apart. Whatever its numbers say, only what lies inside the file is
/// read; parts that do not are as if they were missing.
class MinidumpFile
{
public:
    struct Module {
        std::uint64_t begin;
        std::uint64_t size;
        std::string name; ///< without its folder, UTF-8

        bool Holds(std::uint64_t address) const { return address - begin < size; }
    };

    struct Exception {
        std::uint32_t threadId;
        std::uint32_t code;
        std::uint64_t address;
        std::uint32_t parameters; ///< how many of the following count
        std::uint64_t parameter[2];
    };

    /// Whether a file begins like one.
    static bool IsOne(std::string_view bytes);

    /// The bytes have to outlive it.
    explicit MinidumpFile(std::string_view file);

    std::vector<Module> Modules() const;
    std::optional<Exception> ExceptionStream() const;

    /// Ids of the threads that there were; empty where the file does not tell.
    std::vector<std::uint32_t> Threads() const;

    /// "Windows 10.0.19045, 8 processors", empty where the file does not tell.
    std::string System() const;

    /// Of both kinds of memory lists, and of the streams that recorders have of their own.
    AddressSpace Memory() const;

    /// "survey.dll+1A2B", or the address alone.
    static std::string Place(std::uint64_t address, const std::vector<Module>& modules);

private:
    std::optional<Bytes> Stream(std::uint32_t type) const;
    std::string Text(std::uint32_t offset) const;
    void AddRecorderBlocks(std::vector<AddressSpace::Range>& ranges) const;
    void AddMemoryList(std::vector<AddressSpace::Range>& ranges) const;
    void AddMemory64List(std::vector<AddressSpace::Range>& ranges) const;

    const Bytes file;
};
