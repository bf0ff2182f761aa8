#include "check/SaveFile.h"

#include <commdlg.h>

#include <cwchar>
#include <optional>

#include "check/Dialog.h"
#include "check/text/ProblemPage.h"
#include "program/files/File.h"
#include "program/text/UserError.h"
#include "service/Utf8.h"

namespace kel::check {

namespace {

constexpr DWORD MaxPath = 32768;

/// The path that the user chose, UTF-8; nothing when the user chose none.
std::optional<std::string> AskForPath(HWND owner, const FileKind& kind, const std::string& name)
{
    std::wstring path = FromUtf8(name);
    path.resize(MaxPath);
    OPENFILENAMEW question = {};
    question.lStructSize = sizeof(question);
    question.hwndOwner = owner;
    question.lpstrFilter = kind.filter;
    question.lpstrFile = path.data();
    question.nMaxFile = MaxPath;
    question.lpstrDefExt = kind.extension;
    question.Flags =
        OFN_EXPLORER | OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!GetSaveFileNameW(&question))
        return std::nullopt;
    return ToUtf8(path.c_str());  // up to its zero
}

}  // namespace

void SaveFile(HWND owner, const FileKind& kind, const std::string& name, const std::string& bytes)
{
    const std::optional<std::string> path = AskForPath(owner, kind, name);
    if (!path)
        return;
    try {
        program::WriteFile(*path, bytes);
    } catch (const program::UserError& error) {
        Dialog dialog(NotSavedPage(error.what()));
        dialog.AddCloseButton();
        dialog.Show(owner);
    }
}

}  // namespace kel::check
