#include "probes/sound/SoundEndpoints.h"

#include <mmdeviceapi.h>
#include <mmsystem.h>
#include <wrl/client.h>

#include <algorithm>

#include "diag/Log.h"
#include "diag/SourceFailures.h"
#include "platform/Library.h"
#include "probes/Attempt.h"
#include "probes/sound/EndpointKeys.h"
#include "values/Hexadecimal.h"
#include "values/Text.h"

namespace kel {

using Microsoft::WRL::ComPtr;

namespace {

constexpr HRESULT NotFound = HRESULT_FROM_WIN32(ERROR_NOT_FOUND);

/// A property, cleared by the destructor.
struct Property {
    PROPVARIANT value = {};

    Property() = default;
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;
    ~Property() { PropVariantClear(&value); }
};

bool IsGiven(HRESULT result, const wchar_t* call)
{
    if (FAILED(result)) {
        WriteLog(LogWarning, call, L" failed: 0x", Hexadecimal(static_cast<DWORD>(result), 8));
        FailureScope::Note(L"sound endpoints", static_cast<std::uint32_t>(result));
    }
    return SUCCEEDED(result);
}

/// The device's instance id in upper case; empty for an endpoint without a readable one.
std::wstring DeviceOf(IMMDevice& endpoint)
{
    ComPtr<IPropertyStore> properties;
    Property property;
    if (FAILED(endpoint.OpenPropertyStore(STGM_READ, properties.GetAddressOf())) || !properties ||
        FAILED(properties->GetValue(DeviceKey, &property.value)) || property.value.vt != VT_LPWSTR ||
        property.value.pwszVal == nullptr)
        return {};
    const std::wstring_view text = property.value.pwszVal;
    return text.starts_with(InstanceKind) ? ToUpper(std::wstring(text.substr(InstanceKind.size())))
                                          : std::wstring();
}

/// Whether an input is a microphone, alone or in a headset or handset; nullopt when its form is unknown.
std::optional<bool> IsMicrophone(IMMDevice& endpoint)
{
    ComPtr<IPropertyStore> properties;
    Property property;
    if (FAILED(endpoint.OpenPropertyStore(STGM_READ, properties.GetAddressOf())) || !properties ||
        FAILED(properties->GetValue(FormKey, &property.value)) || property.value.vt != VT_UI4)
        return std::nullopt;
    const ULONG form = property.value.ulVal;
    return form == Microphone || form == Headset || form == Handset;
}

/// Adds the devices of the active endpoints of one direction.
/// @return the number of endpoints; nullopt, with a warning in the log, when the service does not answer
std::optional<UINT> List(IMMDeviceEnumerator& enumerator, EDataFlow direction, SoundEndpoints& endpoints)
{
    std::optional<UINT> microphones = 0U;
    ComPtr<IMMDeviceCollection> active;
    UINT count = 0;
    HRESULT result = enumerator.EnumAudioEndpoints(direction, DEVICE_STATE_ACTIVE, active.GetAddressOf());
    if (SUCCEEDED(result))
        result = active->GetCount(&count);
    if (!IsGiven(result, L"EnumAudioEndpoints"))
        return std::nullopt;
    for (UINT place = 0; place < count; ++place) {
        ComPtr<IMMDevice> endpoint;
        if (FAILED(active->Item(place, endpoint.GetAddressOf())) || !endpoint) {
            microphones.reset();
            continue;
        }
        if (direction == eCapture && microphones) {
            const std::optional<bool> isMicrophone = IsMicrophone(*endpoint.Get());
            microphones =
                isMicrophone ? std::optional(*microphones + (*isMicrophone ? 1U : 0U)) : std::nullopt;
        }
        const std::wstring device = DeviceOf(*endpoint.Get());
        if (device.empty() || std::ranges::count(endpoints.devices, device, &SoundInfo::instanceId) > 0)
            continue;
        SoundInfo& added = endpoints.devices.emplace_back();
        added.instanceId = device;
        added.deviceId = DeviceID(device);
    }
    if (direction == eCapture)
        endpoints.microphones = microphones;
    return count;
}

void FindDefault(IMMDeviceEnumerator& enumerator, SoundEndpoints& endpoints)
{
    ComPtr<IMMDevice> output;
    std::wstring device;
    const HRESULT result = enumerator.GetDefaultAudioEndpoint(eRender, eConsole, output.GetAddressOf());
    if (result != NotFound) {
        if (!IsGiven(result, L"GetDefaultAudioEndpoint") || !output)
            return;
        device = DeviceOf(*output.Get());
        if (device.empty())
            return;
    }
    endpoints.isDefaultKnown = true;
    for (SoundInfo& info : endpoints.devices)
        info.servesDefault = info.instanceId == device;
}

/// Loads its library at the first call, since that is costly and seldom needed.
UINT CountOutputs()
{
    auto* const count = PermanentFunction<decltype(waveOutGetNumDevs)>(L"winmm.dll", "waveOutGetNumDevs");
    return count != nullptr ? count() : 0;
}

}  // namespace

SoundEndpoints ReadSoundEndpoints()
{
    SoundEndpoints endpoints;
    Attempt(L"Error in reading the sound endpoints.", [&] {
        ComPtr<IMMDeviceEnumerator> enumerator;
        if (!IsGiven(CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                                      __uuidof(IMMDeviceEnumerator),
                                      reinterpret_cast<void**>(enumerator.GetAddressOf())),
                     L"The sound endpoints' enumerator"))
            return;
        endpoints.outputs = List(*enumerator.Get(), eRender, endpoints);
        if (!endpoints.outputs)  // the other calls would fail, too
            return;
        endpoints.inputs = List(*enumerator.Get(), eCapture, endpoints);
        FindDefault(*enumerator.Get(), endpoints);
    });
    return endpoints;
}

SoundFunctions SoundFunctions::OfSystem()
{
    return {&CountOutputs};
}

}  // namespace kel
