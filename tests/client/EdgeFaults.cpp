#include "client/EdgeFaults.h"

#include <windows.h>

#include <winternl.h>

#include <wininet.h>

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>
#include <vector>

#include "platform/Library.h"

namespace kel::test {

namespace {

using Word = std::uintptr_t;  // an argument or a result of any type
using Any = Word(Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word);

constexpr std::string_view Answer = "71060|71063|71069|71207";  // of the service, to whatever it is asked
Word now = 0, unread = 0;
bool isArmed = false;
std::string_view chosen;
long allocations = 0, nth = 0;

template <typename T>
T* At(Word address)
{
    return reinterpret_cast<T*>(address);
}

Word CheckLine(const Word* a)
{
    const std::wstring_view line = At<wchar_t>(*a);
    return Word(EdgeFaults::broken += !line.empty() && line.find(L" | ") != line.rfind(L" | "));
}

Word Send(const Word* a)
{
    EdgeFaults::broken += a[3] != 0 && *At<char>(a[3]) != '<';
    return unread = Answer.size();
}

Word Read(const Word* a)
{
    *At<DWORD>(a[3]) = static_cast<DWORD>(Answer.copy(At<char>(a[1]), std::exchange(unread, 0)));
    return TRUE;
}

/// Functions that return the same when they fail, what they open or close, and what answers in their place.
struct Group {
    Word failure;
    long opens;
    const char* names;
    Word (*answer)(const Word* arguments) = nullptr;
};

constexpr Word Never = 1, OutOfMemory = 0x8007000E;
constexpr Group Groups[] = {
    {0, 1, "malloc calloc"},
    {0, 0, "SysAllocString SysAllocStringLen"},
    {Never, -1, "free"},
    {0, EdgeFaults::Handle, "InternetOpenW InternetConnectW HttpOpenRequestW"},
    {OutOfMemory, EdgeFaults::Handle, "RegOpenKeyExW RegCreateKeyExW BCryptOpenAlgorithmProvider"},
    {Never, -EdgeFaults::Handle, "RegCloseKey InternetCloseHandle BCryptCloseAlgorithmProvider"},
    {0, 0,
     "CreateThread FindResourceW LoadLibraryExW LoadResource LockResource SizeofResource GetModuleHandleW "
     "GetModuleHandleExW GetModuleFileNameW GetProcAddress GetVersionExW GetProductInfo IsWow64Process "
     "GlobalMemoryStatusEx GetPwrCapabilities QueryPerformanceFrequency MultiByteToWideChar "
     "WideCharToMultiByte StringFromGUID2 InternetSetOptionW InternetQueryOptionW InternetCrackUrlW "
     "InternetSetStatusCallbackW"},
    {OutOfMemory, 0,
     "RegQueryValueExW RegEnumKeyExW RegSetValueExW RegQueryInfoKeyW RegDeleteKeyW RegDeleteTreeW "
     "RegOverridePredefKey BCryptGenRandom CoCreateInstance CoSetProxyBlanket CoCreateGuid "
     "VariantChangeType VariantCopy ConnectServer ExecQuery Next Get LoadTypeLib LoadTypeLibEx "
     "RegisterTypeLibForUser UnRegisterTypeLibForUser QueryPathOfRegTypeLib DispInvoke"},
    {Never, 0, "OutputDebugStringW", &CheckLine},
    {0, EdgeFaults::Handle, "InternetOpenUrlW",
     [](const Word*) { return reinterpret_cast<Word>(InternetOpenW(L"", 1, nullptr, nullptr, 0)); }},
    {0, 0, "HttpSendRequestW", &Send},
    {0, 0, "InternetReadFile", &Read},
    {0, 0, "InternetQueryDataAvailable", [](const Word* a) { return Word(*At<DWORD>(a[1]) = 100); }},
    {0, 0, "HttpQueryInfoW",
     [](const Word* a) { return Word(a[1] < 100 && wcscpy(At<wchar_t>(a[2]), L"200")); }},
    {0, 0, "QueryPerformanceCounter", [](const Word* a) { return *At<Word>(*a) = now += 10000000; }},
};

struct Function {
    std::string name;
    const Group* group;
    Any* original = nullptr;
    bool isCalled = false;
    long calls = 0;  ///< that could have failed
};
std::vector<Function> functions;

/// Counts a call that can fail.
/// @return whether it is to fail: the one chosen, or each allocation from the one chosen on
bool Fails(Function& function)
{
    const bool allocates = function.group < Groups + 2;
    ++function.calls;
    allocations += allocates;
    return EdgeFaults::isLasting ? allocates && allocations >= nth
                                 : function.name == chosen && function.calls == nth;
}

/// Takes the place of a function, with more arguments than any has.
template <std::size_t Slot>
Word Stub(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word i, Word j, Word k, Word l)
{
    Function& function = functions[Slot];
    const Group* const group = function.group;
    function.isCalled = true;
    if (isArmed && group->failure != Never && Fails(function)) {
        EdgeFaults::failed = function.name;
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return group->failure;
    }
    if (group->opens < 0 && a != 0)
        EdgeFaults::open += group->opens;
    const Word arguments[] = {a, b, c, d};
    Word result =
        group->answer ? group->answer(arguments) : function.original(a, b, c, d, e, f, g, h, i, j, k, l);
    if (group->opens >= 0 && (group->failure == 0) == (result != 0))
        EdgeFaults::open += group->opens;
    if (function.name == "GetProcAddress" && result != 0)
        EdgeFaults::Hook(reinterpret_cast<void**>(&result), At<char>(b));
    return result;
}

template <std::size_t... Slots>
constexpr std::array<Any*, sizeof...(Slots)> Stubs(std::index_sequence<Slots...>)
{
    return {&Stub<Slots>...};
}

/// Called by the loader before a module runs, with flags, path, name and address.
void CALLBACK HookImports(ULONG, const Word* loaded, void*)
{
    if (std::wstring_view(At<UNICODE_STRING>(loaded[2])->Buffer) != L"Detection.dll")
        return;
    const Word module = loaded[3];
    const auto offset = static_cast<Word>(At<IMAGE_DOS_HEADER>(module)->e_lfanew);
    const auto& headers = *At<IMAGE_NT_HEADERS>(module + offset);
    const auto& imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module + imports.VirtualAddress); library->Name != 0;
         ++library) {
        void** slot = At<void*>(module + library->FirstThunk);
        for (auto* name = At<Word>(module + library->OriginalFirstThunk); *name != 0; ++name)
            EdgeFaults::Hook(slot++, At<IMAGE_IMPORT_BY_NAME>(module + *name)->Name);
    }
}

}  // namespace

