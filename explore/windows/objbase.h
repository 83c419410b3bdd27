#pragma once

#include <windows.h>

const LONG S_OK = 0;
const DWORD COINIT_MULTITHREADED = 0;

enum APTTYPE { APTTYPE_CURRENT = -1, APTTYPE_MTA = 1 };
typedef int APTTYPEQUALIFIER;

extern "C" {

LONG CoInitializeEx(void* reserved, DWORD flags);
void CoUninitialize();
LONG CoGetApartmentType(APTTYPE* type, APTTYPEQUALIFIER* qualifier);
}
