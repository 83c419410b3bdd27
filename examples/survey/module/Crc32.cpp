#include "examples/survey/module/Crc32.h"

namespace
{

struct Table {
    std::uint32_t remainders[256];

    Table()
    {
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t remainder = i;
            for (int bit = 0; bit < 8; ++bit)
                remainder = (remainder >> 1) ^ (remainder & 1 ? 0xEDB88320 : 0);
            remainders[i] = remainder;
        }
    }
};

} // namespace

void Crc32::Add(const char* data, std::size_t size)
{
    static const Table table;
    for (std::size_t i = 0; i < size; ++i) {
        const std::uint32_t index = (remainder ^ static_cast<unsigned char>(data[i])) & 0xFF;
        remainder = (remainder >> 8) ^ table.remainders[index];
    }
}
