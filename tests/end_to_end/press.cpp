// Works a window of another program through messages. press TITLE BUTTON [look | TEXT]: waits for a window of
// that title that has that button, writes the window's texts, and presses the button; with "look" it does
// not, with a text it first enters that.
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

std::wstring ReadText(HWND window)
{
    std::wstring text(65536, L'\0');
    text.resize(static_cast<std::size_t>(
        SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

BOOL CALLBACK WriteText(HWND window, LPARAM)
{
    for (const wchar_t c : ReadText(window))
        std::putchar(c < 0x7F ? c : '?');
    std::putchar('\n');
    return TRUE;
}

BOOL CALLBACK FindEdit(HWND window, LPARAM found)
{
    wchar_t name[32] = {};
    GetClassNameW(window, name, 32);
    const bool isEdit = std::wstring(name) == L"Edit" && IsWindowVisible(window);
    if (isEdit)
        *reinterpret_cast<HWND*>(found) = window;
    return !isEdit;
}

/// A window that takes input, and its button.
HWND FindButton(const wchar_t* title, int button, HWND& window)
{
    for (;; Sleep(20)) {
        for (window = nullptr; (window = FindWindowExW(nullptr, window, L"#32770", title)) != nullptr;) {
            const HWND found = GetDlgItem(window, button);
            if (found != nullptr && IsWindowVisible(window) && IsWindowEnabled(window))
                return found;
        }
    }
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    HWND window = nullptr, edit = nullptr;
    const HWND button = FindButton(arguments[1], _wtoi(arguments[2]), window);
    const std::wstring text = count > 3 ? arguments[3] : L"";
    EnumChildWindows(window, &WriteText, 0);
    if (text == L"look")
        return 0;
    if (!text.empty() && !EnumChildWindows(window, &FindEdit, reinterpret_cast<LPARAM>(&edit)))
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    return PostMessageW(button, BM_CLICK, 0, 0) ? 0 : 1;
}
