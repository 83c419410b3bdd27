#include <CRuntime.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include <malloc.h>
#include <sys/timeb.h>

namespace
{

/// Windows' name for the length of 64 bits, as everybody else writes it.
std::string StandardFormat(std::string format)
{
    for (std::size_t at; (at = format.find("I64")) != std::string::npos;)
        format.replace(at, 3, "ll");
    return format;
}

} // namespace

int _snprintf_s(char* text, std::size_t size, std::size_t, const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text, size, StandardFormat(format).c_str(), arguments);
    va_end(arguments);
    return length;
}

// A text is measured by being written to memory.
int _vscwprintf(const wchar_t* format, std::va_list arguments)
{
    wchar_t* text = nullptr;
    std::size_t length = 0;
    std::FILE* const memory = open_wmemstream(&text, &length);
    const int written = std::vfwprintf(memory, format, arguments);
    std::fclose(memory);
    std::free(text);
    return written;
}

int _vsnwprintf(wchar_t* text, std::size_t size, const wchar_t* format, std::va_list arguments)
{
    return std::vswprintf(text, size, format, arguments);
}

int _wcsnicmp(const wchar_t* a, const wchar_t* b, std::size_t count)
{
    return wcsncasecmp(a, b, count);
}

_locale_t _create_locale(int, const char* name)
{
    static threadlocaleinfostruct classic = {};
    const bool known = *name == 0 || std::strcmp(name, "C") == 0 || std::strcmp(name, "POSIX") == 0;
    return known ? new localeinfo_struct{&classic} : nullptr;
}

void _free_locale(_locale_t locale)
{
    delete locale;
}

int _snprintf_l(char* text, std::size_t size, const char* format, _locale_t locale, ...)
{
    std::va_list arguments;
    va_start(arguments, locale);
    const int length = std::vsnprintf(text, size, format, arguments);
    va_end(arguments);
    return length;
}

int _vscwprintf_l(const wchar_t* format, _locale_t, std::va_list arguments)
{
    return _vscwprintf(format, arguments);
}

int _vswprintf_s_l(wchar_t* text, std::size_t size, const wchar_t* format, _locale_t,
                   std::va_list arguments)
{
    return std::vswprintf(text, size, format, arguments);
}

// Decimal forms only.
double _wcstod_l(const wchar_t* text, wchar_t** end, _locale_t)
{
    const std::wstring number(text, std::wcsspn(text, L" \t\n\r\f\v+-.0123456789eE"));
    wchar_t* stop = nullptr;
    const double value = std::wcstod(number.c_str(), &stop);
    *end = const_cast<wchar_t*>(text) + (stop - number.c_str());
    return value;
}

int _swscanf_s_l(const wchar_t* text, const wchar_t* format, _locale_t locale, ...)
{
    std::va_list arguments;
    va_start(arguments, locale);
    const int read = std::vswscanf(text, format, arguments);
    va_end(arguments);
    return read;
}

int _wtoi_l(const wchar_t* text, _locale_t)
{
    return static_cast<int>(std::wcstol(text, nullptr, 10));
}

std::size_t _msize(void* block)
{
    return malloc_usable_size(block);
}

int _heapwalk(_HEAPINFO*)
{
    return 0;
}

void _ftime64(__timeb64* now)
{
    timespec time = {};
    timespec_get(&time, TIME_UTC);
    *now = {time.tv_sec, static_cast<unsigned short>(time.tv_nsec / 1000000), 0, 0};
}

int _ctime64_s(char* text, std::size_t, const std::time_t* time)
{
    return ctime_r(time, text) ? 0 : -1;
}
