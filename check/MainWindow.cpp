#include "check/MainWindow.h"

#include <algorithm>
#include <stdexcept>

#include "check/Resources.h"

namespace kel::check {

namespace {

/// The part of a monitor that task bars leave free.
RECT WorkArea(HMONITOR monitor)
{
    MONITORINFO information = {};
    information.cbSize = sizeof(information);
    if (!GetMonitorInfoW(monitor, &information))
        SystemParametersInfoW(SPI_GETWORKAREA, 0, &information.rcWork, 0);
    return information.rcWork;
}

POINT Middle(const RECT& area)
{
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

}  // namespace

MainWindow::MainWindow()
{
    POINT mouse = {};
    GetCursorPos(&mouse);
    const POINT middle = Middle(WorkArea(MonitorFromPoint(mouse, MONITOR_DEFAULTTOPRIMARY)));
    const HINSTANCE module = GetModuleHandleW(nullptr);
    handle = CreateWindowExW(WS_EX_APPWINDOW, L"STATIC", Title, WS_POPUP | WS_SYSMENU | WS_VISIBLE, middle.x,
                             middle.y, 0, 0, nullptr, nullptr, module, nullptr);
    if (handle == nullptr)
        throw std::runtime_error("A window cannot be shown.");
    const HICON icon = LoadIconW(module, MAKEINTRESOURCEW(KEL_CHECK_ICON));
    SendMessageW(handle, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
    SendMessageW(handle, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
}

MainWindow::~MainWindow()
{
    DestroyWindow(handle);
    handle = nullptr;
}

void MainWindow::Place(HWND page)
{
    RECT place = {}, size = {};
    GetWindowRect(handle, &place);
    GetWindowRect(page, &size);
    const RECT area = WorkArea(MonitorFromWindow(handle, MONITOR_DEFAULTTONEAREST));
    const int width = size.right - size.left, height = size.bottom - size.top;
    SetWindowPos(
        page, nullptr,
        std::clamp<int>(place.left - width / 2, area.left, std::max<int>(area.left, area.right - width)),
        std::clamp<int>(place.top - height / 2, area.top, std::max<int>(area.top, area.bottom - height)), 0,
        0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void MainWindow::Follow(HWND page)
{
    RECT place = {};
    if (!GetWindowRect(page, &place))
        return;
    const POINT middle = Middle(place);
    SetWindowPos(handle, nullptr, middle.x, middle.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace kel::check
