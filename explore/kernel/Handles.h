#pragma once

#include "explore/kernel/Turn.h"

#include <windows.h>

/// What a handle can lead to. Events, mutexes and threads differ only in what sets them and in what
/// a wait that they end leaves of it.
struct Object {
    bool signalled;
    bool stays;           ///< set until it is reset by hand
    bool abandoned;       ///< a mutex whose owner has ended
    bool isMutex;         ///< set while nobody owns it
    std::uint32_t thread; ///< the thread that it is, or its owner
    int references;       ///< handles, waits, and the thread itself
};

/// A new object of one reference, from memory of the kernel's own; the suites count the other.
Object* MakeObject(bool signalled, bool stays);

/// Gives a reference up, and the last one the object.
void Drop(Object* object);

/// A handle for a reference. No handle comes back until all the others have been in use.
HANDLE OpenHandle(Object* object);

/// The object, or null with the last error set.
Object* Find(HANDLE handle);

/// The object that stands for a thread, while anybody refers to it.
Object* FindThread(std::uint32_t id);

/// Gives the mutexes of a thread that ends to the next.
void AbandonMutexes(std::uint32_t thread);

/// Takes the handle away. Its reference goes with it.
bool ForgetHandle(HANDLE handle);

/// Handles that are open.
std::size_t CountHandles();
