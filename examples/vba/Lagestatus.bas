Attribute VB_Name = "Lagestatus"
' The seven functions of the library for 64-bit Office, and an example. The manual is lagestatus.h.
' lagestatus.dll must lie on the PATH, or in the current directory (ChDrive, ChDir) at the first call.
'
' C                              here
' int                            ByVal Long (Integer has 16 bits)
' double                         ByVal Double
' int*, double*                  ByRef, the first element of an array that is long enough
' const lagestatus_char* (given) ByVal LongPtr: StrPtr of a String with a value (of an unassigned one and of
'                                vbNullString it is 0, which the library must not get)
' lagestatus_char* (returned)    ByVal LongPtr: StrPtr of a String that Buffer made
'                                Umlauts in paths go as they are; of the characters that ISO 8859-1 lacks,
'                                those of Windows-1252 by their code there: ChrW$(&H80) for the euro sign
' const char* heightMode         ByVal String: VBA passes its 8-bit characters
Option Explicit

#If Win64 Then

Private Declare PtrSafe Function test_dll Lib "lagestatus.dll" Alias "test_dll" ( _
    ByVal a As Double, ByVal b As Double, ByVal c As Double, ByRef out As Double) As Long

Private Declare PtrSafe Function trans_dll Lib "lagestatus.dll" Alias "trans_dll" ( _
    ByVal coord1 As Double, ByVal coord2 As Double, ByVal height As Double, _
    ByVal sourceCode As Long, ByVal targetCode As Long, ByVal dataDir As LongPtr, ByVal heightMode As String, _
    ByRef result As Double, ByVal sourceName As LongPtr, ByRef auxiliary As Long, _
    ByVal sourceEllipsoid As LongPtr, ByVal sourceKind As LongPtr, ByVal targetName As LongPtr, _
    ByVal targetEllipsoid As LongPtr, ByVal targetKind As LongPtr) As Long

Private Declare PtrSafe Function transla_dll Lib "lagestatus.dll" Alias "transla_dll" ( _
    ByVal dataDir As LongPtr, ByVal fileBase As LongPtr, ByVal scrambled As Long, ByVal code As Long, _
    ByVal systemName As LongPtr, ByVal ellipsoidName As LongPtr, ByVal projectionKind As LongPtr, _
    ByRef parameters As Double) As Long

Private Declare PtrSafe Function translz_dll Lib "lagestatus.dll" Alias "translz_dll" ( _
    ByVal dataDir As LongPtr, ByVal fileBase As LongPtr, ByVal scrambled As Long, ByVal code As Long, _
    ByVal systemName As LongPtr, ByVal ellipsoidName As LongPtr, ByVal projectionKind As LongPtr, _
    ByRef zoneNumber As Long, ByRef parameters As Double) As Long

Private Declare PtrSafe Function translD_dll Lib "lagestatus.dll" Alias "translD_dll" ( _
    ByVal dataDir As LongPtr, ByRef scrambled As Long, ByRef count As Long, ByRef codes As Long, _
    ByRef auxiliary As Long, ByVal fileNames As LongPtr) As Long

Private Declare PtrSafe Function transr_dll Lib "lagestatus.dll" Alias "transr_dll" ( _
    ByRef point As Double, ByVal sourceKind As LongPtr, ByVal targetKind As LongPtr, ByRef result As Double, _
    ByVal sourceEllipsoid As LongPtr, ByRef sourceParameters As Double, ByVal targetEllipsoid As LongPtr, _
    ByRef targetParameters As Double, ByVal zoneNumber As Long, ByVal sourceHeightFlag As Long, _
    ByVal targetHeightFlag As Long, ByVal dataDir As LongPtr) As Long

Private Declare PtrSafe Sub transfm_dll Lib "lagestatus.dll" Alias "transfm_dll" ( _
    ByVal code As Long, ByVal fileName As LongPtr, ByVal buffer As LongPtr)

