#include <algorithm>
#include <codecvt>
#include <locale>

#include <windows.h>

namespace
{

typedef std::wstring_convert<std::codecvt_utf8<wchar_t>> Utf8;

/// Answers how long the text is, and puts it where there is room.
template <class Text, class Unit>
int Give(const Text& text, Unit* room, int size)
{
    std::copy_n(text.begin(), std::min<std::size_t>(text.size(), size), room);
    return static_cast<int>(text.size());
}

} // namespace

int WideCharToMultiByte(unsigned, DWORD, const wchar_t* text, int length, char* bytes, int size,
                        const char*, BOOL*)
{
    return Give(Utf8().to_bytes(text, text + length), bytes, size);
}

int MultiByteToWideChar(unsigned, DWORD, const char* bytes, int size, wchar_t* text, int length)
{
    return Give(Utf8().from_bytes(bytes, bytes + size), text, length);
}
