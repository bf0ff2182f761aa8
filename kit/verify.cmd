@echo off
rem Tries Detection on this machine: double click. Asks for an administrator's rights once. Leaves the folder "result":
rem result.html to read, result.json and recording.txt to send. See docs\windows-checklist.md.
"%~dp0verify.exe" --output "%~dp0result" %*
set code=%ERRORLEVEL%
rem With options it runs for a program, which waits for nobody.
if "%~1"=="" start "" "%~dp0result\result.html"
if "%~1"=="" pause
exit /b %code%
