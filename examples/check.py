"""Run with a 64-bit Python that has pywin32: python check.py [referrer]"""

import re
import struct
import sys


def main():
    if struct.calcsize("P") != 8:
        sys.exit("The control needs a 64-bit Python.")
    import win32com.client  # pip install pywin32; enters a single-threaded apartment
    from pywintypes import com_error
    try:
        control = win32com.client.Dispatch("KELDetection_TAMS64.SysInfo")
    except com_error:
        print("The control is not installed.", file=sys.stderr)
        return 2
    control.ReferrerID = sys.argv[1] if len(sys.argv) > 1 else "demo"
    control.UserID = "visitor"
    verdict = control.Analysis("requirements", "xml", "1.0") or ""
    total = re.search(r'<analysis result="(\w+)"', verdict)
    if not total:
        print("No verdict:", control.Value("73390"))  # how the last exchange ended
        return 2
    print("Verdict:", total[1])
    print("Memory:", control.Value("71063"))
    return 0 if total[1] == "pass" else 1


sys.exit(main())
