// std::mutex and std::condition_variable for the -win32 mingw-w64
// toolchain, whose libstdc++ (GCC 12) has no threads of its own.
// GoogleTest needs the two for one internal class; Windows' slim
// reader/writer locks and condition variables serve.  Test builds only.
#pragma once

#if defined(_WIN32) && defined(__cplusplus)
#include <bits/c++config.h>
#if !defined(_GLIBCXX_HAS_GTHREADS)
#include <windows.h>

#include <mutex>

namespace std {

class mutex {
public:
    mutex() = default;
    mutex(const mutex&) = delete;
    mutex& operator=(const mutex&) = delete;
    void lock() { AcquireSRWLockExclusive(&lock_); }
    bool try_lock() { return TryAcquireSRWLockExclusive(&lock_) != 0; }
    void unlock() { ReleaseSRWLockExclusive(&lock_); }
    PSRWLOCK native_handle() { return &lock_; }

private:
    SRWLOCK lock_ = SRWLOCK_INIT;
};

class condition_variable {
public:
    condition_variable() = default;
    condition_variable(const condition_variable&) = delete;
    condition_variable& operator=(const condition_variable&) = delete;
    void notify_one() { WakeConditionVariable(&cv_); }
    void notify_all() { WakeAllConditionVariable(&cv_); }
    void wait(unique_lock<mutex>& lock) {
        SleepConditionVariableSRW(&cv_, lock.mutex()->native_handle(), INFINITE, 0);
    }
    template <class Predicate>
    void wait(unique_lock<mutex>& lock, Predicate ready) {
        while (!ready()) wait(lock);
    }

private:
    CONDITION_VARIABLE cv_ = CONDITION_VARIABLE_INIT;
};

}  // namespace std

#endif
#endif
