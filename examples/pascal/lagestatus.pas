{ The seven functions of the library, for Delphi and Free Pascal. The manual is lagestatus.h. }
unit Lagestatus;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}

interface

const
  LagestatusLibrary = {$IFDEF MSWINDOWS}'lagestatus.dll'{$ELSE}'lagestatus'{$ENDIF};

  NameSize = 100;
  EllipsoidSize = 11;
  KindSize = 14;
  MaxEntries = 100;

type
  TName = array[0..NameSize - 1] of WideChar;
  TEllipsoid = array[0..EllipsoidSize - 1] of WideChar;
  TKind = array[0..KindSize - 1] of WideChar;
  TPoint3 = array[0..2] of Double;
  TPointResult = array[0..3] of Double;
  TParameters = array[0..35] of Double;
  PPoint3 = ^TPoint3;
  PParameters = ^TParameters;
  TPair = array[0..1] of Integer;
  TNumbers = array[0..MaxEntries - 1] of Integer;
  TNames = array[0..MaxEntries - 1] of TName;

{ Given arrays are passed as pointers: how "const" passes them depends on the compiler. }

function test_dll(a, b, c: Double; out values: TPointResult): Integer; cdecl; external LagestatusLibrary;

function trans_dll(coord1, coord2, height: Double; sourceCode, targetCode: Integer; dataDir: PWideChar;
  heightMode: PAnsiChar; out pointResult: TPointResult; out sourceName: TName; out auxiliary: TPair;
  out sourceEllipsoid: TEllipsoid; out sourceKind: TKind; out targetName: TName; out targetEllipsoid: TEllipsoid;
  out targetKind: TKind): Integer; cdecl; external LagestatusLibrary;

function transla_dll(dataDir, fileBase: PWideChar; scrambled, code: Integer; out systemName: TName;
  out ellipsoidName: TEllipsoid; out projectionKind: TKind; out parameters: TParameters): Integer; cdecl;
  external LagestatusLibrary;

function translz_dll(dataDir, fileBase: PWideChar; scrambled, code: Integer; out systemName: TName;
  out ellipsoidName: TEllipsoid; out projectionKind: TKind; out zoneNumber: Integer;
  out parameters: TParameters): Integer; cdecl; external LagestatusLibrary;

function translD_dll(dataDir: PWideChar; out scrambled, count: Integer; out codes, auxiliary: TNumbers;
  out fileNames: TNames): Integer; cdecl; external LagestatusLibrary;

function transr_dll(point: PPoint3; sourceKind, targetKind: PWideChar; out pointResult: TPointResult;
  sourceEllipsoid: PWideChar; sourceParameters: PParameters; targetEllipsoid: PWideChar;
  targetParameters: PParameters; zoneNumber, sourceHeightFlag, targetHeightFlag: Integer;
  dataDir: PWideChar): Integer; cdecl; external LagestatusLibrary;

procedure transfm_dll(code: Integer; fileName, buffer: PWideChar); cdecl; external LagestatusLibrary;

{ A path for the library, one byte a unit: in Windows-1252, elsewhere as the system has it. }
function PathText(const path: string): UnicodeString;

{ The German message of a status. }
function StatusMessage(status: Integer; const fileName: UnicodeString): UnicodeString;

implementation

function PathText(const path: string): UnicodeString;
{$IFDEF MSWINDOWS}
type
  TPathBytes = type AnsiString(1252);
{$ELSE}
type
  TPathBytes = RawByteString;
{$ENDIF}
var
  bytes: TPathBytes;
  i: Integer;
begin
  bytes := TPathBytes(path);
  SetLength(Result, Length(bytes));
  for i := 1 to Length(bytes) do
    Result[i] := WideChar(Ord(bytes[i]));
end;

function StatusMessage(status: Integer; const fileName: UnicodeString): UnicodeString;
var
  buffer: UnicodeString;
begin
  SetLength(buffer, 129 + 91 + Length(fileName));
  transfm_dll(status, PWideChar(fileName), PWideChar(buffer));
  Result := PWideChar(buffer);
end;

end.
