#pragma once

// The abort flag is a byte owned by the caller, set from another thread and
// polled without a lock, at least once a row. A relaxed atomic load keeps the
// compiler from hoisting the test out of the loop.
inline bool gwAbortRequested(const bool* flag)
{
    return flag && __atomic_load_n(flag, __ATOMIC_RELAXED);
}

inline void gwRequestAbort(bool* flag)
{
    if (flag)
        __atomic_store_n(flag, true, __ATOMIC_RELAXED);
}
