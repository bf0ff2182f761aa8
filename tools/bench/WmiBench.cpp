// The yardstick: a plain program that makes the same WMI queries as the control, and does nothing else.
#include <wbemidl.h>
#include <windows.h>

#include <comutil.h>
#include <wrl/client.h>

#include <cstdlib>
#include <initializer_list>
#include <string>

#include "Measure.h"

namespace kel::bench {
namespace {

using Microsoft::WRL::ComPtr;

ComPtr<IWbemServices> Connect()
{
    ComPtr<IWbemLocator> locator;
    ComPtr<IWbemServices> services;
    Print("locator", Timed([&] {
              CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(locator.GetAddressOf()));
          }));
    if (!locator)
        return services;
    locator->ConnectServer(_bstr_t(L"ROOT\\CIMV2"), nullptr, nullptr, nullptr, 0, nullptr, nullptr,
                           services.GetAddressOf());
    if (services)
        CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                          RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    return services;
}

/// Reads properties of a class's first object as texts.
void Ask(const ComPtr<IWbemServices>& services, const wchar_t* query,
         std::initializer_list<const wchar_t*> names)
{
    ComPtr<IEnumWbemClassObject> objects;
    ComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    if (FAILED(services->ExecQuery(_bstr_t(L"WQL"), _bstr_t(query),
                                   WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr,
                                   &objects)) ||
        FAILED(objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned)) || !object)
        return;
    for (const wchar_t* name : names) {
        _variant_t value;
        if (SUCCEEDED(object->Get(name, 0, &value, nullptr, nullptr)) && value.vt != VT_NULL)
            value.ChangeType(VT_BSTR);
    }
}

}  // namespace
}  // namespace kel::bench

int main()
{
    using namespace kel::bench;
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
        return EXIT_FAILURE;
    const double start = Milliseconds();
    const auto services = Connect();
    if (!services)
        return EXIT_FAILURE;
    Print("connected", Milliseconds() - start);
    Print("processor", Timed([&] {
              Ask(services, L"SELECT * FROM Win32_Processor",
                  {L"Name", L"Manufacturer", L"MaxClockSpeed", L"Caption"});
          }));
    Print("bios", Timed([&] {
              Ask(services, L"SELECT * FROM Win32_BIOS",
                  {L"Version", L"name", L"Manufacturer", L"SMBIOSBIOSVersion"});
          }));
    Print("board", Timed([&] {
              Ask(services, L"SELECT * FROM Win32_BaseBoard", {L"Manufacturer", L"Product", L"Version"});
          }));
    Print("all", Milliseconds() - start);
    return EXIT_SUCCESS;
}
