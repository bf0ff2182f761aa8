// The sound service's enumerator of endpoints, as a test describes it.
#pragma once

#include <mmdeviceapi.h>
#include <propsys.h>

#include "support/FakeWmiObjects.h"

namespace kel::test {

struct FakeEndpoint {
    EDataFlow direction;
    std::wstring device;  ///< as its property has it; empty when it has none
};

struct FakeSoundData {
    std::vector<FakeEndpoint> endpoints;
    int defaultOutput = -1;  ///< place of the endpoint; below 0 there is none
    HRESULT enumerate = S_OK;
    HRESULT getDefault = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);  ///< where there is none
    bool isMisused = false;  ///< an endpoint was activated, or one asked for that is not active
    ULONG references = 0;    ///< on the fakes, all together
    std::vector<std::shared_ptr<void>> made;
};

struct FakeDevice final : Fake<IMMDevice, FakeEndpoint, FakeSoundData> {
    STDMETHODIMP Activate(REFIID, DWORD, PROPVARIANT*, void**) override
    {
        return data->isMisused = true, E_NOTIMPL;
    }
    STDMETHODIMP OpenPropertyStore(DWORD, IPropertyStore** result) override
    {
        std::wstring texts[] = {L"Anna's headset", content.device};
        const PROPERTYKEY keys[] = {
            {{0xa45c254e, 0xdf1c, 0x4efd, {0x80, 0x20, 0x67, 0xd1, 0x46, 0xa8, 0x50, 0xe0}}, 14},
            {{0xb3f8fa53, 0x0004, 0x438e, {0x90, 0x03, 0x51, 0xa4, 0x6e, 0x13, 0x9b, 0xfc}}, 2}};
        PSCreateMemoryPropertyStore(__uuidof(IPropertyStore), reinterpret_cast<void**>(result));
        for (int property = 0; property < 2 && !texts[property].empty(); ++property) {
            PROPVARIANT value = {};
            value.vt = VT_LPWSTR;
            value.pwszVal = texts[property].data();
            (*result)->SetValue(keys[property], value);
        }
        return S_OK;
    }
    KEL_UNUSED(GetId, (LPWSTR*))
    KEL_UNUSED(GetState, (DWORD*))
};

struct FakeCollection final : Fake<IMMDeviceCollection, std::vector<FakeEndpoint>, FakeSoundData> {
    STDMETHODIMP GetCount(UINT* count) override { return *count = UINT(content.size()), S_OK; }
    STDMETHODIMP Item(UINT place, IMMDevice** result) override
    {
        return *result = Make<FakeDevice>(data, content.at(place)), S_OK;
    }
};

struct FakeEnumerator final : Fake<IMMDeviceEnumerator, Nothing, FakeSoundData> {
    STDMETHODIMP EnumAudioEndpoints(EDataFlow direction, DWORD states, IMMDeviceCollection** result) override
    {
        data->isMisused |= states != DEVICE_STATE_ACTIVE;
        std::vector<FakeEndpoint> found = data->endpoints;
        std::erase_if(found, [direction](const FakeEndpoint& one) { return one.direction != direction; });
        *result = SUCCEEDED(data->enumerate) ? Make<FakeCollection>(data, found) : nullptr;
        return data->enumerate;
    }
    STDMETHODIMP GetDefaultAudioEndpoint(EDataFlow, ERole, IMMDevice** result) override
    {
        if (data->defaultOutput < 0)
            return data->getDefault;
        return *result = Make<FakeDevice>(data, data->endpoints[std::size_t(data->defaultOutput)]), S_OK;
    }
    KEL_UNUSED(GetDevice, (LPCWSTR, IMMDevice**))
    KEL_UNUSED_2(RegisterEndpointNotificationCallback, UnregisterEndpointNotificationCallback,
                 (IMMNotificationClient*))
};

/// Takes the place of the system's own, in this process and in an apartment, as long as it lives.
struct FakeSound final : Fake<IClassFactory, Nothing, FakeSoundData> {
    explicit FakeSound(FakeSoundData& newData)
    {
        data = &newData;
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        CoRegisterClassObject(__uuidof(MMDeviceEnumerator), this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                              &registration);
    }
    ~FakeSound()
    {
        CoRevokeClassObject(registration);
        CoUninitialize();
    }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID, void** result) override
    {
        return *result = Make<FakeEnumerator>(data), S_OK;
    }
    KEL_UNUSED(LockServer, (BOOL))

    DWORD registration = 0;
};

}  // namespace kel::test
