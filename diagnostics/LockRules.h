#pragma once

/// What a lock guards, said where clang checks it (-Wthread-safety, an error in its build): the
/// class that is a lock, the calls that take and leave it, the members that need it, and the
/// functions that are called with it held.
///
///     std::int32_t count VAREK_LOCK_RULE(guarded_by(lock));
///     void GrowTo(std::int32_t newCapacity) VAREK_LOCK_RULE(requires_capability(lock));
#ifdef __clang__
#define VAREK_LOCK_RULE(rule) __attribute__((rule))
#else
#define VAREK_LOCK_RULE(rule)
#endif
