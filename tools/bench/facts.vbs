' Asks WMI for facts that the control reports, as an administrator's script would.
Option Explicit
Dim wmi, item, facts
Set wmi = GetObject("winmgmts:\\.\root\cimv2")
For Each item In wmi.ExecQuery("SELECT * FROM Win32_Processor")
  facts = facts & item.Name & "|" & item.Manufacturer & "|" & item.MaxClockSpeed & "|" & item.Caption & "|" & _
    item.NumberOfLogicalProcessors & "|" & item.ProcessorId & "|"
Next
For Each item In wmi.ExecQuery("SELECT * FROM Win32_BIOS")
  facts = facts & item.Name & "|" & item.Manufacturer & "|" & item.SMBIOSBIOSVersion & "|" & item.ReleaseDate & "|"
Next
For Each item In wmi.ExecQuery("SELECT * FROM Win32_BaseBoard")
  facts = facts & item.Manufacturer & "|" & item.Product & "|" & item.Version & "|"
Next
For Each item In wmi.ExecQuery("SELECT * FROM Win32_OperatingSystem")
  facts = facts & item.Caption & "|" & item.Version & "|" & item.BuildNumber & "|" & item.ServicePackMajorVersion & "|" & _
    item.OSArchitecture & "|" & item.SuiteMask & "|" & item.ProductType & "|" & item.Locale & "|" & _
    item.TotalVisibleMemorySize & "|" & item.FreePhysicalMemory & "|" & item.TotalVirtualMemorySize & "|"
Next
WScript.Echo facts
