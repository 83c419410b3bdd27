#include "viewer/reading/TextFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <system_error>

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace
{

struct Close {
    void operator()(std::FILE* stream) const { std::fclose(stream); }
};
using Stream = std::unique_ptr<std::FILE, Close>;

const std::filesystem::path standard = "-";

[[noreturn]] void Fail(const std::string& name)
{
    throw std::system_error(errno, std::generic_category(), name);
}

#ifdef _WIN32

Stream Open(const std::filesystem::path& file, bool toWrite)
{
    return Stream(_wfopen(file.c_str(), toWrite ? L"wb" : L"rb"));
}

void PassLineEnds(std::FILE* stream)
{
    _setmode(_fileno(stream), _O_BINARY);
}

#else

Stream Open(const std::filesystem::path& file, bool toWrite)
{
    return Stream(std::fopen(file.c_str(), toWrite ? "wb" : "rb"));
}

void PassLineEnds(std::FILE*) {}

#endif

std::string ReadAll(std::FILE* source, std::size_t expectedLength, const std::string& name)
{
    std::string text;
    std::size_t length = 0;
    do {
        text.resize(std::max(expectedLength + 1, length * 2));
        length += std::fread(&text[length], 1, text.size() - length, source);
    } while (length == text.size());
    if (std::ferror(source))
        Fail(name);
    text.resize(length);
    return text;
}

void WriteAll(std::FILE* sink, std::string_view text, const std::string& name)
{
    if (std::fwrite(text.data(), 1, text.size(), sink) != text.size() || std::fflush(sink) != 0)
        Fail(name);
}

std::size_t ExpectedLength(const std::filesystem::path& file)
{
    constexpr std::uintmax_t most = 1 << 30; // a device can claim anything; an error counts as more
    constexpr std::size_t usual = 1 << 16;
    std::error_code error;
    const std::uintmax_t length = std::filesystem::file_size(file, error);
    return length > most ? usual : static_cast<std::size_t>(length);
}

} // namespace

std::string TextFile::Read(const std::filesystem::path& file)
{
    if (file == standard) {
        PassLineEnds(stdin);
        return ReadAll(stdin, ExpectedLength(file), "standard input");
    }
    const Stream stream = Open(file, false);
    if (!stream)
        Fail(file.u8string());
    return ReadAll(stream.get(), ExpectedLength(file), file.u8string());
}

void TextFile::Write(const std::filesystem::path& file, std::string_view text)
{
    if (file == standard) {
        PassLineEnds(stdout);
        return WriteAll(stdout, text, "standard output");
    }
    const Stream stream = Open(file, true);
    if (!stream)
        Fail(file.u8string());
    WriteAll(stream.get(), text, file.u8string());
}
