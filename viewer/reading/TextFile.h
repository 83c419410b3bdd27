#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Files as a whole, byte by byte; "-" is standard input or output. Failure raises
/// `std::system_error` with the name of the file and the system's reason.
namespace TextFile
{

std::string Read(const std::filesystem::path& file);
void Write(const std::filesystem::path& file, std::string_view text);

} // namespace TextFile
