#pragma once

#include <cstddef>
#include <string>

#include "service/ExchangeState.h"

namespace kel {

/// A request to the analysis service: one blocking HTTP exchange through WinINet. Each kind of request fills
/// in the verb, the path and the body. The host and port 80 are fixed when the control is built.
class WebService {
public:
    WebService(const WebService&) = delete;
    WebService& operator=(const WebService&) = delete;
    virtual ~WebService();

    /// Sends the request and reads the answer, within the time that the member's call has left for exchanges;
    /// skips both after an exchange of that call ended at a limit. Throws nothing: a failure is logged and
    /// leaves the result as it was. How an exchange ended is stored in the session, under ExchangeStateGroup.
    void Call() noexcept;

    /// Whether the last call got as far as an exchange, even a failed one: it was not skipped, and the
    /// exchange could be started.
    bool HasBegun() const { return hasBegun; }

    /// Whether the analysis service answered the last call, its whole answer arrived, and it is not an error:
    /// a busy service has not answered yet. One that does not know the product has.
    bool IsAnswered() const;

    /// The text of the answer, whatever its status; empty before a call and after a failed one.
    const std::wstring& GetResult() const { return result; }

    const std::wstring& Path() const { return path; }
    const std::wstring& Body() const { return body; }

protected:
    /// @param requestBody empty for a request that is sent without content headers
    WebService(const wchar_t* requestVerb, std::wstring requestPath, std::wstring requestBody);

    /// Puts a text in place of a placeholder of the body.
    void SetPlaceholder(const wchar_t* placeholder, const std::wstring& text);

    /// What an answer to this kind of request is, judged by its text.
    virtual AnswerForm FormOf(const std::string& answer) const { return FormOfText(answer); }

private:
    void Exchange();
    std::string Ask(HttpRequest request);
    void End(const wchar_t* newState);
    void EndUnreached(DWORD error);
    /// The request without its key, and the proxy that it goes through, for the log.
    std::wstring Describe() const;

    std::wstring host;
    bool isSecure;
    std::wstring verb;
    std::wstring path;
    std::wstring contentType;
    std::wstring body;
    std::wstring result;
    std::wstring state;      ///< of the last exchange
    std::wstring errorText;  ///< of its error, after a comma; empty without one
    bool hasBegun = false;
    bool isError = false;  ///< the answer's status says so
};

/// The key that the service requires of every client.
inline constexpr const wchar_t* ServiceApiKey = L"5B3E9A70-2C41-4F8D-A6E2-7D19C04B8E53";

}  // namespace kel
