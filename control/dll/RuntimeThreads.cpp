// The thread-local index of the compiler's runtime library: taken on loading, given back on unloading.
#include <windows.h>

#include <pthread.h>

/// The library's own callback, which the loader calls as a thread ends; it frees the record of the thread.
extern "C" PIMAGE_TLS_CALLBACK OnThreadEnd __asm__("__xl_f");

/// Frees the memory that the library holds back for exceptions.
extern "C" void FreeExceptionPool() __asm__("_ZN9__gnu_cxx9__freeresEv");

namespace {

/// The library takes an index when it is first used, ends the process where there is none, and never gives it
/// back. A process has 1,088: a host that loads the module anew for each use would run out of them.
class RuntimeThreads {
public:
    RuntimeThreads() : index(TlsAlloc())
    {
        if (!HasIndex())
            return;
        TlsFree(index);
        pthread_self();  // takes the lowest index that is free
        isTaken = TlsGetValue(index) != nullptr;
    }
    RuntimeThreads(const RuntimeThreads&) = delete;
    RuntimeThreads& operator=(const RuntimeThreads&) = delete;
    ~RuntimeThreads()
    {
        OnThreadEnd(nullptr, DLL_THREAD_DETACH, nullptr);
        if (isTaken)
            TlsFree(index);
        FreeExceptionPool();
    }

    bool HasIndex() const { return index != TLS_OUT_OF_INDEXES; }

private:
    DWORD index;
    bool isTaken = false;
};

/// Made first and destroyed last.
[[gnu::init_priority(101)]] RuntimeThreads runtimeThreads;

}  // namespace

/// Refuses to be loaded where the library would end the process.
BOOL APIENTRY DllMain(HINSTANCE /*module*/, DWORD reason, LPVOID /*reserved*/)
{
    return reason != DLL_PROCESS_ATTACH || runtimeThreads.HasIndex();
}
