#pragma once

#include <ctime>

typedef std::time_t __time64_t;

struct __timeb64 {
    std::time_t time;
    unsigned short millitm;
    short timezone;
    short dstflag;
};

void _ftime64(__timeb64* now);
int _ctime64_s(char* text, std::size_t size, const std::time_t* time);

inline __time64_t _time64(__time64_t* now)
{
    return std::time(now);
}

inline char* _ctime64(const __time64_t* time)
{
    return std::ctime(time);
}
