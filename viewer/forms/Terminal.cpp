#include "viewer/forms/Terminal.h"

#ifdef _WIN32

#include <windows.h>

// A character in the last column would begin a new line.
std::size_t Terminal::Width()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info))
        return 0;
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left);
}

#else

#include <sys/ioctl.h>
#include <unistd.h>

std::size_t Terminal::Width()
{
    winsize size;
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

#endif
