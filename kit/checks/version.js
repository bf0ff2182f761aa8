// Prints the version of the control that this script host creates, or "none".
try {
    WScript.Echo("version " + new ActiveXObject("KELDetection_TAMS64.SysInfo").Version);
} catch (error) {
    WScript.Echo("none");
}
