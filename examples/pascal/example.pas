{ Carries points from DHDN to ETRS89 in the two ways that the library offers.

    Windows: dcc64 example.pas, lagestatus.dll beside it
    Linux:   fpc -Fl<directory of liblagestatus.so> example.pas && ./example data/sample

  Delphi and Free Pascal let floating-point exceptions trap; the library neither minds nor changes that. }
program Example;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  Lagestatus;

procedure Check(status: Integer; const fileName: UnicodeString);
begin
  if status <> 0 then
  begin
    WriteLn('status ', status, ': ', UTF8Encode(StatusMessage(status, fileName)));
    Halt(1);
  end;
end;

var
  dir: UnicodeString;
  name, name2: TName;
  ellipsoid, ellipsoid2: TEllipsoid;
  kind, kind2: TKind;
  source, target: TParameters;
  pointResult: TPointResult;
  point: TPoint3 = (52.5, 13.4, 100.0);
  auxiliary: TPair;
  zone, i: Integer;
begin
  dir := PathText(ParamStr(1));
  if (test_dll(1.0, 2.0, 3.0, pointResult) <> 0) or (pointResult[3] <> 3.0) then
  begin
    WriteLn('the library is not bound as it should be');
    Halt(1);
  end;

  { One call that reads everything it needs. }
  Check(trans_dll(point[0], point[1], point[2], 101, 201, PWideChar(dir), 'e', pointResult, name, auxiliary,
    ellipsoid, kind, name2, ellipsoid2, kind2), dir);
  WriteLn(UTF8Encode(UnicodeString(PWideChar(@name))), ' -> ', UTF8Encode(UnicodeString(PWideChar(@name2))), ': ',
    pointResult[0]:0:9, ' ', pointResult[1]:0:9, ' ', pointResult[2]:0:4);

  { Many points between two systems: their descriptions are read once and kept. }
  Check(transla_dll(PWideChar(dir), 'dhdn-geographisch', 0, 101, name, ellipsoid, kind, source),
    'dhdn-geographisch.tra');
  Check(translz_dll(PWideChar(dir), 'etrs89-geozentrisch', 0, 202, name2, ellipsoid2, kind2, zone, target),
    'etrs89-geozentrisch.tra');
  for i := 1 to 3 do
  begin
    Check(transr_dll(@point, kind, kind2, pointResult, ellipsoid, @source, ellipsoid2, @target, zone, 0, 0,
      PWideChar(dir)), 'hoehe.ini');
    WriteLn(point[0]:0:1, ' ', point[1]:0:1, ' -> ', pointResult[0]:0:4, ' ', pointResult[1]:0:4, ' ',
      pointResult[2]:0:4);
    point[0] := point[0] - 1.0;
  end;

  { What a failure looks like. }
  WriteLn('status 12: ', UTF8Encode(StatusMessage(12, 'mein-system.tra')));
end.
