' For a module of an Office program. 64-bit Office loads the control; 32-bit Office gets it from kel.exe, where the package was
' installed with LOCALSERVER=1. Late-bound: no reference is needed.
' Returns the verdict and one fact; call it from a button, or in the immediate window: ?CheckMachine("demo")
Function CheckMachine(Referrer)
  Dim Control, Verdict, Start
  On Error Resume Next
  Set Control = CreateObject("KELDetection_TAMS64.SysInfo")
  If Err.Number <> 0 Then
    CheckMachine = "The control is not installed, or not for 32-bit programs."
    Exit Function
  End If
  On Error GoTo 0
  Control.ReferrerID = Referrer
  Control.UserID = "visitor"
  Verdict = Control.Analysis("requirements", "xml", "1.0")
  Start = InStr(Verdict, "<analysis result=""")
  If Start = 0 Then
    CheckMachine = "No verdict: " & Control.Value("73390") ' how the last exchange ended
  Else
    Verdict = Mid(Verdict, Start + Len("<analysis result="""))
    CheckMachine = "Verdict: " & Left(Verdict, InStr(Verdict, """") - 1)
  End If
  CheckMachine = CheckMachine & ", memory: " & Control.Value("71063")
End Function
