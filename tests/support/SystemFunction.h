#pragma once

/// The system's own function, of kernel32 or the C run time. No import slot leads elsewhere.
void* FindSystemFunction(const char* name);
