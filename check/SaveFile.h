#pragma once

#include <windows.h>

#include <string>

namespace kel::check {

/// A kind of file that the user can save.
struct FileKind {
    const wchar_t* filter;     // as the system's dialog for files takes it
    const wchar_t* extension;  // without the dot
};

inline constexpr FileKind WebPage = {L"Web page (*.html)\0*.html\0", L"html"};
inline constexpr FileKind PlainText = {L"Text (*.txt)\0*.txt\0", L"txt"};

/// Asks the user for a file, and writes it. When it cannot be written, a page says why.
/// @param owner the window that asks
/// @param name proposed for the file, without an extension
void SaveFile(HWND owner, const FileKind& kind, const std::string& name, const std::string& bytes);

}  // namespace kel::check
