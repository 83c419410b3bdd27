#include <windows.h>

// The run time brackets this with static construction and destruction, and nothing else may happen
// while the loader holds its lock.
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID)
{
    return TRUE;
}
