' Asks the control for its report, with the log off.
Option Explicit
Dim control
Set control = WScript.CreateObject("KELDetection_TAMS64.SysInfo")
control.ReferrerID = "bench"
WScript.Echo control.SysInfo
