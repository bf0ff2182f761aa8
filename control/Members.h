// Common parts of the control's members: their turn, their trace, conversion of texts, and the handler that
// stops every exception.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <concepts>
#include <optional>
#include <string>

#include "control/Turn.h"
#include "diag/Log.h"
#include "diag/LogScope.h"
#include "service/CallBudget.h"

namespace kel {

/// The line that a member logs when something failed in it.
inline constexpr const wchar_t* CaughtException = L"Caught exception.";

/// Thrown by a member that has logged its failure already.
struct AlreadyLogged {};

/// The whole text of a string from outside, including its zeros; null is the empty text.
inline std::wstring TextOf(BSTR text)
{
    return text != nullptr ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

/// Returns a text as a string that the caller frees. A null result is left alone.
/// @return S_OK, or E_OUTOFMEMORY when the string cannot be allocated
inline HRESULT ReturnText(const std::wstring& text, BSTR* result) noexcept
{
    if (result == nullptr)
        return S_OK;
    *result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return *result != nullptr ? S_OK : E_OUTOFMEMORY;
}

/// Runs the body of a member during its turn. Any exception is logged and ends here. A member that does not
/// get its turn does nothing.
/// @param scopeName the trace scope in which it runs and logs a failure; null for none
template <std::invocable Body>
HRESULT Guarded(const wchar_t* scopeName, Body body, const wchar_t* errorLine = CaughtException) noexcept
{
    const Turn turn;
    if (!turn)
        return S_OK;
    try {
        const CallBudget budget;  // of all exchanges of this call
        std::optional<LogScope> trace;
        if (scopeName != nullptr)
            trace.emplace(scopeName);
        try {
            body();
        } catch (const AlreadyLogged&) {
            return S_OK;
        } catch (...) {
            ReportFailure(LogError, errorLine);
        }
    } catch (...) {
        return S_OK;  // there is no log to write to
    }
    return S_OK;
}

template <std::invocable Body>
HRESULT Guarded(Body body) noexcept
{
    return Guarded(nullptr, body);
}

/// The same for a member whose body returns a text, or a reference to one that outlives the call. The result
/// is null when the body throws.
/// @return S_OK, or E_OUTOFMEMORY when the text cannot be allocated
template <std::invocable Body>
HRESULT GuardedResult(const wchar_t* scopeName, BSTR* result, Body body) noexcept
{
    if (result != nullptr)
        *result = nullptr;
    HRESULT status = S_OK;
    Guarded(scopeName, [&] {
        const std::wstring& text = body();
        status = ReturnText(text, result);
    });
    return status;
}

template <std::invocable Body>
HRESULT GuardedResult(BSTR* result, Body body) noexcept
{
    return GuardedResult(nullptr, result, body);
}

}  // namespace kel
