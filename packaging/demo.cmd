@echo off
rem Carries the places of the sample data from one system into another.
setlocal
cd /d "%~dp0"
set lagestatus=bin\lagestatus.exe
set data=data\sample

echo.
echo The systems of %data% (lagestatus list -d %data%)
echo.
%lagestatus% list -d %data%
if errorlevel 1 exit /b 1

call :carry 101 201 punkte-101.txt "DHDN geographisch, ETRS89 geographisch"
if errorlevel 1 exit /b 1
call :carry 102 201 punkte-102.txt "DHDN geozentrisch, ETRS89 geographisch"
if errorlevel 1 exit /b 1
call :carry 103 203 punkte-103.txt "DHDN Gauss-Krueger, ETRS89 UTM: Hoehen ellipsoidisch" "--height e --heights"
if errorlevel 1 exit /b 1
call :carry 103 203 punkte-103.txt "DHDN Gauss-Krueger, ETRS89 UTM: Normalhoehen" "--height n --heights"
if errorlevel 1 exit /b 1
call :carry 105 203 punkte-105.txt "DHDN Soldner Berlin, ETRS89 UTM"
if errorlevel 1 exit /b 1
call :carry 103 303 punkte-103.txt "DHDN Gauss-Krueger, System 42/83 Gauss-Krueger"
if errorlevel 1 exit /b 1
pause
goto :eof

rem source, target, file, title, options
:carry
echo.
echo %~4
echo lagestatus transform --from %1 --to %2 -d %data% %~5 %data%\%3
echo.
%lagestatus% transform --from %1 --to %2 -d %data% %~5 %data%\%3
goto :eof
