#include "support/PlantedSoftware.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "detectors/Detectors.h"
#include "support/FakeStorage.h"
#include "support/TestSession.h"
#include "values/Text.h"

namespace kel::test {

std::vector<BYTE> MakeVersionRecord(const std::wstring& version)
{
    std::vector<WORD> words(46);
    words[0] = 92;
    words[1] = 52;
    std::ranges::copy(std::wstring(L"VS_VERSION_INFO"), words.begin() + 3);
    words[20] = 0x04BD;
    words[21] = 0xFEEF;
    const std::vector<std::wstring> fields = Split(version, L'.');
    for (std::size_t field = 0; field < fields.size(); ++field)
        words[24 + (field ^ 1)] = static_cast<WORD>(std::stoul(fields[field]));
    const auto* const bytes = reinterpret_cast<const BYTE*>(words.data());
    return {bytes, bytes + 92};
}

PlantedSoftware::PlantedSoftware(const Machine& machine)
    : machineKeys(HKEY_LOCAL_MACHINE), userKeys(HKEY_CURRENT_USER)
{
    machineKeys.Make(L"SOFTWARE\\Wow6432Node");  // without it, both views of a machine are one
    Plant(machine);
    std::map<std::wstring, std::wstring> present;
    for (const std::wstring& line : machine[L"file"]) {
        const Lines fields = FieldsOf(line, 2);
        present[ToLower(fields[0])] = fields[1];
    }
    functions.openKey = [this](HKEY root, const wchar_t* name, REGSAM access) {
        keys.insert(ToLower(name));
        return OpenKey(root, name, access);
    };
    functions.expand = [](std::wstring text) {
        ReplaceAll(text, L"%ProgramFiles%", L"C:\\Program Files");
        ReplaceAll(text, L"%ProgramFiles(x86)%", L"C:\\Program Files (x86)");
        ReplaceAll(text, L"%SystemRoot%", L"C:\\Windows");
        ReplaceAll(text, L"%LOCALAPPDATA%", L"C:\\Users\\Anna\\AppData\\Local");
        ReplaceAll(text, L"%APPDATA%", L"C:\\Users\\Anna\\AppData\\Roaming");
        return text;
    };
    functions.driveType = [](const wchar_t* root) -> UINT {
        return *root == L'C' || *root == L'D' ? DRIVE_FIXED : DRIVE_REMOTE;
    };
    functions.fileAttributes = [this, present](const wchar_t* path) -> DWORD {
        ErrorModeCheck::Look();
        EXPECT_NE(*path, L'E') << "a share that may be gone is asked for a file";
        files.insert(ToLower(path));
        return present.contains(ToLower(path)) ? FILE_ATTRIBUTE_NORMAL : INVALID_FILE_ATTRIBUTES;
    };
    functions.versionRecord = [this, present](const wchar_t* path) {
        files.insert(ToLower(path));
        const auto found = present.find(ToLower(path));
        return found == present.end() || found->second.empty() ? std::vector<BYTE>()
                                                               : MakeVersionRecord(found->second);
    };
    // The installer's own functions read the planted keys.
    const SoftwareFunctions system = SoftwareFunctions::OfSystem();
    functions.relatedProduct = system.relatedProduct;
    functions.productInfo = system.productInfo;
    const auto lookUp = [rows = machine[L"package"]](std::wstring_view key, std::size_t column) {
        std::vector<std::wstring> found;
        for (const std::wstring& row : rows) {
            const std::vector<std::wstring> fields = Split(row, L'|');
            if (fields[column] == key)
                found.push_back(fields[column + 1]);
        }
        return found;
    };
    functions.packages = [lookUp](const wchar_t* family) { return lookUp(family, 0); };
    functions.packageFolder = [lookUp](const wchar_t* fullName) { return lookUp(fullName, 1).front(); };
    functions.programId = [id = machine.First(L"https")](const wchar_t*) { return id; };
    functions.windowsBuild = [build = NumberOf(machine.First(L"build"))] {
        return static_cast<DWORD>(build);
    };
    functions.programMachine = [isArm = !machine[L"arm64"].empty()]() -> USHORT {
        return isArm ? IMAGE_FILE_MACHINE_ARM64 : IMAGE_FILE_MACHINE_AMD64;
    };
    functions.hostProgram = [host = machine.First(L"host")] { return host; };
}

void PlantedSoftware::Plant(const Machine& machine, DWORD type)
{
    for (const wchar_t* view : {L"64", L"32", L"CU"}) {
        for (const std::wstring& line : machine[view])
            PlantKey(view, line, type);
    }
}

void PlantedSoftware::PlantKey(const std::wstring& view, const std::wstring& line, DWORD type)
{
    const Lines fields = Split(line, L'|');
    std::wstring path = L"SOFTWARE\\" + fields[0];
    ReplaceAll(path, L"\\U:", L"\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\");
    ReplaceAll(path, L"\\A:", L"\\Microsoft\\Windows\\CurrentVersion\\App Paths\\");
    if (view == L"32")
        path.insert(8, L"\\Wow6432Node");
    const ScratchKey& keysOf = view == L"CU" ? userKeys : machineKeys;
    keysOf.Make(path);
    for (std::size_t field = 1; field < fields.size(); ++field) {
        const std::size_t equals = fields[field].find(L'=');
        const std::wstring name = fields[field].substr(0, equals), text = fields[field].substr(equals + 1);
        const DWORD number = text.starts_with(L'#') ? std::stoul(text.substr(1)) : 0;
        if (text.starts_with(L'#'))
            keysOf.Write(path, name.c_str(), REG_DWORD, &number, sizeof(number));
        else
            keysOf.Write(path, name.c_str(), type, text.c_str(), 2 * text.size() + 2);
    }
}

Lines FindSoftware(const SoftwareFunctions& functions)
{
    const TestSession session;
    Software().Detect(functions);
    Browser().Detect(functions);
    Applications().Detect(functions);
    return FoundIn(session.Lines(72904, 73299));
}

}  // namespace kel::test
