' Does this machine meet the requirements of a product? Run with: cscript //nologo check.vbs [referrer]
Option Explicit
Dim control, verdict, pattern, line
Set control = WScript.CreateObject("KELDetection_TAMS64.SysInfo")
control.ReferrerID = "demo"
If WScript.Arguments.Count > 0 Then control.ReferrerID = WScript.Arguments(0)
control.UserID = "visitor"

verdict = control.Analysis("requirements", "xml", "1.0")
If verdict = "" Then
  WScript.Echo "The analysis service gave no answer."
  WScript.Quit 2
End If

Set pattern = New RegExp
pattern.Global = True
pattern.Pattern = "<requirement result=""(\w+)""><label>([^<]*)</label><needed>([^<]*)</needed><found>([^<]*)</found>"
For Each line In pattern.Execute(verdict)
  WScript.Echo line.SubMatches(1) & ": " & line.SubMatches(2) & ", found " & line.SubMatches(3) & ": " & line.SubMatches(0)
Next

pattern.Pattern = "<analysis result=""(\w+)"""
WScript.Echo "TOTAL: " & pattern.Execute(verdict)(0).SubMatches(0)
