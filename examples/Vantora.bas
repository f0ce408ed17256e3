Attribute VB_Name = "Vantora"
' Declarations of Vantora64.dll for the workbook's macros (64-bit Office: Declare PtrSafe).
'
' Whole numbers are Long (32-bit) passed ByVal; objects are passed ByRef, so the DLL receives the
' address of the macro's object variable. Only kpSetWorkBook returns a value: the runtime's error
' number, 0 when all went well.
'
' Calling order: kpInit once, then kpSetWorkBook with the workbook, then any commands, and kpQuit
' when the workbook closes. The DLL is found by the usual search: keep it beside the workbook and
' make that folder current before the first call (ChDir ThisWorkbook.Path), or put it on the PATH.
'
' Two more exports, kpSetMessageReceiver and kpSetStatusDate, serve test and batch hosts; the
' workbook never needs them.
Option Explicit

Public Declare PtrSafe Sub kpInit Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpQuit Lib "Vantora64.dll" ()
Public Declare PtrSafe Function kpSetWorkBook Lib "Vantora64.dll" (ByRef book As Workbook) As Long

Public Declare PtrSafe Sub kpDrawCalendar Lib "Vantora64.dll" (ByVal unitMinutes As Long)
Public Declare PtrSafe Sub kpDrawGanntChart Lib "Vantora64.dll" (ByVal barStyle As Long)
Public Declare PtrSafe Sub kpUpdateWBS Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpWBSReschedule Lib "Vantora64.dll" ()
' Both release the range reference they are given once before they return.
Public Declare PtrSafe Sub kpWBSEventOnChange Lib "Vantora64.dll" (ByRef target As Range)
Public Declare PtrSafe Sub kpWBSEventOnSelectionChange Lib "Vantora64.dll" (ByRef target As Range)
Public Declare PtrSafe Sub kpTasksMoveUp Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpTasksMoveDown Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpTasksMoveRight Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpTasksMoveLeft Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpTasksOffset Lib "Vantora64.dll" (ByVal first As Long, ByVal second As Long)
Public Declare PtrSafe Sub kpWBSFilter Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpDrawProgressLines Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpEVMByTask Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpEVMByProject Lib "Vantora64.dll" (ByVal first As Long, ByVal second As Long)
Public Declare PtrSafe Sub kpWorkload Lib "Vantora64.dll" (ByVal first As Long, ByVal second As Long)

' Start the engine on this workbook; call from Workbook_Open.
Public Sub VantoraOpen()
    Dim book As Workbook
    Dim errorNumber As Long
    ChDir ThisWorkbook.Path
    kpInit
    Set book = ThisWorkbook
    errorNumber = kpSetWorkBook(book)
    If errorNumber <> 0 Then MsgBox "Vantora could not bind the workbook (error " & errorNumber & ").", vbExclamation, "Vantora Chart"
End Sub

' Stop the engine; call from Workbook_BeforeClose.
Public Sub VantoraClose()
    kpQuit
End Sub
