#include "service/InternetError.h"

#include <wininet.h>

namespace kel {

namespace {

struct ErrorText {
    DWORD error;
    const wchar_t* text;
};

/// In English, as the rest of the log; the system's own texts are in its language, and Wine has none.
constexpr ErrorText ErrorTexts[] = {
    {ERROR_INTERNET_OUT_OF_HANDLES, L"too many exchanges have not ended yet"},
    {ERROR_INTERNET_TIMEOUT, L"the host took too long"},
    {ERROR_INTERNET_INTERNAL_ERROR, L"WinINet has failed"},
    {ERROR_INTERNET_INVALID_URL, L"the address is not valid"},
    {ERROR_INTERNET_NAME_NOT_RESOLVED, L"the host's name is not known"},
    {ERROR_INTERNET_OPERATION_CANCELLED, L"the exchange was cancelled"},
    {ERROR_INTERNET_INCORRECT_HANDLE_STATE, L"a redirect led to another protocol"},
    {ERROR_INTERNET_ITEM_NOT_FOUND, L"WinINet does not find what was asked for"},
    {ERROR_INTERNET_CANNOT_CONNECT, L"the host does not accept a connection"},
    {ERROR_INTERNET_CONNECTION_ABORTED, L"the host ended the connection"},
    {ERROR_INTERNET_CONNECTION_RESET, L"the connection was reset"},
    {ERROR_HTTP_HEADER_NOT_FOUND, L"the answer lacks a header"},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, L"the answer is not HTTP"},
    {ERROR_HTTP_REDIRECT_FAILED, L"a redirect could not be followed"},
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, L"the host's certificate is not valid at this time"},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, L"the host's certificate is for another name"},
    {ERROR_INTERNET_INVALID_CA, L"the host's certificate is not from a trusted authority"},
    {ERROR_INTERNET_SEC_CERT_REV_FAILED, L"whether the host's certificate was revoked is not known"},
    {ERROR_INTERNET_SEC_CERT_REVOKED, L"the host's certificate was revoked"},
    {ERROR_INTERNET_SEC_CERT_ERRORS, L"the host's certificate has errors"},
    {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, L"no secure connection to the host can be made"},
    {ERROR_INTERNET_DISCONNECTED, L"the machine has no connection to a network"},
    {ERROR_INTERNET_SERVER_UNREACHABLE, L"the host cannot be reached"},
    {ERROR_INTERNET_PROXY_SERVER_UNREACHABLE, L"the proxy cannot be reached"},
    {ERROR_INTERNET_BAD_AUTO_PROXY_SCRIPT, L"the proxy's script has an error"},
    {ERROR_INTERNET_UNABLE_TO_DOWNLOAD_SCRIPT, L"the proxy's script cannot be fetched"},
    {ERROR_NOT_ENOUGH_MEMORY, L"memory is short"},
};

}  // namespace

std::wstring InternetErrorText(DWORD error)
{
    for (const ErrorText& row : ErrorTexts) {
        if (row.error == error)
            return row.text;
    }
    return {};
}

}  // namespace kel
