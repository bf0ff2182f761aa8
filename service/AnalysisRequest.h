#pragma once

#include <string>

#include "service/WebService.h"

namespace kel {

/// Asks for the service's verdict on the report that the current session has uploaded.
class AnalysisRequest : public WebService {
public:
    AnalysisRequest();

    /// What to judge, as the service names it.
    void SetItemID(const std::wstring& text) { SetPlaceholder(L"^item_id", text); }
    /// The format of the answer.
    void SetMessageFormat(const std::wstring& text) { SetPlaceholder(L"^message_format", text); }
    /// The version of that format.
    void SetFormatVersion(const std::wstring& text) { SetPlaceholder(L"^format_version", text); }

protected:
    AnswerForm FormOf(const std::string& answer) const override { return FormOfVerdict(answer); }
};

}  // namespace kel
