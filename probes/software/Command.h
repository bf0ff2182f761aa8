// Commands and paths from the registry: untrusted texts.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The program files that a command may mean, in the order in which the system tries them. For a quoted
/// command that is the text between the quotes; for an unquoted one, whose folders may contain blanks, each
/// prefix that ends in ".exe". Options and icon numbers are dropped; variables are kept.
/// @return at most eight; none for a command that does not name a program
std::vector<std::wstring> ProgramsOf(std::wstring_view command);

/// The part of a path after its last separator.
std::wstring_view FileNameOf(std::wstring_view path);

/// The part of a path before its last separator; empty without a separator.
std::wstring_view FolderOf(std::wstring_view path);

/// Joins a folder, with or without a separator at its end, and a path below it. Each ".." at the start of
/// that path goes up by one folder.
std::wstring JoinPath(std::wstring_view folder, std::wstring_view below);

/// Whether a path is a plain path on a drive letter: without a share, a device, a stream, a wildcard or a
/// control character.
bool IsPlainPath(std::wstring_view path);

}  // namespace kel
