#pragma once

#include <windows.h>

#include <atomic>
#include <string>

namespace kel {

/// The module as COM sees it: how many objects and locks keep it loaded, and its registration. The module is
/// the DLL, or the program that serves 32-bit hosts.
class CDetectionModule {
public:
    static CDetectionModule& Instance();

    /// Counts one more object or lock that keeps the module loaded.
    void Lock() { ++lockCount; }
    void Unlock() { --lockCount; }
    bool CanUnload() const { return lockCount == 0; }
    long LockCount() const { return lockCount; }

    /// The full path of the file that holds this code.
    /// @throws std::runtime_error when the system cannot return it
    static std::wstring Path();

    /// Registers the class and the type library, for all users or for the current one only. A failed
    /// registration removes what it wrote, and an earlier registration as well.
    HRESULT Register(bool forCurrentUser) noexcept;

    /// Removes the registration.
    HRESULT Unregister(bool forCurrentUser) noexcept;

    /// The same two for all users, without the type library.
    HRESULT RegisterScript() noexcept;
    HRESULT UnregisterScript() noexcept;

private:
    std::atomic<long> lockCount = 0;
};

/// Keeps the module loaded while it exists.
class ModuleLock {
public:
    ModuleLock() { CDetectionModule::Instance().Lock(); }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
    ~ModuleLock() { CDetectionModule::Instance().Unlock(); }
};

}  // namespace kel
