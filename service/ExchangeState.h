// How the last exchange with the analysis service ended, as a page reads it.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "service/HttpExchange.h"

namespace kel {

/// What an answer is, judged by its text.
enum class AnswerForm {
    Own,      ///< the service's
    CutOff,   ///< the service's, without its end
    Foreign,  ///< another one's, such as the page of a proxy
};

/// The states as they are stored.
struct ExchangeState {
    static constexpr const wchar_t* Answered = L"answered";
    static constexpr const wchar_t* UnknownProduct = L"unknown product";
    static constexpr const wchar_t* OtherHost = L"another host answered";
    static constexpr const wchar_t* Cut = L"cut";

    /// "not reached: 12029", with WinINet's error.
    static std::wstring NotReached(DWORD error);

    /// The state after an exchange that was sent.
    /// @param form of the answer's body
    static const wchar_t* Of(const HttpAnswer& answer, AnswerForm form);
};

/// The form of an answer that has no markup when it is the service's.
AnswerForm FormOfText(std::string_view answer);

/// The form of a verdict, which may be XML, JSON or a page.
AnswerForm FormOfVerdict(std::string_view answer);

}  // namespace kel
