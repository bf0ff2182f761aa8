#include "check/text/ProblemPage.h"

#include "program/text/Characters.h"
#include "service/ExchangeState.h"
#include "service/Utf8.h"
#include "verdict/text/Text.h"

namespace kel::check {

namespace {

constexpr std::size_t MaxEcho = 200;  // bytes of an answer that a page repeats
constexpr const char* StartAgain = "Then start the check again from the page that offered it.";

Page Problem(std::string instruction, std::string advice)
{
    return {std::move(instruction), std::move(advice), PageIcon::Error};
}

bool Ended(const program::ServiceAnswer& answer, const wchar_t* state)
{
    return answer.state == ToUtf8(state);
}

std::string Quoted(const std::string& answer)
{
    const std::string_view text = Trim(answer);
    return text.empty() ? "It gave no reason."
                        : "It answered: “" + Shortened(kel::Printable(text), MaxEcho) + "”.";
}

}  // namespace

Page WrongFileNamePage()
{
    return Problem(
        "This file's name does not say which check to make.",
        "The name has the form check.PRODUCT.SESSION.exe. Download the program again from the page "
        "that offered it, and start it without renaming it.");
}

Page WrongLinkPage()
{
    return Problem("This link does not name a check.",
                   "It has the form kel-check:PRODUCT/SESSION. Reload the page that offered it, and use its "
                   "button or its download.");
}

Page NotSavedPage(const std::string& reason)
{
    return Problem("The file was not saved.", reason);
}

Page FailurePage(const std::string& reason)
{
    return Problem("The check ended with an error.",
                   kel::Printable(reason) + "\nRestart Windows. " + StartAgain);
}

Page RefusedPage(const program::ServiceAnswer& answer, const CheckName& name, const std::string& service)
{
    if (Ended(answer, ExchangeState::UnknownProduct))
        return Problem("The service does not know the product “" + name.product + "”.",
                       "Inform the owner of the page that offered the check.");
    if (Ended(answer, ExchangeState::OtherHost))
        return Problem(
            "Another host answered in place of the service.",
            "Log in to this network first, or check the proxy settings. " + std::string(StartAgain));
    if (Ended(answer, ExchangeState::Cut))
        return Problem("The answer of the service was cut off.",
                       "Check the internet connection. " + std::string(StartAgain));
    if (Ended(answer, ExchangeState::Answered))
        return Problem("The service refused the check.",
                       Quoted(answer.text) + " Wait a few minutes. " + StartAgain);
    return Problem("The service cannot be reached.",
                   service + " did not answer" + (answer.state.empty() ? "" : " (" + answer.state + ")") +
                       ". Check the internet connection and the proxy settings. " + StartAgain);
}

}  // namespace kel::check
