// Does this machine meet the requirements of a product? Run with: cscript //nologo check.js [referrer [folder]]
// With a folder, the report and the verdict as a page are left there.
var control = new ActiveXObject("KELDetection_TAMS64.SysInfo");
control.ReferrerID = WScript.Arguments.length > 0 ? WScript.Arguments(0) : "demo";
control.UserID = "visitor";

var verdict = control.Analysis("requirements", "xml", "1.0");
if (!/<requirement /.test(verdict)) {
  WScript.Echo("No verdict: " + control.Value("73390"));  // how the last exchange ended
  if (verdict) WScript.Echo("The analysis service answered: " + verdict);
  WScript.Quit(2);
}

// The text is flat, so a plain search is enough.
function textOf(element, name) {
  var match = new RegExp("<" + name + ">([^<]*)</" + name + ">").exec(element);
  var text = match ? match[1] : "";
  return text.replace(/&lt;/g, "<").replace(/&gt;/g, ">").replace(/&quot;/g, '"').replace(/&#x27;/g, "'")
    .replace(/&amp;/g, "&");
}

var rows = [["REQUIREMENT", "NEEDED", "FOUND", "RESULT"]];
var requirement = /<requirement result="(\w+)">(.*?)<\/requirement>/g, match;
while ((match = requirement.exec(verdict)) !== null) {
  var label = textOf(match[2], "label") + (match[2].indexOf("<recommended/>") < 0 ? "" : " (recommended)");
  rows.push([label, textOf(match[2], "needed"), textOf(match[2], "found") || "-", match[1]]);
}

for (var column = 0; column < 3; ++column) {
  var width = 0;
  for (var i = 0; i < rows.length; ++i) width = Math.max(width, rows[i][column].length);
  for (i = 0; i < rows.length; ++i) while (rows[i][column].length < width + 2) rows[i][column] += " ";
}
for (var line = 0; line < rows.length; ++line) WScript.Echo(rows[line].join(""));
var total = /<analysis result="(\w+)"/.exec(verdict);
WScript.Echo("");
WScript.Echo("TOTAL: " + (total ? total[1] : "unknown"));

if (WScript.Arguments.length > 1) {
  var files = new ActiveXObject("Scripting.FileSystemObject");
  save("report.xml", control.SysInfo);
  save("analysis.html", control.Analysis("requirements", "html", "1.0"));
}

// In ASCII, which is UTF-8 too: other characters become character references, in XML and HTML alike.
function save(name, text) {
  var file = files.CreateTextFile(WScript.Arguments(1) + "\\" + name, true, false);
  file.Write(text.replace(/[\u0080-\uffff]/g, function (c) { return "&#" + c.charCodeAt(0) + ";"; }));
  file.Close();
}

WScript.Quit(total && total[1] == "pass" ? 0 : 1);
