' What the companion osascript has LibreOffice do; it runs in a profile of the companion's own.
' The job stands in environment variables, since a macro's address cannot carry every file name:
'   VEXAWORD_TEMPLATE   address of the Word template (addresses are file: URLs)
'   VEXAWORD_ARTICLE    address of the article as OpenDocument text; may be empty
'   VEXAWORD_MACRO      MODULE.MACRO of the template; may be empty
'   VEXAWORD_OUTPUT     address of the .docx to write
'   VEXAWORD_REPORT     path of a file that gets a line for every step: "step NAME", "warning TEXT",
'                       "error TEXT", and at the end "done"

Option Explicit

Sub MakeManuscript
    Dim manuscript As Object

    On Error GoTo Failed
    Report "step started"
    manuscript = NewDocument(Environ("VEXAWORD_TEMPLATE"))
    Report "step created"
    If Environ("VEXAWORD_ARTICLE") <> "" Then
        InsertArticle(manuscript, Environ("VEXAWORD_ARTICLE"))
        Report "step inserted"
    End If
    If Environ("VEXAWORD_MACRO") <> "" Then
        RunMacro(manuscript, Environ("VEXAWORD_MACRO"))
        Report "step filled"
    End If
    TidyParagraphs(manuscript)
    manuscript.storeToURL(Environ("VEXAWORD_OUTPUT"), Array(Setting("FilterName", "MS Word 2007 XML")))
    Report "step saved"
    manuscript.close(True)
    Report "done"
    StarDesktop.terminate()
    Exit Sub
Failed:
    Report "error " & OneLine(Error)
    StarDesktop.terminate()
End Sub

Sub Report(text As String)
    Dim handle As Integer

    handle = FreeFile
    Open Environ("VEXAWORD_REPORT") For Append As #handle
    Print #handle, text
    Close #handle
End Sub

Function OneLine(text As String) As String
    OneLine = Join(Split(Join(Split(text, Chr(13)), " "), Chr(10)), " ")
End Function

Function Setting(settingName As String, settingValue) As Object
    Dim value As New com.sun.star.beans.PropertyValue

    value.Name = settingName
    value.Value = settingValue
    Setting = value
End Function

' Not hidden: the macro of the template looks for the active document.
Function NewDocument(address As String) As Object
    Const alwaysRunMacros = 4

    NewDocument = StarDesktop.loadComponentFromURL(address, "_blank", 0, _
        Array(Setting("AsTemplate", True), Setting("MacroExecutionMode", alwaysRunMacros)))
    If IsNull(NewDocument) Then Err.Raise(1, "", "LibreOffice cannot open the Word template")
End Function

Sub InsertArticle(manuscript As Object, address As String)
    Dim cursor As Object

    manuscript.lockControllers()
    cursor = manuscript.Text.createTextCursorByRange(manuscript.Text.getStart())
    cursor.insertDocumentFromURL(address, Array(Setting("FilterName", "writer8")))
    manuscript.unlockControllers()
    RemoveEmptyEnds(manuscript)
End Sub

' Empty paragraphs of the template are left around the article, and the article itself ends with one
' (see articleodt.cpp). A table has to be followed by a paragraph.
Sub RemoveEmptyEnds(manuscript As Object)
    Dim paragraphs As Object
    Dim cursor As Object
    Dim elements() As Object
    Dim last As Long

    paragraphs = manuscript.Text.createEnumeration()
    last = -1
    Do While paragraphs.hasMoreElements()
        last = last + 1
        ReDim Preserve elements(last)
        elements(last) = paragraphs.nextElement()
    Loop
    Do While last > 0
        If Not (IsEmptyParagraph(elements(last)) And IsParagraph(elements(last - 1))) Then Exit Do
        cursor = manuscript.Text.createTextCursorByRange(manuscript.Text.getEnd())
        cursor.goLeft(1, True)
        cursor.setString("")
        last = last - 1
    Loop
    If last > 0 And IsEmptyParagraph(elements(0)) Then elements(0).dispose()
End Sub

Function IsParagraph(element As Object) As Boolean
    IsParagraph = element.supportsService("com.sun.star.text.Paragraph")
End Function

Function IsEmptyParagraph(element As Object) As Boolean
    IsEmptyParagraph = False
    If Not IsParagraph(element) Then Exit Function
    If element.getString() <> "" Then Exit Function
    IsEmptyParagraph = Not element.createContentEnumeration("com.sun.star.text.TextContent").hasMoreElements()
End Function

' A macro that fails leaves a manuscript without authors, which is better than none.
Sub RunMacro(manuscript As Object, macroName As String)
    Dim library As String
    Dim script As Object

    On Error GoTo Failed
    library = LibraryOf(manuscript, Split(macroName, ".")(0))
    If library = "" Then
        Report "warning the template has no macro " & macroName
        Exit Sub
    End If
    script = manuscript.getScriptProvider().getScript("vnd.sun.star.script:" & library & "." & macroName & _
        "?language=Basic&location=document")
    script.invoke(Array(), Array(), Array())
    Exit Sub
Failed:
    Report "warning the macro " & macroName & " failed: " & OneLine(Error)
End Sub

Function LibraryOf(manuscript As Object, moduleName As String) As String
    Dim library As String

    For Each library In manuscript.BasicLibraries.ElementNames
        manuscript.BasicLibraries.loadLibrary(library)
        If manuscript.BasicLibraries.getByName(library).hasByName(moduleName) Then
            LibraryOf = library
            Exit Function
        End If
    Next
End Function

' Removes what LibreOffice added by the way: headings in an outline numbering without numbers, and
' normal text marked as "not superscript" with a size of its own.
Sub TidyParagraphs(manuscript As Object)
    Dim paragraphs As Object
    Dim paragraph As Object

    manuscript.lockControllers()
    paragraphs = manuscript.Text.createEnumeration()
    Do While paragraphs.hasMoreElements()
        paragraph = paragraphs.nextElement()
        If IsParagraph(paragraph) Then
            If paragraph.OutlineLevel > 0 Then
                paragraph.NumberingStyleName = "" ' takes it out of the outline; the default alone does not
                paragraph.setPropertyToDefault("NumberingStyleName")
            End If
            If paragraph.ParaStyleName = "Authors" Or paragraph.ParaStyleName = "Addresses" Then TidyPortions(paragraph)
        End If
    Loop
    manuscript.unlockControllers()
End Sub

Sub TidyPortions(paragraph As Object)
    Dim portions As Object
    Dim portion As Object

    portions = paragraph.createEnumeration()
    Do While portions.hasMoreElements()
        portion = portions.nextElement()
        If portion.TextPortionType = "Text" And portion.CharEscapement = 0 Then
            portion.setPropertyToDefault("CharEscapement")
            portion.setPropertyToDefault("CharEscapementHeight")
        End If
    Loop
End Sub
