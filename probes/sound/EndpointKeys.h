// The properties of a sound endpoint that say which device it belongs to, and what it looks like.
#pragma once

#include <windows.h>

#include <wtypes.h>

#include <string_view>

namespace kel {

/// The instance id of the device that an endpoint belongs to, after its kind: "{1}.HDAUDIO\...".
inline constexpr PROPERTYKEY DeviceKey = {
    {0xb3f8fa53, 0x0004, 0x438e, {0x90, 0x03, 0x51, 0xa4, 0x6e, 0x13, 0x9b, 0xfc}}, 2};
/// An endpoint's EndpointFormFactor.
inline constexpr PROPERTYKEY FormKey = {
    {0x1da5d803, 0xd492, 0x4edd, {0x8c, 0x23, 0xe0, 0xc0, 0xff, 0xee, 0x7f, 0x0e}}, 0};
/// The kind of a DeviceKey that is an instance id.
inline constexpr std::wstring_view InstanceKind = L"{1}.";

}  // namespace kel
