#pragma once

/// Keeps this module's code loaded while threads run in it, whatever its host does with the handle:
/// a thread cannot end while its module is being unloaded, and must not outlive its code.
class ModuleReference
{
public:
    ModuleReference() : module(nullptr) {}
    ModuleReference(const ModuleReference&) = delete;
    ModuleReference& operator=(const ModuleReference&) = delete;

    /// Takes the reference, once.
    void Hold();

    /// Gives it back, if held.
    void Drop();

private:
    void* module;
};
