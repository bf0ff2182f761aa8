#pragma once

#include <ocidl.h>
#include <windows.h>

#include <objsafe.h>
#include <wrl/client.h>

#include "Detection.h"
#include "control/DetectionModule.h"

namespace kel {

/// The object that a page or script creates. It keeps no detection state: every member forwards to the one
/// session of the process. Every member returns S_OK, whatever fails inside, or E_OUTOFMEMORY when a result
/// cannot be allocated; failures are logged and show as an empty or missing result.
class CSysInfo final : public ISysInfo,
                       public IObjectWithSite,
                       public IPersistPropertyBag,
                       public IObjectSafety {
public:
    /// Creates an object and queries it for an interface.
    /// @param outer the aggregating object, or null; with one, only IUnknown may be asked for
    static HRESULT Create(IUnknown* outer, REFIID riid, void** result) noexcept;

    CSysInfo(const CSysInfo&) = delete;
    CSysInfo& operator=(const CSysInfo&) = delete;

    // IUnknown, answered by the aggregating object when there is one
    STDMETHODIMP QueryInterface(REFIID riid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // IDispatch, through the type library
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** result) override;
    STDMETHODIMP GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID riid, LCID locale, WORD flags, DISPPARAMS* parameters,
                        VARIANT* result, EXCEPINFO* exception, UINT* argumentError) override;

    // ISysInfo
    STDMETHODIMP get_Analysis(BSTR id, BSTR format, BSTR schema, BSTR* result) override;
    STDMETHODIMP get_Logging(BSTR* level) override;
    STDMETHODIMP put_Logging(BSTR level) override;
    STDMETHODIMP get_ReferrerID(BSTR* text) override;
    STDMETHODIMP put_ReferrerID(BSTR text) override;
    STDMETHODIMP get_SessionID(BSTR* text) override;
    STDMETHODIMP put_SessionID(BSTR text) override;
    STDMETHODIMP get_System(BSTR filter, BSTR* report) override;
    STDMETHODIMP get_UserID(BSTR* text) override;
    STDMETHODIMP put_UserID(BSTR text) override;
    STDMETHODIMP get_Version(BSTR* version) override;
    STDMETHODIMP Detect() override;
    STDMETHODIMP get_Value(BSTR id, BSTR* value) override;
    STDMETHODIMP get_SysInfo(BSTR* report) override;
    STDMETHODIMP put_SysInfo(BSTR text) override;
    STDMETHODIMP get_Debug(BSTR* text) override;
    STDMETHODIMP put_Debug(BSTR text) override;
    STDMETHODIMP Configure(BSTR val) override;

    // IObjectWithSite
    STDMETHODIMP SetSite(IUnknown* newSite) override;
    STDMETHODIMP GetSite(REFIID riid, void** result) override;

    // IPersistPropertyBag: loads the identifiers from an object tag's parameters; saves them without the
    // session
    STDMETHODIMP GetClassID(CLSID* classId) override;
    STDMETHODIMP InitNew() override;
    STDMETHODIMP Load(IPropertyBag* bag, IErrorLog* errorLog) override;
    STDMETHODIMP Save(IPropertyBag* bag, BOOL clearDirty, BOOL saveAll) override;

    // IObjectSafety: safe for untrusted callers and for untrusted data
    STDMETHODIMP GetInterfaceSafetyOptions(REFIID riid, DWORD* supported, DWORD* enabled) override;
    STDMETHODIMP SetInterfaceSafetyOptions(REFIID riid, DWORD mask, DWORD enabled) override;

private:
    /// The object's own IUnknown, which the aggregating object holds.
    class Inner final : public IUnknown {
    public:
        explicit Inner(CSysInfo& newOwner) : owner(newOwner) {}
        STDMETHODIMP QueryInterface(REFIID riid, void** result) override;
        STDMETHODIMP_(ULONG) AddRef() override;
        STDMETHODIMP_(ULONG) Release() override;

    private:
        CSysInfo& owner;
    };

    explicit CSysInfo(IUnknown* newOuter);
    ~CSysInfo() = default;
    HRESULT FindInterface(REFIID riid, void** result);
    /// The type information behind IDispatch, loaded on first use; null when it cannot be loaded.
    ITypeInfo* TypeInfo() noexcept;

    ModuleLock moduleLock;
    Inner inner{*this};
    IUnknown* outer;  // not counted: the aggregating object outlives this one
    std::atomic<ULONG> references = 0;
    Microsoft::WRL::ComPtr<IUnknown> site;
    Microsoft::WRL::ComPtr<ITypeInfo> typeInfo;
    DWORD safetyOptions = 0;
};

}  // namespace kel
