Attribute VB_Name = "Vantora"
' Vantora64.dll for the workbook's macros: the declarations, one macro per command, and the code
' that passes the task sheet's events on. 64-bit Office only (Declare PtrSafe, a 64-bit DLL); a
' 32-bit Office cannot load Vantora64.dll.
'
' To use it:
'   1. Save the workbook as a macro-enabled workbook (.xlsm) and put Vantora64.dll in the same
'      folder (the macros make that folder current before the first call).
'   2. In the Visual Basic editor (Alt+F11): File > Import File... > Vantora.bas.
'   3. Paste the two blocks at the end of this module, without their leading apostrophes, into the
'      ThisWorkbook module and into the module of the task sheet (the sheet whose code name is
'      wsWBS), so that opening, closing, edits and selections reach the engine.
'   4. Run the macros from Developer > Macros, or give them buttons or keys.
'
' Whole numbers are Long (32-bit) passed ByVal; objects are passed ByRef, so the DLL receives the
' address of the macro's object variable. Only kpSetWorkBook returns a value: the runtime's error
' number, 0 when all went well.
'
' Calling order: kpInit once, then kpSetWorkBook with the workbook, then any commands, and kpQuit
' when the workbook closes. Every macro below starts the engine first if the workbook's open event
' has not.
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
' The shift is first x second minutes.
Public Declare PtrSafe Sub kpTasksOffset Lib "Vantora64.dll" (ByVal first As Long, ByVal second As Long)
Public Declare PtrSafe Sub kpWBSFilter Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpDrawProgressLines Lib "Vantora64.dll" ()
Public Declare PtrSafe Sub kpEVMByTask Lib "Vantora64.dll" ()
' kind: 1 a period every step days, 2 weeks from Monday, 3 calendar months; step: days (kind 1).
Public Declare PtrSafe Sub kpEVMByProject Lib "Vantora64.dll" (ByVal kind As Long, ByVal stepDays As Long)
Public Declare PtrSafe Sub kpWorkload Lib "Vantora64.dll" (ByVal kind As Long, ByVal stepDays As Long)

' Copies pointer-sized memory: used to forget a reference the engine has already released.
Private Declare PtrSafe Sub CopyMemory Lib "kernel32" Alias "RtlMoveMemory" _
    (ByRef destination As Any, ByRef source As Any, ByVal length As LongPtr)

Private engineStarted As Boolean

' Start the engine on this workbook; called from Workbook_Open and by every macro below.
Public Sub VantoraOpen()
    Dim book As Workbook
    Dim errorNumber As Long
    If engineStarted Then Exit Sub
    ChDrive ThisWorkbook.Path
    ChDir ThisWorkbook.Path
    kpInit
    Set book = ThisWorkbook
    errorNumber = kpSetWorkBook(book)
    If errorNumber <> 0 Then
        MsgBox "Vantora could not bind the workbook (error " & errorNumber & ").", vbExclamation, "Vantora Chart"
    End If
    engineStarted = True
End Sub

' Stop the engine; called from Workbook_BeforeClose.
Public Sub VantoraClose()
    If Not engineStarted Then Exit Sub
    kpQuit
    engineStarted = False
End Sub

' A whole number the user types, or False when the dialog was cancelled or the text is no number.
Private Function AskNumber(prompt As String, suggestion As Variant, ByRef answer As Long) As Boolean
    Dim typed As String
    typed = InputBox(prompt, "Vantora Chart", CStr(suggestion))
    If typed = "" Or Not IsNumeric(typed) Then Exit Function
    answer = CLng(typed)
    AskNumber = True
End Function

' The period kind and step of the two period reports.
Private Function AskPeriods(ByRef kind As Long, ByRef stepDays As Long) As Boolean
    If Not AskNumber("Periods: 1 every few days, 2 weeks from Monday, 3 calendar months", 2, kind) Then Exit Function
    stepDays = 1
    If kind = 1 Then
        If Not AskNumber("Days per period", 7, stepDays) Then Exit Function
    End If
    AskPeriods = True
End Function

' Update the WBS: numbers, work in minutes, checks, summary roll-ups, row colours.
Public Sub VantoraUpdateWBS()
    VantoraOpen
    kpUpdateWBS
End Sub

' Place the tasks that have not started one after another per resource, then redraw the bars.
Public Sub VantoraReschedule()
    VantoraOpen
    kpWBSReschedule
End Sub

