#pragma once

#include <windows.h>

#include <setupapi.h>

#include <string>

#include "diag/Owners.h"

namespace kel::test {

/// A device of a setup class, planted through the Setup API and taken away when the object is destroyed.
class PlantedDevice {
public:
    /// @param classNumber the first number of the class's GUID
    explicit PlantedDevice(DWORD classNumber);
    PlantedDevice(const PlantedDevice&) = delete;
    PlantedDevice& operator=(const PlantedDevice&) = delete;
    ~PlantedDevice();

    /// Sets a text property (SPDRP_...). A list of texts has its zeros inside.
    PlantedDevice& With(DWORD property, const std::wstring& text);

    /// Makes the device's key (DIREG_DEV) or its driver's (DIREG_DRV), and writes a string or a value of any
    /// type into it, or into a subkey.
    PlantedDevice& With(DWORD kind, const wchar_t* subkey, const wchar_t* name, const std::wstring& text);
    PlantedDevice& With(DWORD kind, const wchar_t* subkey, const wchar_t* name, DWORD type, const void* data,
                        std::size_t size);

private:
    HDEVINFO set;
    SP_DEVINFO_DATA device = {};
};

}  // namespace kel::test