Private Const NameSize As Long = 100
Private Const EllipsoidSize As Long = 11
Private Const KindSize As Long = 14

Private Function NewBuffer(ByVal size As Long) As String
    NewBuffer = String$(size, vbNullChar)
End Function

Private Function TextOf(ByVal buffer As String) As String
    TextOf = Left$(buffer, InStr(buffer & vbNullChar, vbNullChar) - 1)
End Function

' The German message of a status.
Public Function StatusMessage(ByVal status As Long, ByVal fileName As String) As String
    Dim buffer As String, nameText As String
    buffer = NewBuffer(129 + 91 + Len(fileName))
    nameText = fileName & vbNullChar
    transfm_dll status, StrPtr(nameText), StrPtr(buffer)
    StatusMessage = TextOf(buffer)
End Function

' Carries a point of the sample from DHDN to ETRS89 in the two ways that the library offers, and shows a message.
Public Sub Example()
    Const DataDir As String = "C:\lagestatus\data\sample"
    Dim sourceName As String, sourceEllipsoid As String, sourceKind As String
    Dim targetName As String, targetEllipsoid As String, targetKind As String
    Dim result(0 To 3) As Double, source(0 To 35) As Double, target(0 To 35) As Double, point(0 To 2) As Double
    Dim auxiliary(0 To 1) As Long, zone As Long, status As Long

    sourceName = NewBuffer(NameSize): targetName = NewBuffer(NameSize)
    sourceEllipsoid = NewBuffer(EllipsoidSize): targetEllipsoid = NewBuffer(EllipsoidSize)
    sourceKind = NewBuffer(KindSize): targetKind = NewBuffer(KindSize)
    status = test_dll(1#, 2#, 3#, result(0))
    Debug.Assert status = 0 And result(3) = 3#

    ' One call that reads everything it needs.
    status = trans_dll(52.5, 13.4, 100#, 101, 201, StrPtr(DataDir), "e", result(0), StrPtr(sourceName), _
        auxiliary(0), StrPtr(sourceEllipsoid), StrPtr(sourceKind), StrPtr(targetName), StrPtr(targetEllipsoid), _
        StrPtr(targetKind))
    If status <> 0 Then
        Debug.Print "status"; status; ": "; StatusMessage(status, DataDir)
        Exit Sub
    End If
    Debug.Print TextOf(sourceName) & " -> " & TextOf(targetName) & ":"; result(0); result(1); result(2)

    ' Many points between two systems: their descriptions are read once and kept.
    status = transla_dll(StrPtr(DataDir), StrPtr("dhdn-geographisch"), 0, 101, StrPtr(sourceName), _
        StrPtr(sourceEllipsoid), StrPtr(sourceKind), source(0))
    If status = 0 Then
        status = translz_dll(StrPtr(DataDir), StrPtr("etrs89-geozentrisch"), 0, 202, StrPtr(targetName), _
            StrPtr(targetEllipsoid), StrPtr(targetKind), zone, target(0))
    End If
    point(0) = 52.5: point(1) = 13.4: point(2) = 100#
    Do While status = 0 And point(0) > 50#
        status = transr_dll(point(0), StrPtr(sourceKind), StrPtr(targetKind), result(0), _
            StrPtr(sourceEllipsoid), source(0), StrPtr(targetEllipsoid), target(0), zone, 0, 0, StrPtr(DataDir))
        If status = 0 Then Debug.Print point(0); point(1); "->"; result(0); result(1); result(2)
        point(0) = point(0) - 1#
    Loop
    If status <> 0 Then Debug.Print "status"; status; ": "; StatusMessage(status, DataDir)

    ' What a failure looks like.
    Debug.Print "status 12: "; StatusMessage(12, "mein-system.tra")
End Sub

#Else

Public Sub Example()
    MsgBox "lagestatus.dll needs 64-bit Office."
End Sub

#End If
