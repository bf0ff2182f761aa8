// Lets a macro of Excel create the control. Ends with 77 where Excel is not there, does not trust access to its projects, or
// is a 32-bit program; with the argument "either", a 32-bit one is as good: it gets the control from kel.exe.
var NOT_HERE = 77, takesEither = WScript.Arguments.length > 0 && WScript.Arguments(0) === "either";

function main() {
    var excel;
    try {
        excel = new ActiveXObject("Excel.Application");
    } catch (error) {
        WScript.Echo("There is no Excel.");
        return NOT_HERE;
    }
    try {
        if (!takesEither && excel.OperatingSystem.indexOf("64-bit") < 0) {
            WScript.Echo("Excel is a 32-bit program.");
            return NOT_HERE;
        }
        excel.DisplayAlerts = false;
        var module;
        try {
            module = excel.Workbooks.Add().VBProject.VBComponents.Add(1).CodeModule;
        } catch (error) {
            WScript.Echo("Excel does not trust access to its projects.");
            return NOT_HERE;
        }
        module.AddFromString('Function Read()\nRead = CreateObject("KELDetection_TAMS64.SysInfo").Version\nEnd Function');
        WScript.Echo("version " + excel.Run("Read"));
        return 0;
    } finally {
        excel.Quit();
    }
}

WScript.Quit(main());
