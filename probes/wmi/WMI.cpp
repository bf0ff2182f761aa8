#include "probes/wmi/WMI.h"

#include <comutil.h>

#include <memory>

#include "diag/Log.h"
#include "diag/LogScope.h"
#include "diag/ProcessInstance.h"
#include "diag/SourceFailures.h"
#include "probes/Attempt.h"
#include "probes/Variant.h"
#include "values/Hexadecimal.h"

namespace kel {

using Microsoft::WRL::ComPtr;

namespace {

std::wstring Show(HRESULT result)
{
    return L"0x" + Hexadecimal(static_cast<DWORD>(result), 8);
}

}  // namespace

WMI& WMI::Instance()
{
    return ProcessInstance<WMI>();
}

WMI::WMI()
{
    Init();
}

void WMI::Init()
{
    const LogScope trace(L"kel::WMI::Init");
    try {
        connected = Connect();
    } catch (...) {
        connected = E_OUTOFMEMORY;
    }
    initialised = SUCCEEDED(connected);
    if (!initialised) {
        services.Reset();
        locator.Reset();
        WriteLog(LogWarning, L"WMI cannot be reached: ", Show(connected));
    }
    WriteLog(LogTrace, initialised ? L"WMI inited ok." : L"WMI init failure.");
}

HRESULT WMI::Connect()
{
    HRESULT result = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                      reinterpret_cast<void**>(locator.GetAddressOf()));
    if (SUCCEEDED(result))
        result = locator->ConnectServer(_bstr_t(L"ROOT\\CIMV2"), nullptr, nullptr, nullptr, 0, nullptr,
                                        nullptr, services.GetAddressOf());
    if (SUCCEEDED(result))
        result = CoSetProxyBlanket(services.Get(), RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                   RPC_C_AUTHN_LEVEL_CALL, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    return result;
}

void WMI::NoteFailure(std::wstring_view wql, HRESULT result)
{
    const std::wstring name(wql.substr(wql.rfind(L' ') + 1));
    FailureScope::Note(L"WMI " + name, static_cast<std::uint32_t>(result));
}

bool WMI::Query(const wchar_t* wql, IEnumWbemClassObject** result)
{
    if (!initialised)
        return false;
    HRESULT status = E_OUTOFMEMORY;
    try {
        status = services->ExecQuery(_bstr_t(L"WQL"), _bstr_t(wql),
                                     WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY, nullptr, result);
    } catch (...) {
        status = E_OUTOFMEMORY;
    }
    if (FAILED(status)) {
        Attempt(L"WMI refused a query.", [&] {
            WriteLog(LogWarning, L"WMI refused: ", wql, L": ", Show(status));
            NoteFailure(wql, status);
        });
    }
    return SUCCEEDED(status);
}

bool WMI::GetProperty(IWbemClassObject* object, const wchar_t* name, VARIANT* out)
{
    bool found = false;
    try {
        VariantClear(out);
        _variant_t value;
        CIMTYPE type = CIM_EMPTY;
        found = SUCCEEDED(object->Get(name, 0, &value, &type, nullptr)) && type != CIM_EMPTY;
        if (found) {
            _variant_t copy = value.vt == VT_NULL ? _variant_t(L"") : value;
            VariantCopy(out, &copy);
        }
        if (Log::Instance().IsEnabled(LogTrace))
            WriteLog(LogTrace, L"WMI value: ", ShowVariant(*out));
    } catch (...) {
        ReportFailure(LogWarning, L"A WMI value could not be copied.");
    }
    return found;
}

std::vector<ComPtr<IWbemClassObject>> WMI::Read(const wchar_t* wql, ULONG count)
{
    std::vector<ComPtr<IWbemClassObject>> objects;
    ComPtr<IEnumWbemClassObject> enumerator;
    if (!Query(wql, enumerator.GetAddressOf()) || !enumerator)
        return objects;
    std::vector<IWbemClassObject*> read(count);
    objects.reserve(count);  // so that taking ownership below cannot fail
    ULONG returned = 0;
    const HRESULT result = enumerator->Next(static_cast<LONG>(WBEM_INFINITE), count, read.data(), &returned);
    for (IWbemClassObject* object : read) {
        if (object == nullptr)
            continue;
        *objects.emplace_back().GetAddressOf() = object;
    }
    if (FAILED(result))
        NoteFailure(wql, result);
    if (objects.empty())  // not a failure in itself: many machines have no optical drive
        WriteLog(SUCCEEDED(result) ? LogTrace : LogWarning, L"WMI has no object: ", wql, L": ", Show(result));
    return objects;
}

}  // namespace kel
