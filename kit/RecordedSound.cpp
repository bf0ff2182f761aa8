#include "kit/RecordedSound.h"

#include <windows.h>

#include <comutil.h>
#include <mmdeviceapi.h>
#include <wrl/client.h>

#include "probes/Variant.h"
#include "probes/sound/EndpointKeys.h"
#include "probes/wmi/WMI.h"
#include "service/Utf8.h"
#include "values/Hexadecimal.h"

namespace kel::kit {

namespace {

using Lines = std::vector<std::string>;
using Microsoft::WRL::ComPtr;

/// An endpoint: its device's instance id, and for an input the number of its form.
struct Endpoint {
    std::wstring device;
    std::string form;
    bool operator==(const Endpoint&) const = default;
};

Endpoint ReadEndpoint(IMMDevice& device)
{
    Endpoint endpoint;
    ComPtr<IPropertyStore> properties;
    if (FAILED(device.OpenPropertyStore(STGM_READ, &properties)) || !properties)
        return endpoint;
    PROPVARIANT value = {};
    if (SUCCEEDED(properties->GetValue(DeviceKey, &value)) && value.vt == VT_LPWSTR &&
        std::wstring_view(value.pwszVal).starts_with(InstanceKind))
        endpoint.device = value.pwszVal + InstanceKind.size();
    PropVariantClear(&value);
    if (SUCCEEDED(properties->GetValue(FormKey, &value)) && value.vt == VT_UI4)
        endpoint.form = std::to_string(value.ulVal);
    PropVariantClear(&value);
    return endpoint;
}

std::string Failure(const char* word, HRESULT result)
{
    return std::string(word) + " " + ToUtf8(Hexadecimal(static_cast<DWORD>(result), 8));
}

/// The endpoints of the sound service.
struct Endpoints {
    std::vector<Endpoint> outputs;
    std::vector<Endpoint> inputs;
    std::optional<Endpoint> chosen;  ///< the default output
    Lines failures;
};

HRESULT List(IMMDeviceEnumerator& enumerator, EDataFlow direction, std::vector<Endpoint>& endpoints)
{
    ComPtr<IMMDeviceCollection> active;
    UINT count = 0;
    HRESULT result = enumerator.EnumAudioEndpoints(direction, DEVICE_STATE_ACTIVE, &active);
    if (SUCCEEDED(result))
        result = active->GetCount(&count);
    for (UINT place = 0; SUCCEEDED(result) && place < count; ++place) {
        ComPtr<IMMDevice> device;
        endpoints.push_back(SUCCEEDED(active->Item(place, &device)) && device ? ReadEndpoint(*device.Get())
                                                                              : Endpoint());
    }
    return result;
}

Endpoints ListEndpoints(const SoundFunctions& functions)
{
    Endpoints found;
    ComPtr<IMMDeviceEnumerator> enumerator;
    HRESULT result =
        CoCreateInstance(__uuidof(MMDeviceEnumerator), nullptr, CLSCTX_INPROC_SERVER,
                         __uuidof(IMMDeviceEnumerator), reinterpret_cast<void**>(enumerator.GetAddressOf()));
    if (SUCCEEDED(result))
        result = List(*enumerator.Get(), eRender, found.outputs);
    if (SUCCEEDED(result))
        result = List(*enumerator.Get(), eCapture, found.inputs);
    if (FAILED(result)) {
        found.failures = {Failure("no-endpoints", result) + "|" + std::to_string(functions.countOutputs())};
        return found;
    }
    ComPtr<IMMDevice> output;
    result = enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &output);
    if (SUCCEEDED(result) && output)
        found.chosen = ReadEndpoint(*output.Get());
    else
        found.failures = {Failure("no-default", result)};
    return found;
}

std::string EndpointLine(const char* word, const Endpoint& endpoint, DeviceMasks& masks)
{
    const std::string device = masks.Instance(endpoint.device);
    return std::string(word) + " " + (device.empty() ? device : ToUtf8(std::wstring(InstanceKind)) + device);
}

/// The device that WMI lists first, as a line; the class alone when it lists none.
std::string WmiLine(DeviceMasks& masks)
{
    const std::string line = "wmi Win32_SoundDevice";
    ComPtr<IEnumWbemClassObject> objects;
    ComPtr<IWbemClassObject> object;
    ULONG returned = 0;
    if (!WMI::Instance().Query(L"SELECT * FROM Win32_SoundDevice", &objects) || !objects ||
        objects->Next(static_cast<LONG>(WBEM_INFINITE), 1, &object, &returned) != WBEM_S_NO_ERROR)
        return line;
    const auto read = [&object](const wchar_t* property) {
        _variant_t value;
        return WMI::GetProperty(object.Get(), property, &value) ? ShowVariant(value) : std::wstring();
    };
    const std::wstring instance = read(L"DeviceID");
    const std::string name = masks.Text(read(L"Name"));
    const bool isNamed = !instance.starts_with(L"BTH") && !instance.starts_with(L"bth");
    return line + Field("DeviceID", masks.Instance(instance)) + Field("Name", isNamed ? name : "");
}

}  // namespace

Lines RecordSound(const DeviceEdges& edges, DeviceMasks& masks)
{
    const Endpoints endpoints = ListEndpoints(edges.sound);
    std::vector<std::wstring> instances;
    for (const std::vector<Endpoint>* const list : {&endpoints.outputs, &endpoints.inputs}) {
        for (const Endpoint& endpoint : *list)
            instances.push_back(endpoint.device);
    }
    VisitDevices(RecordedClass::Sound,
                 [&](const SetupDevice& device, HKEY) { instances.push_back(device.InstanceId()); });
    masks.Learn(instances);
    Lines lines;
    VisitDevices(RecordedClass::Sound, [&](const SetupDevice& device, HKEY driver) {
        const std::wstring instance = device.InstanceId();
        const bool isNamed = !instance.starts_with(L"BTH");
        const std::wstring name = (isNamed ? device.DeviceName() : device.Text(SPDRP_DEVICEDESC)).ToString();
        const std::string version = masks.Version(DriverText(driver, L"DriverVersion"));
        lines.push_back("sound " + masks.Instance(instance) + "|" + masks.Text(name) + "|" +
                        masks.Text(device.Text(SPDRP_HARDWAREID).ToString()) + "|" +
                        (device.IsWorking() ? "" : "off") + "|" + (version.empty() ? "none" : version));
    });
    lines.push_back(WmiLine(masks));
    bool isChosen = false;
    for (const Endpoint& output : endpoints.outputs) {
        const bool isDefault = !isChosen && output == endpoints.chosen;
        isChosen |= isDefault;
        lines.push_back(EndpointLine(isDefault ? "output*" : "output", output, masks));
    }
    for (const Endpoint& input : endpoints.inputs)
        lines.push_back(EndpointLine("input", input, masks) + (input.form.empty() ? "" : "|" + input.form));
    lines.insert(lines.end(), endpoints.failures.begin(), endpoints.failures.end());
    return lines;
}

}  // namespace kel::kit
