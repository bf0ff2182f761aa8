#include "service/ExchangeState.h"

#include "values/Text.h"

namespace kel {

namespace {

constexpr const wchar_t* ProxyAuthentication = L"407";
constexpr const wchar_t* NotFound = L"404";
/// The service's answer for a referrer that it has no requirements of; a group list then has no text.
constexpr std::string_view UnknownReferrer = "the referrer is not known";

/// A form of a verdict: how it begins, what the service's own has inside, and how it ends.
struct VerdictForm {
    std::string_view begin;
    std::string_view mark;
    std::string_view end;
};

constexpr VerdictForm Forms[] = {
    {"<analysis ", "", "</analysis>"},
    {"<!DOCTYPE html>", "<p class=\"total ", "</html>"},
    {"{", "", "}"},
};

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view Blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(Blanks);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}

}  // namespace

std::wstring ExchangeState::NotReached(DWORD error)
{
    return L"not reached: " + std::to_wstring(error);
}

const wchar_t* ExchangeState::Of(const HttpAnswer& answer, AnswerForm form)
{
    if (answer.isOfOtherHost || form == AnswerForm::Foreign || answer.status == ProxyAuthentication)
        return OtherHost;
    // Wine reports the status 0 where the host ended the connection before it answered.
    if (answer.isCut || form == AnswerForm::CutOff || ToInteger(answer.status.value_or(L"")) == 0)
        return Cut;
    const std::string_view text = answer.body;
    if (answer.status == NotFound && (text.empty() || text.find(UnknownReferrer) != text.npos))
        return UnknownProduct;
    return Answered;
}

AnswerForm FormOfText(std::string_view answer)
{
    return Trimmed(answer).starts_with('<') ? AnswerForm::Foreign : AnswerForm::Own;
}

AnswerForm FormOfVerdict(std::string_view answer)
{
    const std::string_view text = Trimmed(answer);
    for (const VerdictForm& form : Forms) {
        if (text.starts_with(form.begin) && text.find(form.mark) != text.npos)
            return text.ends_with(form.end) ? AnswerForm::Own : AnswerForm::CutOff;
    }
    return FormOfText(text);
}

}  // namespace kel
