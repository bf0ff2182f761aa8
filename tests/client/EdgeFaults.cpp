#include "client/EdgeFaults.h"

#include <windows.h>

#include <winternl.h>

#include <wininet.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <mutex>
#include <sstream>
#include <utility>
#include <vector>

extern "C" NTSTATUS NTAPI LdrRegisterDllNotification(ULONG flags, void* called, void* context, void** cookie);

namespace kel::test {

namespace {

using Word = std::uintptr_t;  // an argument or a result of any type
using Any = Word(Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word);

constexpr std::string_view Answer = "71060|71063|71069|71207";  // of the service to every request
Word now = 0, unread = 0;
bool forbidsLogon = false;  // the request that is sent next
std::array<char, 40> chosen = {};
long allocations = 0, nth = 0, open = 0;  // open: blocks of memory, and one for each handle
int broken = 0;                           // lines of the log and bodies of requests that were not whole
constexpr long Handle = 100000;

template <typename T>
T* At(Word address)
{
    return reinterpret_cast<T*>(address);
}

/// Functions that return the same when they fail, what they open or close, and what replaces them.
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
    {0, Handle, "InternetOpenW InternetConnectW HttpOpenRequestW"},
    {OutOfMemory, Handle, "RegOpenKeyExW RegCreateKeyExW BCryptOpenAlgorithmProvider"},
    {Never, -Handle, "RegCloseKey InternetCloseHandle BCryptCloseAlgorithmProvider"},
    {0, 0,
     "CreateThread FindResourceW LoadResource LockResource SizeofResource GetModuleHandleW "
     "GetModuleHandleExW GetModuleFileNameW GetProcAddress GetVersionExW GetProductInfo IsWow64Process "
     "IsWow64Process2 GetLogicalProcessorInformationEx OpenProcessToken GetTokenInformation "
     "GetPhysicallyInstalledSystemMemory GlobalMemoryStatusEx GetPwrCapabilities QueryPerformanceFrequency "
     "MultiByteToWideChar "
     "WideCharToMultiByte StringFromGUID2 InternetSetOptionW InternetQueryOptionW InternetCrackUrlW "
     "InternetSetStatusCallbackW LoadLibraryExW"},
    {OutOfMemory, 0,
     "RegQueryValueExW RegEnumKeyExW RegSetValueExW RegQueryInfoKeyW RegDeleteKeyW RegDeleteTreeW "
     "RegOverridePredefKey BCryptGenRandom CoCreateInstance CoSetProxyBlanket CoCreateGuid "
     "VariantChangeType VariantCopy LoadTypeLib LoadTypeLibEx RegisterTypeLibForUser "
     "UnRegisterTypeLibForUser QueryPathOfRegTypeLib DispInvoke"},
    {Never, 0, "OutputDebugStringW",
     [](const Word* a) {
         static std::mutex guard;
         const std::lock_guard lock(guard);
         const std::wstring_view line = At<wchar_t>(*a);
         EdgeFaults::log += line;
         return Word(broken += !line.empty() && line.find(L" | ") != line.rfind(L" | "));
     }},
    // Wine's own functions look for the display device in the registry, where a scratch key is, and use it
    // without checking that it was found.
    {Never, 0, "CreateDXGIFactory1 Direct3DCreate9Ex DllGetClassObject",
     [](const Word*) { return OutOfMemory; }},
    {0, Handle, "InternetOpenUrlW",
     [](const Word*) {
         unread = Answer.size();
         return reinterpret_cast<Word>(InternetOpenW(L"", 1, nullptr, nullptr, 0));
     }},
    {0, 0, "HttpSendRequestW",
     [](const Word* a) {
         broken += a[3] != 0 && *At<char>(a[3]) != '<';
         if (a[3] != 0)
             EdgeFaults::sent = At<char>(a[3]);
         EdgeFaults::withLogon += !std::exchange(forbidsLogon, false);
         return unread = Answer.size();
     }},
    {0, 0, "InternetReadFile",
     [](const Word* a) {
         *At<DWORD>(a[3]) = static_cast<DWORD>(Answer.copy(At<char>(a[1]), std::exchange(unread, 0)));
         return Word(TRUE);
     }},
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
    long calls = 0;  ///< those that could have failed
};
std::vector<Function> functions;

void Hook(void** slot, std::string_view name);

/// Replaces a function, and takes more arguments than any has. The chosen call fails, or each allocation from
/// the chosen one on.
template <std::size_t Slot>
Word Stub(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word i, Word j, Word k, Word l)
{
    Function& function = functions[Slot];
    const auto& [failure, opens, names, answer] = *function.group;
    function.isCalled = true;
    if (function.name == "InternetConnectW")
        EdgeFaults::withLogon += (g & INTERNET_FLAG_NO_AUTH) == 0;
    forbidsLogon |= function.name == "InternetSetOptionW" &&
                    static_cast<DWORD>(b) == INTERNET_OPTION_SUPPRESS_SERVER_AUTH;
    if (EdgeFaults::isArmed && failure != Never) {
        const bool allocates = function.group < Groups + 2;
        ++function.calls;
        allocations += allocates;
        if (EdgeFaults::isLasting ? allocates && allocations >= nth
                                  : function.name == chosen.data() && function.calls == nth) {
            EdgeFaults::failed = function.name;
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return failure;
        }
    }
    if (opens < 0 && a != 0)
        open += opens;
    const Word arguments[] = {a, b, c, d};
    Word result = answer ? answer(arguments) : function.original(a, b, c, d, e, f, g, h, i, j, k, l);
    if (opens >= 0 && (failure == 0) == (result != 0))
        open += opens;
    if (function.name == "GetProcAddress" && result != 0)
        Hook(reinterpret_cast<void**>(&result), At<char>(b));
    return result;
}

template <std::size_t... Slots>
constexpr std::array<Any*, sizeof...(Slots)> Stubs(std::index_sequence<Slots...>)
{
    return {&Stub<Slots>...};
}

/// Hooks a slot of a table of functions. An unknown name leaves it unchanged.
void Hook(void** slot, std::string_view name)
{
    static constexpr auto AllStubs = Stubs(std::make_index_sequence<80>());
    const auto function = std::ranges::find(functions, name, &Function::name);
    if (function == functions.end())
        return;
    const auto index = static_cast<std::size_t>(function - functions.begin());
    void* const stub = reinterpret_cast<void*>(AllStubs.at(index));
    if (*slot == stub)
        return;
    function->original = reinterpret_cast<Any*>(*slot);
    DWORD protection = 0;
    VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection);
    *slot = stub;
}

