# A detection script for fleet tools: writes one line when version @VERSION@ or later for the service at @HOST@ is
# installed for all users, and nothing otherwise. It always ends with 0, which the tools take as "ran without a fault".
$programs = if ($env:ProgramW6432) { $env:ProgramW6432 } else { $env:ProgramFiles }  # also in a 32-bit host
$dll = Get-Item -LiteralPath (Join-Path $programs '@NAME@\Detection.dll') -ErrorAction SilentlyContinue
if ($dll) {
    $info = $dll.VersionInfo
    if ([version]$info.FileVersion -ge [version]'@VERSION@.0' -and $info.Comments -eq 'Service: @HOST@') {
        "Detection $($info.FileVersion), $($info.Comments)"
    }
}
exit 0
