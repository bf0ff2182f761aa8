#include "check/Dialog.h"

#include <stdexcept>
#include <utility>

#include "check/MainWindow.h"
#include "service/Utf8.h"

namespace kel::check {

namespace {

constexpr UINT Width = 280;  // in the units of dialogs

PCWSTR IconName(PageIcon icon)
{
    switch (icon) {
        case PageIcon::Information:
            return TD_INFORMATION_ICON;
        case PageIcon::Warning:
            return TD_WARNING_ICON;
        case PageIcon::Error:
            return TD_ERROR_ICON;
        default:
            return nullptr;
    }
}

PCWSTR TextOrNull(const std::wstring& text)
{
    return text.empty() ? nullptr : text.c_str();
}

}  // namespace

Dialog::Dialog(const Page& page)
    : instruction(FromUtf8(page.instruction)),
      content(FromUtf8(page.content)),
      expander(FromUtf8(page.expander)),
      hidden(FromUtf8(page.hidden))
{
    config.cbSize = sizeof(config);
    config.hInstance = GetModuleHandleW(nullptr);
    config.dwFlags = TDF_ALLOW_DIALOG_CANCELLATION;
    config.pszWindowTitle = MainWindow::Title;
    config.pszMainIcon = IconName(page.icon);
    config.pszMainInstruction = instruction.c_str();
    config.pszContent = content.c_str();
    config.pszExpandedInformation = TextOrNull(hidden);
    config.pszCollapsedControlText = TextOrNull(expander);
    config.pszExpandedControlText = TextOrNull(expander);
    config.cxWidth = Width;
    config.pfCallback = &Notify;
    config.lpCallbackData = reinterpret_cast<LONG_PTR>(this);
}

void Dialog::AddButton(int id, const wchar_t* label, std::function<void(HWND)> action)
{
    buttons.push_back({id, label});
    actions.push_back(std::move(action));
}

void Dialog::AddBar(int end, std::function<std::optional<Step>()> nextStep)
{
    barEnd = end;
    watch = std::move(nextStep);
    config.dwFlags |= TDF_CALLBACK_TIMER | (end > 0 ? TDF_SHOW_PROGRESS_BAR : TDF_SHOW_MARQUEE_PROGRESS_BAR);
}

void Dialog::Show(HWND owner)
{
    config.hwndParent = owner != nullptr ? owner : MainWindow::Handle();
    config.pButtons = buttons.data();
    config.cButtons = static_cast<UINT>(buttons.size());
    if (FAILED(TaskDialogIndirect(&config, nullptr, nullptr, nullptr)))
        throw std::runtime_error("A window cannot be shown.");
}

HRESULT CALLBACK Dialog::Notify(HWND window, UINT notification, WPARAM parameter, LPARAM, LONG_PTR context)
{
    try {
        return reinterpret_cast<Dialog*>(context)->OnNotification(window, notification, parameter);
    } catch (...) {
        return S_OK;  // memory is short; the page stays as it is, and can be closed
    }
}

HRESULT Dialog::OnNotification(HWND window, UINT notification, WPARAM parameter)
{
    switch (notification) {
        case TDN_CREATED:
            OnCreated(window);
            return S_OK;
        case TDN_TIMER:
            OnTimer(window);
            return S_OK;
        case TDN_BUTTON_CLICKED:
            return OnButton(window, static_cast<int>(parameter));
        case TDN_DESTROYED:
            MainWindow::Follow(window);
            return S_OK;
        default:
            return S_OK;
    }
}

void Dialog::OnCreated(HWND window)
{
    MainWindow::Place(window);
    if (!watch)
        return;
    if (barEnd > 0)
        SendMessageW(window, TDM_SET_PROGRESS_BAR_RANGE, 0, MAKELPARAM(0, barEnd));
    else
        SendMessageW(window, TDM_SET_PROGRESS_BAR_MARQUEE, TRUE, 0);
}

void Dialog::OnTimer(HWND window)
{
    if (isDone)
        return;
    const std::optional<Step> step = watch();
    if (!step) {
        isDone = true;
        SendMessageW(window, TDM_CLICK_BUTTON, IDCANCEL, 0);
        return;
    }
    SendMessageW(window, TDM_SET_PROGRESS_BAR_POS, static_cast<WPARAM>(step->position), 0);
    if (std::wstring text = FromUtf8(step->text); text != content) {
        content = std::move(text);
        SendMessageW(window, TDM_SET_ELEMENT_TEXT, TDE_CONTENT, reinterpret_cast<LPARAM>(content.c_str()));
    }
}

HRESULT Dialog::OnButton(HWND window, int id)
{
    if (id == IDCANCEL && cancel && !isDone)
        cancel();
    for (std::size_t place = 0; place < buttons.size(); ++place) {
        if (buttons[place].nButtonID != id || !actions[place])
            continue;
        actions[place](window);
        return S_FALSE;  // the page stays
    }
    return S_OK;
}

}  // namespace kel::check
