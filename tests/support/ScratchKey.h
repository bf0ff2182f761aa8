#pragma once

#include <windows.h>

#include <string>

#include "platform/RegistryValue.h"

namespace kel::test {

/// A test's own registry key below HKEY_CURRENT_USER, which the destructor removes with everything below it.
/// It can stand in for a predefined key meanwhile.
class ScratchKey {
public:
    /// @param predefined the key to stand for in this process, such as HKEY_LOCAL_MACHINE, if any
    explicit ScratchKey(HKEY predefined = nullptr);
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;
    ~ScratchKey();

    HKEY Key() const { return key.get(); }

    /// Writes a value into a subkey, which is created when it is missing: any content, or a zero-terminated
    /// string.
    void Write(const std::wstring& subkey, const wchar_t* name, DWORD type, const void* data,
               std::size_t size) const;
    void Write(const std::wstring& subkey, const wchar_t* name, const std::wstring& text) const;
    void Make(const std::wstring& subkey) const;

    /// All keys and values below a subkey as one text, for comparisons.
    std::wstring Dump(const std::wstring& subkey = L"") const;

private:
    std::wstring name;
    OwnedKey key;
    HKEY overridden;
};

}  // namespace kel::test
