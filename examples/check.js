// Does this machine meet the requirements of a product? Run with: cscript //nologo check.js [referrer [folder]]
// With a folder, the report and the verdict as a page are left there.
var control = new ActiveXObject("KELDetection_TAMS64.SysInfo");
control.ReferrerID = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "demo";
control.UserID = "visitor";

var verdict = control.Analysis("requirements", "xml", "1.0");
if (!verdict) {
  WScript.Echo("The analysis service gave no answer.");
  WScript.Quit(2);
}

// A flat text, so plain searching does.
function textOf(element, name) {
  var match = new RegExp("<" + name + ">([^<]*)</" + name + ">").exec(element);
  var text = match ? match[1] : "";
  return text.replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&#x27;/g, "'")
    .replace(/&amp;/g, "&");
}

function column(text, width) {
  while (text.length < width) text += " ";
  return text + "  ";
}

function row(label, needed, found, result) {
  WScript.Echo(column(label, 18) + column(needed, 26) + column(found, 52) + result);
}

row("REQUIREMENT", "NEEDED", "FOUND", "RESULT");
var requirement = /<requirement result="(\w+)">(.*?)<\/requirement>/g, match;
while ((match = requirement.exec(verdict)) !== null) {
  row(textOf(match[2], "label"), textOf(match[2], "needed"), textOf(match[2], "found") || "-", match[1]);
}
var total = /<analysis result="(\w+)"/.exec(verdict);
WScript.Echo("");
WScript.Echo("TOTAL: " + (total ? total[1] : "unknown"));

if (WScript.Arguments.length > 1) {
  var files = new ActiveXObject("Scripting.FileSystemObject");
  save("report.xml", control.SysInfo);
  save("analysis.html", control.Analysis("requirements", "html", "1.0"));
}

function save(name, text) {
  var file = files.CreateTextFile(WScript.Arguments(1) + "\\" + name, true, true);
  file.Write(text);
  file.Close();
}

WScript.Quit(total && total[1] == "pass" ? 0 : 1);
