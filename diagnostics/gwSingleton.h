#pragma once

// One instance of T, made on first use behind the compiler's thread-safe static
// guard and destroyed when the library is unloaded. T declares
// `friend class CgwSingleton<T>;` and keeps its constructor private.
template <class T>
class CgwSingleton
{
public:
    virtual ~CgwSingleton() = default;

    static T& instance()
    {
        static T sInstance;
        return sInstance;
    }

    CgwSingleton(const CgwSingleton&) = delete;
    CgwSingleton& operator=(const CgwSingleton&) = delete;

protected:
    CgwSingleton() = default;
};