void EdgeFaults::Install()
{
    static void* cookie = nullptr;
    if (cookie != nullptr)
        return;
    for (const Group& group : Groups) {
        std::istringstream names(group.names);
        for (std::string name; names >> name;)
            functions.push_back({name, &group});
    }
    using Register = NTSTATUS NTAPI(ULONG, decltype(&HookImports), void*, void**);
    const OwnedLibrary loader(LoadLibraryW(L"ntdll.dll"));
    FindFunction<Register>(loader.get(), "LdrRegisterDllNotification")(0, &HookImports, nullptr, &cookie);
}

void EdgeFaults::Hook(void** slot, std::string_view name)
{
    static constexpr auto AllStubs = Stubs(std::make_index_sequence<80>());
    const auto function = std::ranges::find(functions, name, &Function::name);
    if (function == functions.end())
        return;
    void* const stub =
        reinterpret_cast<void*>(AllStubs.at(static_cast<std::size_t>(function - functions.begin())));
    if (*slot == stub)
        return;
    function->original = reinterpret_cast<Any*>(*slot);
    DWORD protection = 0;
    VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection);
    *slot = stub;
}

void EdgeFaults::Arm(std::string_view fault)
{
    chosen = fault.substr(0, fault.find_first_of(":+"));
    isLasting = !chosen.empty() && fault[chosen.size()] == '+';
    std::istringstream(std::string(fault.substr(std::min(chosen.size() + 1, fault.size())))) >> nth;
    isArmed = true;
}

void EdgeFaults::Disarm()
{
    isArmed = false;
}

std::string EdgeFaults::Report()
{
    std::ostringstream report;
    report << "open=" << open << " failed=" << failed << " any=" << allocations;
    for (const auto& [name, group, original, isCalled, count] : functions)
        report << (isCalled ? " called " : " uncalled ") << name << '=' << count;
    return report.str();
}

}  // namespace kel::test
