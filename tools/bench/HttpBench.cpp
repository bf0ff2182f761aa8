// The other yardstick: two plain exchanges with the analysis service, like those of a first Detect, and
// nothing else.
#include <array>
#include <cstdlib>
#include <string>

#include "BuildSettings.h"
#include "Measure.h"
#include "service/InternetSession.h"
#include "service/WebService.h"

namespace kel::bench {
namespace {

constexpr const wchar_t* GroupList = L"/Data/Service.svc/Group/list?refid=bench&apikey=";
constexpr const wchar_t* Upload = L"/Data/Service.svc/upload?apikey=";
constexpr DWORD Flags = INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;

/// Sends a request and reads the answer.
/// @param path to which the key is added
/// @return whether there was an answer
bool Exchange(const wchar_t* verb, const std::wstring& path, std::string body)
{
    const OwnedInternet session(InternetOpenW(L"KEL", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    const OwnedInternet connection(InternetConnectW(
        session.get(), KEL_SERVICE_HOST, INTERNET_DEFAULT_HTTP_PORT, L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
    const OwnedInternet request(HttpOpenRequestW(connection.get(), verb, (path + ServiceApiKey).c_str(),
                                                 L"HTTP/1.1", nullptr, nullptr, Flags, 0));
    if (!request ||
        !HttpSendRequestW(request.get(), nullptr, 0, body.data(), static_cast<DWORD>(body.size())))
        return false;
    std::array<char, 2000> piece = {};
    DWORD size = 0;
    bool isRead = false;
    while (InternetReadFile(request.get(), piece.data(), static_cast<DWORD>(piece.size()), &size) && size > 0)
        isRead = true;
    return isRead;
}

}  // namespace
}  // namespace kel::bench

int main()
{
    using namespace kel::bench;
    bool isAnswered = false;
    const std::string report =
        R"(<groups><group index="0" id="71424"><value>bench</value></group></groups>  )";
    Print("exchanges",
          Timed([&] { isAnswered = Exchange(L"GET", GroupList, "") && Exchange(L"POST", Upload, report); }));
    return isAnswered ? EXIT_SUCCESS : EXIT_FAILURE;
}
