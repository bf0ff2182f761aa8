#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "check/text/Page.h"

namespace kel::check {

/// What a page with a bar shows at the moment.
struct Step {
    std::string text;  // UTF-8
    int position = 0;  // of the bar
};

/// A page as the system's task dialog. Each page has a window of its own, which appears where the last one
/// was.
class Dialog {
public:
    explicit Dialog(const Page& page);
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    /// Adds a button.
    /// @param action what it does while the page stays, with the page's window; without one it closes the
    /// page
    void AddButton(int id, const wchar_t* label, std::function<void(HWND)> action = {});

    /// Adds the system's button "Cancel", which also stands for the Escape key and the window's cross.
    /// @param action called at once, while the page stands: closing a window can take a while
    void AddCancelButton(std::function<void()> action)
    {
        config.dwCommonButtons |= TDCBF_CANCEL_BUTTON;
        cancel = std::move(action);
    }

    /// Adds the system's button "Close", which stands for the same.
    void AddCloseButton() { config.dwCommonButtons |= TDCBF_CLOSE_BUTTON; }

    /// Names the button that the Enter key presses, instead of the first one.
    void SetDefaultButton(int id) { config.nDefaultButton = id; }

    /// Adds a bar. The page closes by itself when there is no further step.
    /// @param end the position at which the bar is full; 0 for one that only shows that the program is at
    /// work
    /// @param nextStep called several times a second
    void AddBar(int end, std::function<std::optional<Step>()> nextStep);

    /// Shows the page until it closes.
    /// @param owner the window that the page belongs to; null for the program's own
    /// @throws std::runtime_error when the system cannot show it
    void Show(HWND owner = nullptr);

private:
    static HRESULT CALLBACK Notify(HWND window, UINT notification, WPARAM parameter, LPARAM,
                                   LONG_PTR context);
    HRESULT OnNotification(HWND window, UINT notification, WPARAM parameter);
    void OnCreated(HWND window);
    void OnTimer(HWND window);
    HRESULT OnButton(HWND window, int id);

    std::wstring instruction, content, expander, hidden;
    std::vector<TASKDIALOG_BUTTON> buttons;
    std::vector<std::function<void(HWND)>> actions;  // of the buttons
    int barEnd = 0;
    std::function<std::optional<Step>()> watch;
    std::function<void()> cancel;
    bool isDone = false;
    TASKDIALOGCONFIG config = {};
};

}  // namespace kel::check
