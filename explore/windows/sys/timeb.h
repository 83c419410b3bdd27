#pragma once

#include <ctime>

struct __timeb64 {
    std::time_t time;
    unsigned short millitm;
    short timezone;
    short dstflag;
};

void _ftime64(__timeb64* now);
int _ctime64_s(char* text, std::size_t size, const std::time_t* time);
