#pragma once

#include <clocale>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cwchar>

// What is there on Windows without being asked for: words of its compilers, and what its C run time
// has in the standard headers beside the standard's own. Included ahead of every source.

#define __stdcall
#define __declspec(attribute)

#define _TRUNCATE (static_cast<std::size_t>(-1))

int _snprintf_s(char* text, std::size_t size, std::size_t count, const char* format, ...);
int _vscwprintf(const wchar_t* format, std::va_list arguments);
int _vsnwprintf(wchar_t* text, std::size_t size, const wchar_t* format, std::va_list arguments);
int _wcsnicmp(const wchar_t* a, const wchar_t* b, std::size_t count);

// Locales: the classic one under its name and as the default, and no other.

struct threadlocaleinfostruct {
    struct {
        const char* locale;
    } lc_category[6];
};

struct localeinfo_struct {
    threadlocaleinfostruct* locinfo;
};

typedef localeinfo_struct* _locale_t;

_locale_t _create_locale(int category, const char* name);
void _free_locale(_locale_t locale);
int _snprintf_l(char* text, std::size_t size, const char* format, _locale_t locale, ...);
int _vscwprintf_l(const wchar_t* format, _locale_t locale, std::va_list arguments);
int _vswprintf_s_l(wchar_t* text, std::size_t size, const wchar_t* format, _locale_t locale,
                   std::va_list arguments);
double _wcstod_l(const wchar_t* text, wchar_t** end, _locale_t locale);
int _swscanf_s_l(const wchar_t* text, const wchar_t* format, _locale_t locale, ...);
int _wtoi_l(const wchar_t* text, _locale_t locale);

std::size_t _msize(void* block);

// There is no way through the heap, and it looks empty.

const int _HEAPOK = -2;
const int _USEDENTRY = 1;

struct _HEAPINFO {
    int _useflag;
};

int _heapwalk(_HEAPINFO* block);
