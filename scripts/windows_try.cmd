@echo off
rem Tries the packages of the current folder on a real Windows, as administrator: windows_try.cmd RESULT
rem Writes one line for each step: its name, what was expected, what came, ok or WRONG. Ends with the number of wrong steps.
rem No serial numbers, names or addresses are written: only versions, exit codes and whether values are there.
setlocal enabledelayedexpansion
set result=%~1
if "%result%"=="" set result=result.txt
set wrong=0
set msi=
for %%f in (Detection-*-x64.msi) do set msi=%%f
set zip=
for %%f in (Detection-*-x64.zip) do set zip=%%f
if "%msi%"=="" (echo No package in this folder.& exit /b 2)
set dll=%ProgramFiles%\Detection\Detection.dll
set kel=%ProgramFiles%\Detection\kel.exe
for /f "tokens=2 delims=[]" %%v in ('ver') do echo %%v >"%result%"

mkdir archive 2>nul
tar -xf "%zip%" -C archive

cscript //nologo archive\fleet\install.js "%CD%\%msi%" /l*v install.log
call :check "install" 0 %ERRORLEVEL%
if exist "%dll%" (call :check "the DLL is there" yes yes) else (call :check "the DLL is there" yes no)
powershell -NoProfile -ExecutionPolicy Bypass -File archive\fleet\detect.ps1 >detected.txt
call :check "detection script" 0 %ERRORLEVEL%
findstr /b /c:"Detection " detected.txt >nul
call :check "detection script writes a line" 0 %ERRORLEVEL%

>version.js echo WScript.Echo(new ActiveXObject("KELDetection_TAMS64.SysInfo").Version);
"%SystemRoot%\System32\cscript.exe" //nologo version.js >nul
call :check "64-bit script host creates the control" 0 %ERRORLEVEL%
"%SystemRoot%\SysWOW64\cscript.exe" //nologo version.js >nul 2>&1
if errorlevel 1 (call :check "32-bit script host does not" error error) else (call :check "32-bit script host does not" error none)

"%kel%" facts --json >facts.json
call :check "kel facts" 0 %ERRORLEVEL%
"%kel%" check --requirements archive\examples\requirements\game.json >nul
if %ERRORLEVEL% LEQ 2 (call :check "kel check" verdict verdict) else (call :check "kel check" verdict %ERRORLEVEL%)
"%kel%" report support.json >nul
call :check "kel report" 0 %ERRORLEVEL%
"%kel%" compare support.json support.json >nul
call :check "a report equals itself" 0 %ERRORLEVEL%

msiexec /qn /norestart /i "%CD%\%msi%" REINSTALL=ALL REINSTALLMODE=amus
call :check "repair" 0 %ERRORLEVEL%
msiexec /qn /norestart /x "%CD%\%msi%"
call :check "remove" 0 %ERRORLEVEL%
if exist "%dll%" (call :check "the DLL is gone" yes no) else (call :check "the DLL is gone" yes yes)
reg query "HKCR\CLSID\{3D7C6027-9644-4282-BC8F-AC0BABB38FDB}" >nul 2>&1
call :check "no registration is left" 1 %ERRORLEVEL%
powershell -NoProfile -ExecutionPolicy Bypass -File archive\fleet\detect.ps1 >detected.txt
findstr /b /c:"Detection " detected.txt >nul
call :check "detection script writes nothing" 1 %ERRORLEVEL%
msiexec /qn /norestart /x "%CD%\%msi%"
call :check "remove again" 1605 %ERRORLEVEL%

type "%result%"
exit /b %wrong%

:check
if "%~2"=="%~3" (
    >>"%result%" echo ok     %~1: %~3
) else (
    >>"%result%" echo WRONG  %~1: expected %~2, was %~3
    set /a wrong+=1
)
exit /b 0
