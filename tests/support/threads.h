// Runs a function on several threads at once and waits for all of them:
// std::thread on Linux, the Win32 API on Windows (the -win32 mingw
// toolchain has no std::thread).
#pragma once

#include <functional>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <thread>
#endif

namespace mivor::testing {

struct ThreadJob {
    const std::function<void(int)>* body;
    int index;
};

#if defined(_WIN32)
inline DWORD WINAPI thread_main(LPVOID p) {
    const ThreadJob& j = *static_cast<const ThreadJob*>(p);
    (*j.body)(j.index);
    return 0;
}
#endif

inline void run_concurrently(int count, const std::function<void(int)>& body) {
    using Job = ThreadJob;
    std::vector<Job> jobs;
    for (int i = 0; i < count; ++i) jobs.push_back({&body, i});
#if defined(_WIN32)
    std::vector<HANDLE> handles;
    for (Job& job : jobs) {
        handles.push_back(CreateThread(nullptr, 0, &thread_main, &job, 0, nullptr));
    }
    WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), TRUE, INFINITE);
    for (HANDLE h : handles) CloseHandle(h);
#else
    std::vector<std::thread> threads;
    for (Job& job : jobs) threads.emplace_back([&job] { (*job.body)(job.index); });
    for (std::thread& t : threads) t.join();
#endif
}

}  // namespace mivor::testing
