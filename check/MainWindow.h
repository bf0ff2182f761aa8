#pragma once

#include <windows.h>

namespace kel::check {

/// The program's window, which owns the pages: it has no size, and stands for the program on the task bar. It
/// keeps the program in front while one page closes and the next one opens, and its place is theirs.
class MainWindow {
public:
    static constexpr const wchar_t* Title = L"Computer check";

    /// @throws std::runtime_error when the system does not make it
    MainWindow();
    MainWindow(const MainWindow&) = delete;
    MainWindow& operator=(const MainWindow&) = delete;
    ~MainWindow();

    /// The window; null when there is none.
    static HWND Handle() { return handle; }

    /// Moves a page to the place of the last one: the middle of the screen at first.
    static void Place(HWND page);

    /// Moves the window to where the user has moved a page.
    static void Follow(HWND page);

private:
    inline static HWND handle = nullptr;
};

}  // namespace kel::check
