// What every member of the control goes through: texts in, texts out, and no exception beyond.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>

#include "diag/Log.h"
#include "service/CallBudget.h"

namespace kel {

/// The line that a member logs when something failed in it.
inline constexpr const wchar_t* CaughtException = L"Caught exception.";

/// Thrown by a member that has logged its failure already.
struct AlreadyLogged {};

/// The whole text of a string from outside, also its zeros; null is the empty text.
inline std::wstring TextOf(BSTR text)
{
    return text != nullptr ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

/// Runs the body of a member. Whatever it throws is logged and ends here.
template <typename Body>
HRESULT Guarded(Body body, const wchar_t* errorLine = CaughtException) noexcept
{
    try {
        const CallBudget budget;  // of all exchanges of this call
        body();
    } catch (const AlreadyLogged&) {
        return S_OK;
    } catch (...) {
        ReportFailure(LogError, errorLine);
    }
    return S_OK;
}

/// The same for a member whose body returns a text, or a reference to one that stays. The result is null
/// first, and stays so when the body throws.
/// @return S_OK, or E_OUTOFMEMORY when the text cannot be allocated
template <typename Body>
HRESULT GuardedResult(BSTR* result, Body body) noexcept
{
    if (result != nullptr)
        *result = nullptr;
    HRESULT status = S_OK;
    Guarded([&] {
        const std::wstring& text = body();
        if (result == nullptr)
            return;
        *result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        status = *result != nullptr ? S_OK : E_OUTOFMEMORY;
    });
    return status;
}

}  // namespace kel