/// Called by the loader before a module runs, with flags, path, name and address.
void CALLBACK HookImports(ULONG, const Word* loaded, void*)
{
    if (!std::wstring_view(At<UNICODE_STRING>(loaded[2])->Buffer).starts_with(L"Detection"))
        return;
    const Word module = loaded[3];
    const auto offset = static_cast<Word>(At<IMAGE_DOS_HEADER>(module)->e_lfanew);
    const auto& headers = *At<IMAGE_NT_HEADERS>(module + offset);
    const auto& imports = headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* library = At<IMAGE_IMPORT_DESCRIPTOR>(module + imports.VirtualAddress); library->Name != 0;
         ++library) {
        void** slot = At<void*>(module + library->FirstThunk);
        for (auto* name = At<Word>(module + library->OriginalFirstThunk); *name != 0; ++name)
            Hook(slot++, At<IMAGE_IMPORT_BY_NAME>(module + *name)->Name);
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
    LdrRegisterDllNotification(0, reinterpret_cast<void*>(&HookImports), nullptr, &cookie);
}

void EdgeFaults::Arm(const char* fault)
{
    char sign = 0;
    std::sscanf(fault != nullptr ? fault : "", "%39[^:+]%c%ld", chosen.data(), &sign, &nth);
    isLasting = sign == '+';
    for (Function& function : functions)
        function.calls = 0;
    isArmed = true;
}

bool EdgeFaults::WasCalled(std::string_view function)
{
    return std::ranges::any_of(
        functions, [function](const Function& one) { return one.name == function && one.isCalled; });
}

void EdgeFaults::Report()
{
    // The thread of the last exchange releases what it has only after the work is done.
    for (long before = -1; before != open; Sleep(200))
        before = open;
    std::cout << "\nopen=" << open << " broken=" << broken << " failed=" << failed << " any=" << allocations;
    for (const auto& [name, group, original, isCalled, calls] : functions)
        std::cout << ' ' << name << '=' << (isCalled ? calls : -1);
    std::cout << std::endl;
}

}  // namespace kel::test
