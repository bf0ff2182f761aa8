// The part of an exchange that runs on its own thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "diag/Timer.h"
#include "service/InternetSession.h"

namespace kel {

/// A request by HTTP, to port 80, or by HTTPS, to port 443.
struct HttpRequest {
    std::wstring host;
    std::wstring verb;
    std::wstring path;
    std::wstring headers;   ///< empty for none
    std::string body;       ///< UTF-8; empty for none
    bool isSecure = false;  ///< by HTTPS; neither an untrusted certificate nor a redirect is accepted
};

/// The answer, as far as the exchange went.
struct HttpAnswer {
    Timer timer;  ///< from sending to the answer's headers
    DWORD sendError = ERROR_SUCCESS;
    std::optional<std::wstring> status;      ///< nullopt when WinINet does not return it
    std::optional<std::wstring> statusText;  ///< the same
    std::string body;                        ///< as received; the service sends UTF-8
    DWORD openError = ERROR_SUCCESS;         ///< why no request could be made
    bool isOfOtherHost = false;              ///< another host than the request's answered, or has to be asked
    bool isCut = false;                      ///< the body ended early, or was too long
    const char* failure = nullptr;           ///< why the body does not count
    const char* lateIn = nullptr;            ///< the stage in which a single wait ended at its limit

    /// Whether the status names another address.
    bool IsRedirect() const;

    /// Whether the status says that the request was refused or failed: from 400 on.
    bool IsError() const;

    /// Writes the status to the log: an error's as a warning, with one more for each part that is missing.
    void LogStatus() const;
};

/// Whether an address, as WinINet reports the one that answered, belongs to a host. Case is ignored.
/// @param isSecure only an address of HTTPS does then
bool IsOfHost(const std::wstring& address, const std::wstring& host, bool isSecure = false);

/// Sends a request and reads its answer, through WinINet.
/// @param request not changed; WinINet's declaration lacks a const
/// @param internet keeps the handles; when it is abandoned, the answer is incomplete
/// @throws std::runtime_error when the request cannot be made
void Perform(HttpRequest& request, InternetSession& internet, HttpAnswer& answer);

}  // namespace kel
