#pragma once

#include <windows.h>

#include <atomic>
#include <string>

namespace kel {

/// The DLL as COM sees it: how many objects and locks keep it loaded, and its registration.
class CDetectionModule {
public:
    static CDetectionModule& Instance();

    /// Counts one more object or lock that keeps the module loaded.
    void Lock() { ++lockCount; }
    void Unlock() { --lockCount; }
    bool CanUnload() const { return lockCount == 0; }

    /// The full path of the DLL that holds this code.
    /// @throws std::runtime_error when the system does not tell
    static std::wstring Path();

    /// Registers the class and the type library, for all users or for the current one only. A failed
    /// registration takes back what it wrote, and an earlier one with it.
    HRESULT Register(bool forCurrentUser) noexcept;

    /// Takes the registration back.
    HRESULT Unregister(bool forCurrentUser) noexcept;

private:
    std::atomic<long> lockCount = 0;
};

/// Counts an object among those that keep the module loaded, as long as it lives.
class ModuleLock {
public:
    ModuleLock() { CDetectionModule::Instance().Lock(); }
    ModuleLock(const ModuleLock&) = delete;
    ModuleLock& operator=(const ModuleLock&) = delete;
    ~ModuleLock() { CDetectionModule::Instance().Unlock(); }
};

}  // namespace kel
