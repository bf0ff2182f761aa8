' Does this machine meet the requirements of a product? Run with: cscript //nologo check.vbs [referrer]
Option Explicit
Dim control, verdict, pattern, total, line
Set control = WScript.CreateObject("KELDetection_TAMS64.SysInfo")
control.ReferrerID = "demo"
If WScript.Arguments.Count > 0 Then control.ReferrerID = WScript.Arguments(0)
control.UserID = "visitor"

verdict = control.Analysis("requirements", "xml", "1.0")
Set pattern = New RegExp
pattern.Pattern = "<analysis result=""(\w+)"""
Set total = pattern.Execute(verdict)
If total.Count = 0 Then
  WScript.Echo "No verdict: " & control.Value("73390") ' how the last exchange ended
  If verdict <> "" Then WScript.Echo "The analysis service answered: " & verdict
  WScript.Quit 2
End If

pattern.Global = True
pattern.Pattern = "<requirement result=""(\w+)""><label>([^<]*)</label><needed>([^<]*)</needed><found>([^<]*)</found>"
For Each line In pattern.Execute(verdict)
  WScript.Echo Plain(line.SubMatches(1)) & ": " & Plain(line.SubMatches(2)) & ", found " & Plain(line.SubMatches(3)) & _
    ": " & line.SubMatches(0)
Next
WScript.Echo "TOTAL: " & total(0).SubMatches(0)
If total(0).SubMatches(0) = "pass" Then WScript.Quit 0
WScript.Quit 1

Function Plain(text)
  Plain = Replace(Replace(Replace(text, "&lt;", "<"), "&gt;", ">"), "&quot;", """")
  Plain = Replace(Replace(Plain, "&#x27;", "'"), "&amp;", "&")
End Function
