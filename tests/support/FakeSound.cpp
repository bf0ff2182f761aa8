#include "support/FakeSound.h"

namespace kel::test {

namespace {

using Plain = ServiceObject<FakeSoundData>;
using Endpoint = ServiceObject<FakeSoundData, FakeEndpoint>;
using Endpoints = ServiceObject<FakeSoundData, std::vector<FakeEndpoint>>;

HRESULT Activate(Endpoint* self)
{
    self->data.isMisused = true;
    return E_NOTIMPL;
}

HRESULT OpenPropertyStore(Endpoint* self, DWORD, IPropertyStore** result)
{
    std::wstring texts[] = {L"Anna's headset", self->content.device};
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
    if (!self->content.form.empty()) {
        constexpr PROPERTYKEY FormKey = {
            {0x1da5d803, 0xd492, 0x4edd, {0x8c, 0x23, 0xe0, 0xc0, 0xff, 0xee, 0x7f, 0x0e}}, 0};
        PROPVARIANT value = {};
        value.vt = VT_UI4;
        value.ulVal = std::stoul(self->content.form);
        (*result)->SetValue(FormKey, value);
    }
    return S_OK;
}

HRESULT GiveEndpoint(FakeSoundData& data, const FakeEndpoint& endpoint, IMMDevice** result)
{
    auto& device = Make<Endpoint>(data, __uuidof(IMMDevice), endpoint, 4, &OpenPropertyStore);
    device.Answer(3, &Activate);
    return device.Give(result);
}

HRESULT GetCount(Endpoints* self, UINT* count)
{
    *count = static_cast<UINT>(self->content.size());
    return S_OK;
}

HRESULT Item(Endpoints* self, UINT place, IMMDevice** result)
{
    return GiveEndpoint(self->data, self->content.at(place), result);
}

HRESULT EnumAudioEndpoints(Plain* self, EDataFlow direction, DWORD states, IMMDeviceCollection** result)
{
    FakeSoundData& data = self->data;
    data.isMisused |= states != DEVICE_STATE_ACTIVE;
    *result = nullptr;
    if (FAILED(data.enumerate))
        return data.enumerate;
    std::vector<FakeEndpoint> found = data.endpoints;
    std::erase_if(found, [direction](const FakeEndpoint& one) { return one.direction != direction; });
    auto& listed = Make<Endpoints>(data, __uuidof(IMMDeviceCollection), found, 3, &GetCount);
    listed.Answer(4, &Item);
    return listed.Give(result);
}

HRESULT GetDefaultAudioEndpoint(Plain* self, EDataFlow direction, ERole role, IMMDevice** result)
{
    FakeSoundData& data = self->data;
    data.isMisused |= direction != eRender || role != eConsole;
    if (data.defaultOutput < 0)
        return data.getDefault;
    return GiveEndpoint(data, data.endpoints[static_cast<std::size_t>(data.defaultOutput)], result);
}

HRESULT CreateInstance(Plain* self, IUnknown*, REFIID riid, void** result)
{
    auto& enumerator = Make<Plain>(self->data, riid, 0, 3, &EnumAudioEndpoints);
    enumerator.Answer(4, &GetDefaultAudioEndpoint);
    return enumerator.Give(result);
}

}  // namespace

FakeSound::FakeSound(FakeSoundData& data)
    : enumerators(__uuidof(MMDeviceEnumerator), Make<Plain>(data, IID_IClassFactory, 0, 3, &CreateInstance))
{
}

}  // namespace kel::test
