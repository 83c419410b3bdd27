#pragma once

namespace Selvan
{
namespace Utilities
{

/// Empty base of classes that must not be copied.
class NonCopyable
{
protected:
    NonCopyable() = default;
    ~NonCopyable() = default;
    NonCopyable(const NonCopyable&) = delete;
    NonCopyable& operator=(const NonCopyable&) = delete;
};

} // namespace Utilities
} // namespace Selvan
