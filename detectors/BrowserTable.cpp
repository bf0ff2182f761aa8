#include "detectors/ProductTables.h"

namespace kel {

namespace {

using enum FindBy;

// Its key holds the version that the program shows; since version 10 the value has another name.
constexpr Locator InternetExplorer[] = {
    {Key, L"SOFTWARE\\Microsoft\\Internet Explorer", L"", L"%ProgramFiles%\\Internet Explorer",
     L"svcVersion|Version"},
    {AppPath},
    {StartMenu, L"IEXPLORE.EXE"},
    {Registered, L"Internet Explorer"},
};

constexpr Locator Edge[] = {
    {AppPath},
    {StartMenu, L"Microsoft Edge"},
    {Registered, L"Microsoft Edge"},
    {Key, L"SOFTWARE\\Microsoft\\EdgeUpdate\\Clients\\{56EB18F8-B008-4CBD-B6D2-8C97FE7E9062}", L"location"},
};

// In an installation for one user, the names of Chromium-based browsers end in a point and a suffix for that
// user.
constexpr Locator Chrome[] = {
    {AppPath},
    {StartMenu, L"Google Chrome"},
    {StartMenu, L"Google Chrome.*"},
    {Registered, L"Google Chrome"},
    {Registered, L"Google Chrome.*"},
    {Key, L"SOFTWARE\\Google\\Update\\ClientState\\{8A69D345-D564-463C-AFF1-A69D9E530F96}",
     L"UninstallString", L"..\\.."},
};

constexpr Locator Firefox[] = {
    {AppPath},
    {StartMenu, L"Firefox-*"},
    {StartMenu, L"FIREFOX.EXE"},
    {Registered, L"Firefox-*"},
    {Registered, L"Firefox"},
    {Key, L"SOFTWARE\\Mozilla\\Mozilla Firefox\\*\\Main", L"PathToExe"},
    {Family, L"Mozilla.Firefox_n80bbvh6b1yt2"},
};

// Other programs have launchers of the same name.
constexpr Locator Opera[] = {
    {AppPath, L"opera.exe"},
    {StartMenu, L"OperaStable"},
    {Registered, L"Opera Stable"},
    {Key, L"SOFTWARE\\Opera Software", L"Last Stable Install Path"},
};

constexpr Locator Brave[] = {
    {AppPath},
    {StartMenu, L"Brave"},
    {StartMenu, L"Brave.*"},
    {Registered, L"Brave"},
    {Registered, L"Brave.*"},
    {Key, L"SOFTWARE\\BraveSoftware\\Update\\ClientState\\{AFE6A462-C574-4B8A-AF43-4CC60DF4563B}",
     L"UninstallString", L"..\\.."},
};

constexpr Locator Vivaldi[] = {
    {AppPath},
    {StartMenu, L"Vivaldi"},
    {StartMenu, L"Vivaldi.*"},
    {Registered, L"Vivaldi"},
    {Registered, L"Vivaldi.*"},
    {Key, L"SOFTWARE\\Vivaldi", L"DestinationFolder", L"Application"},
};

constexpr Product Browsers[] = {
    {73010, 73011, L"Internet Explorer", L"iexplore.exe", InternetExplorer, L"", L"IE.HTTP*"},
    {73012, 73013, L"Edge", L"msedge.exe", Edge, L"Edge Beta|Edge Dev|Edge SxS", L"MSEdgeHTM*"},
    {73014, 73015, L"Chrome", L"chrome.exe", Chrome, L"Chrome Beta|Chrome Dev|Chrome SxS", L"ChromeHTML*"},
    {73016, 73017, L"Firefox", L"firefox.exe|VFS\\ProgramFiles\\Firefox Package Root\\firefox.exe", Firefox,
     L"Firefox Beta*|Firefox Developer Edition*|Firefox Nightly*|Nightly*", L"FirefoxURL*|FirefoxHTML*"},
    {73018, 73019, L"Opera", L"launcher.exe|opera.exe", Opera,
     L"Opera beta|Opera developer|Opera GX|Opera Crypto*", L"OperaStable*"},
    {73020, 73021, L"Brave", L"brave.exe", Brave, L"Brave-Browser-*", L"BraveHTML*"},
    {73022, 73023, L"Vivaldi", L"vivaldi.exe", Vivaldi, L"Vivaldi Snapshot", L"VivaldiHTM*"},
};

}  // namespace

std::span<const Product> BrowserTable()
{
    return Browsers;
}

}  // namespace kel