' Draw the Gantt bars and connectors in the bar style the user picks.
Public Sub VantoraDrawGanttChart()
    Dim barStyle As Long
    VantoraOpen
    If Not AskNumber("Bar style: 0 plain bars, 1 to 6 shaped bars", _
        wsSettings.Range("GanntBarStyle").Value, barStyle) Then Exit Sub
    kpDrawGanntChart barStyle
End Sub

' Draw the calendar strip and the bars; the unit is the minutes one chart column stands for.
Public Sub VantoraDrawCalendar()
    Dim unitMinutes As Long
    VantoraOpen
    If Not AskNumber("Minutes per chart column (60 an hour, 1440 a day); 0 keeps the present unit", _
        wsSettings.Range("CSCalendarUnit").Value, unitMinutes) Then Exit Sub
    kpDrawCalendar unitMinutes
End Sub

' The four moves work on the task rows selected on the task sheet.
Public Sub VantoraMoveUp()
    VantoraOpen
    kpTasksMoveUp
End Sub

Public Sub VantoraMoveDown()
    VantoraOpen
    kpTasksMoveDown
End Sub

Public Sub VantoraIndent()
    VantoraOpen
    kpTasksMoveRight
End Sub

Public Sub VantoraOutdent()
    VantoraOpen
    kpTasksMoveLeft
End Sub

' Shift the planned times of the selected tasks that have not started.
Public Sub VantoraOffsetTasks()
    Dim minutes As Long
    VantoraOpen
    If Not AskNumber("Shift the selected tasks by how many minutes? (negative: earlier)", 60, minutes) Then Exit Sub
    kpTasksOffset minutes, 1
End Sub

' Hide the task rows that do not match the filter written into cell A500 of the settings sheet.
Public Sub VantoraFilter()
    Dim filterCell As Range
    Dim typed As String
    VantoraOpen
    Set filterCell = wsSettings.Range("A500")
    typed = InputBox("Filter as mode,argument: 0, shows every task; 5, completed tasks; " & _
        "7, tasks with predecessors; 1,TEAM, the tasks of resource TEAM", "Vantora Chart", filterCell.Value)
    If typed = "" Then Exit Sub
    filterCell.NumberFormat = "@"
    filterCell.Value = typed
    kpWBSFilter
End Sub

' Draw the progress line of today.
Public Sub VantoraProgressLines()
    VantoraOpen
    kpDrawProgressLines
End Sub

' Write the earned-value figures of every task to a report sheet.
Public Sub VantoraEVMByTask()
    VantoraOpen
    kpEVMByTask
End Sub

' Write the earned-value report of the project over periods, with its charts.
Public Sub VantoraEVMByProject()
    Dim kind As Long, stepDays As Long
    VantoraOpen
    If Not AskPeriods(kind, stepDays) Then Exit Sub
    kpEVMByProject kind, stepDays
End Sub

' Write the workload of each resource over periods, with its chart.
Public Sub VantoraWorkload()
    Dim kind As Long, stepDays As Long
    VantoraOpen
    If Not AskPeriods(kind, stepDays) Then Exit Sub
    kpWorkload kind, stepDays
End Sub

' The two events hand the engine a reference of its own, which it releases once before it
' returns; the copy of the pointer is then forgotten without a second release.
Public Sub VantoraSheetChange(ByVal target As Range)
    Dim handedOver As Range
    Dim nothingThere As LongPtr
    VantoraOpen
    Set handedOver = target
    kpWBSEventOnChange handedOver
    CopyMemory handedOver, nothingThere, LenB(nothingThere)
End Sub

Public Sub VantoraSelectionChange(ByVal target As Range)
    Dim handedOver As Range
    Dim nothingThere As LongPtr
    VantoraOpen
    Set handedOver = target
    kpWBSEventOnSelectionChange handedOver
    CopyMemory handedOver, nothingThere, LenB(nothingThere)
End Sub

' ---- Paste into the ThisWorkbook module (without the apostrophes) ----
'Private Sub Workbook_Open()
'    VantoraOpen
'End Sub
'
'Private Sub Workbook_BeforeClose(Cancel As Boolean)
'    VantoraClose
'End Sub

' ---- Paste into the module of the task sheet, code name wsWBS (without the apostrophes) ----
'Private Sub Worksheet_Change(ByVal Target As Range)
'    VantoraSheetChange Target
'End Sub
'
'Private Sub Worksheet_SelectionChange(ByVal Target As Range)
'    VantoraSelectionChange Target
'End Sub
