// Entry point of mivorgsse2.dll.  The C run-time's start-up has already run
// the static initialisers; the library's own attach work is only to stop
// thread notifications, which it has no use for.  It keeps no other state.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(module);
    return TRUE;
}
