// Late-bound: needs no reference and no interop assembly. Build for x64 (csc -platform:x64 Check.cs): a program for any
// processor may start as a 32-bit process, which cannot load the control.
using System;
using System.Reflection;
using System.Text.RegularExpressions;

static class Check
{
    static object Use(object control, string member, BindingFlags how, params object[] arguments)
    {
        return control.GetType().InvokeMember(member, how, null, control, arguments);
    }

    [STAThread]  // the control lives in a single-threaded apartment; calls from any other kind are marshalled
    static int Main(string[] arguments)
    {
        Type type = Type.GetTypeFromProgID("KELDetection_TAMS64.SysInfo");
        if (type == null)
        {
            Console.Error.WriteLine("The control is not installed, or this is a 32-bit process.");
            return 2;
        }
        object control = Activator.CreateInstance(type);
        Use(control, "ReferrerID", BindingFlags.SetProperty, arguments.Length > 0 ? arguments[0] : "demo");
        Use(control, "UserID", BindingFlags.SetProperty, "visitor");
        string verdict = (string)Use(control, "Analysis", BindingFlags.GetProperty, "requirements", "xml", "1.0") ?? "";
        Match total = Regex.Match(verdict, "<analysis result=\"(\\w+)\"");
        if (!total.Success)
        {
            // How the last exchange ended.
            Console.WriteLine("No verdict: " + Use(control, "Value", BindingFlags.GetProperty, "73390"));
            return 2;
        }
        Console.WriteLine("Verdict: " + total.Groups[1].Value);
        Console.WriteLine("Memory: " + Use(control, "Value", BindingFlags.GetProperty, "71063"));
        return total.Groups[1].Value == "pass" ? 0 : 1;
    }
}
