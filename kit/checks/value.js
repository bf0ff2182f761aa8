// Prints the control's value of an id.
WScript.Echo(new ActiveXObject("KELDetection_TAMS64.SysInfo").Value(WScript.Arguments(0)));
