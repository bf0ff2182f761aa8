// Commands and paths as the registry holds them: texts that programs wrote, or anybody.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The program files that a command may mean, in the order in which the system tries them. A quoted one is
/// what stands between the quotes; of an unquoted one, whose folders may have blanks in their names, each
/// beginning that ends in ".exe". Options, and the number of an icon, are left off; variables stay in.
/// @return at most eight; none for a command that names no program
std::vector<std::wstring> ProgramsOf(std::wstring_view command);

/// What stands behind the last separator of a path.
std::wstring_view FileNameOf(std::wstring_view path);

/// What stands before the last separator of a path; empty when there is none.
std::wstring_view FolderOf(std::wstring_view path);

/// Joins a folder, with or without a separator at its end, and what is below it. Each ".." in front of the
/// latter goes up by a folder.
std::wstring JoinPath(std::wstring_view folder, std::wstring_view below);

/// Whether a path is that of a file on a drive letter, in the plain form: nothing of a share, a device or a
/// stream, no wildcard and no control character.
bool IsPlainPath(std::wstring_view path);

}  // namespace kel
