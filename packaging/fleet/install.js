// Installs a package without questions and restarts: cscript //nologo install.js PACKAGE [OPTION...]
// Options are the installer's, such as /l*v install.log or PROPERTY=VALUE.
// Ends with the installer's exit code; with 1638, and changes nothing, when a newer version is installed. The installer
// itself reports that as 1603, like any other fault.
var NEWER_INSTALLED = 1638, WRONG_USE = 1639;

function property(database, name) {
    var view = database.OpenView("SELECT `Value` FROM `Property` WHERE `Property` = '" + name + "'");
    view.Execute();
    return view.Fetch().StringData(1);
}

// Whether a version is higher than another one; installers compare three numbers.
function isNewer(version, other) {
    var mine = version.split("."), others = other.split(".");
    for (var i = 0; i < 3; ++i) {
        if (Number(mine[i]) !== Number(others[i]))
            return Number(mine[i]) > Number(others[i]);
    }
    return false;
}

// An argument as the installer reads it: quotes are around a property's text, not around its name.
function quoted(argument) {
    if (argument.indexOf(" ") < 0)
        return argument;
    var text = argument.indexOf("=") + 1;
    return argument.substr(0, text) + "\"" + argument.substr(text) + "\"";
}

function main() {
    if (WScript.Arguments.length === 0) {
        WScript.Echo("Usage: cscript //nologo install.js PACKAGE [OPTION...]");
        return WRONG_USE;
    }
    var installer = new ActiveXObject("WindowsInstaller.Installer");
    var path = WScript.Arguments(0);
    var database = installer.OpenDatabase(path, 0);
    var version = property(database, "ProductVersion");
    var related = installer.RelatedProducts(property(database, "UpgradeCode"));
    database = null;
    for (var i = 0; i < related.Count; ++i) {
        var installed = installer.ProductInfo(related.Item(i), "VersionString");
        if (isNewer(installed, version)) {
            WScript.Echo("Version " + installed + " is installed, which is newer than " + version + ".");
            return NEWER_INSTALLED;
        }
    }
    var command = "msiexec /qn /norestart /i \"" + path + "\"";
    for (var argument = 1; argument < WScript.Arguments.length; ++argument)
        command += " " + quoted(WScript.Arguments(argument));
    return new ActiveXObject("WScript.Shell").Run(command, 0, true);
}

WScript.Quit(main());
