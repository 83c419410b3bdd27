#pragma once

#include <windows.h>

// The list of the handles of all processes, of which there is one here.

typedef LONG NTSTATUS;

#define NT_SUCCESS(status) ((status) >= 0)

const int SystemHandleInformation = 16;

struct SYSTEM_HANDLE_INFORMATION {
    ULONG Count;
    struct {
        ULONG OwnerPid;
    } Handle[1];
};

extern "C" NTSTATUS NtQuerySystemInformation(int subject, void* buffer, ULONG size, ULONG* needed);
