# Run in 64-bit PowerShell: powershell -File check.ps1 [referrer]
# Windows PowerShell starts in a single-threaded apartment, PowerShell 7 in a multithreaded one: both work, the second
# through the control's own apartment. Where scripts are not allowed: powershell -ExecutionPolicy Bypass -File check.ps1
param([string] $Referrer = 'demo')

if (-not [Environment]::Is64BitProcess) {
    Write-Error 'The control needs a 64-bit PowerShell.'
    exit 2
}
try {
    $control = New-Object -ComObject KELDetection_TAMS64.SysInfo
} catch {
    Write-Error 'The control is not installed.'
    exit 2
}
$control.ReferrerID = $Referrer
$control.UserID = 'visitor'
$verdict = $control.Analysis('requirements', 'xml', '1.0')
if ($verdict -notmatch '<analysis result="(\w+)"') {
    "No verdict: $($control.Value('73390'))"  # how the last exchange ended
    exit 2
}
$total = $Matches[1]
"Verdict: $total"
"Memory: $($control.Value('71063'))"
if ($total -eq 'pass') { exit 0 } else { exit 1 }
