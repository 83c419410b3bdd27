#include "diagnostics/dump/RecorderBlocks.h"

#include "diagnostics/StructuredGuard.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include <windows.h>

#include <psapi.h>

namespace
{

const char* AtOffset(const void* start, std::uint64_t offset)
{
    return static_cast<const char*>(start) + offset;
}

std::uint64_t AddressOf(const void* place)
{
    return reinterpret_cast<std::uintptr_t>(place);
}

template <class Value>
Value Read(std::uint64_t address)
{
    Value value;
    std::memcpy(&value, reinterpret_cast<const void*>(address), sizeof value);
    return value;
}

/// What stands in the section of an image that descriptions stand in; null when it has none.
const RecorderDescription* FindDescription(const void* image)
{
    const auto& dos = *static_cast<const IMAGE_DOS_HEADER*>(image);
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(
        AtOffset(image, static_cast<std::uint32_t>(dos.e_lfanew)));
    const IMAGE_SECTION_HEADER* const sections = IMAGE_FIRST_SECTION(&headers);
    for (const IMAGE_SECTION_HEADER* section = sections;
         section != sections + headers.FileHeader.NumberOfSections; ++section)
        if (std::memcmp(section->Name, "recorder", sizeof section->Name) == 0)
            return reinterpret_cast<const RecorderDescription*>(
                AtOffset(image, section->VirtualAddress));
    return nullptr;
}

bool IsUnderstood(const RecorderDescription& description)
{
    return std::memcmp(description.marker, "Varek recorder\x1A", sizeof description.marker) == 0 &&
           description.version == 1 && description.self == &description && description.core;
}

} // namespace

void RecorderBlocks::Collect()
{
    DWORD bytes = 0;
    HMODULE* const found = reinterpret_cast<HMODULE*>(images);
    count = 0;
    if (!EnumProcessModules(GetCurrentProcess(), found, sizeof images, &bytes))
        return;
    const DWORD imageCount = std::min<DWORD>(bytes, sizeof images) / sizeof *found;
    std::for_each(images, images + imageCount, [this](void* image) { CollectImage(image); });
}

// An image can go, and a recorder be overwritten, so each is looked at under a guard of its own.
void RecorderBlocks::CollectImage(const void* image)
{
    struct Look {
        RecorderBlocks* blocks;
        const void* image;
    } look = {this, image};
    const GuardedBody collect = [](void* context) {
        const Look& guarded = *static_cast<const Look*>(context);
        const RecorderDescription* const description = FindDescription(guarded.image);
        if (description && IsUnderstood(*description))
            guarded.blocks->AddRecorder(*description);
    };
    const GuardFilter acceptAll = [](void*, _EXCEPTION_POINTERS*) -> long { return GuardAccept; };
    RunGuarded(collect, acceptAll, &look);
}

void RecorderBlocks::AddRecorder(const RecorderDescription& description)
{
    const std::uint64_t core = AddressOf(description.core);
    Add(AddressOf(&description), description.size);
    Add(core, description.coreSize);
    if (const auto ring = Read<std::uint64_t>(core + description.records))
        Add(ring, std::uint64_t{description.recordSize} *
                      Read<std::uint32_t>(core + description.capacity));
    for (const std::uint32_t table :
         {description.kindNames, description.threadNames, description.idNames,
          description.stateNames, description.objectNames})
        AddNames(description, core + table);
}

void RecorderBlocks::AddNames(const RecorderDescription& description, std::uint64_t table)
{
    std::uint64_t block = Read<std::uint64_t>(table + description.newestBlock);
    while (block && Add(block, Read<std::uint64_t>(block + description.blockSize)))
        block = Read<std::uint64_t>(block + description.olderBlock);
}

/// False when there is no room any more.
bool RecorderBlocks::Add(std::uint64_t address, std::uint64_t size)
{
    if (count == capacity)
        return false;
    blocks[count++] = {address, size};
    return true;
}
