Attribute VB_Name = "Vexa_authors"
' Finishes a new manuscript: puts the journal into the document's properties and the authors and
' their addresses into their places. Runs after the article has been inserted, in Word and in
' LibreOffice alike, and therefore keeps to what both understand: no library objects, no constants,
' reading and decoding of the file by hand. All text here is ASCII.
Option Explicit

Private Const TitlePlace As String = "vexa_title"
Private Const AuthorsPlace As String = "vexa_authors"
Private Const AddressesPlace As String = "vexa_addresses"

Private Const AuthorsAdvice As String = "Type the names of the authors here."
Private Const AddressesAdvice As String = "Type the addresses of the authors here."

' What macstart.xml says, taken apart.
Private journalXml As String
Private authorsXml As String
Private addressesXml As String

' What the user should know about macstart.xml; empty when all is well.
Private remark As String

' Whether what is typed next would be a superscript.
Private isRaised As Boolean

Public Sub VexaM_setInitialXmlData()
    ReadMetadata
    SetJournalProperties
    FinishTitle
    FillAuthors
    FillAddresses
    RemovePlaces
    FinishInWord
    GoToFirstTask
End Sub

' ---------------------------------------------------------------------------
' Reading macstart.xml

Private Sub ReadMetadata()
    Dim text As String

    remark = ""
    text = MetadataText()
    journalXml = Block(text, "vexa:publjnl")
    authorsXml = Block(text, "vexa:authors")
    addressesXml = Block(text, "vexa:addresses")
    If remark <> "" Then Exit Sub

    If journalXml = "" Or Cut(text, "<vexa:authors", authorsXml) Or Cut(text, "<vexa:addresses", addressesXml) Then
        remark = "The file macstart.xml is incomplete."
    ElseIf CountOf(authorsXml, "<vexa:author ") < Val(AttributeValue(authorsXml, "count")) Then
        remark = "The file macstart.xml does not hold all authors."
    ElseIf CountOf(addressesXml, "<vexa:address ") < Val(AttributeValue(addressesXml, "count")) Then
        remark = "The file macstart.xml does not hold all addresses."
    ElseIf HasAuthorWithoutName() Then
        remark = "The file macstart.xml holds an author without a name."
    End If
End Sub

Private Function HasAuthorWithoutName() As Boolean
    Dim authors() As String
    Dim i As Long

    authors = Split(authorsXml, "<vexa:author ")
    For i = 1 To UBound(authors)
        If AuthorName(authors(i)) = "" Then HasAuthorWithoutName = True
    Next
End Function

' Whether a block begins in the text and does not end there.
Private Function Cut(ByVal text As String, ByVal opening As String, ByVal found As String) As Boolean
    Cut = (InStr(text, opening) > 0 And found = "")
End Function

Private Function MetadataText() As String
    Dim path As String

    path = MetadataPath()
    If path = "" Then
        remark = "The file macstart.xml was not found."
        Exit Function
    End If
    On Error GoTo Unreadable
    MetadataText = TextOfFile(path)
    Exit Function
Unreadable:
    remark = "The file macstart.xml could not be read."
End Function

' The first place that holds the file. In Word's sandbox HOME is the container itself. The variable
' VEXAWORD_MACSTART names the file where neither Word nor the home folder tells.
Private Function MetadataPath() As String
    Dim places(3) As String
    Dim i As Integer

    places(0) = Environ("VEXAWORD_MACSTART")
    places(1) = Environ("HOME") & "/macstart.xml"
    places(2) = Environ("HOME") & "/Library/Containers/com.microsoft.Word/Data/macstart.xml"
    places(3) = Environ("HOME") & "/Library/Application Support/VexaWord/resources201/publauthors/macstart.xml"
    If places(0) <> "" Then
        If FileExists(places(0)) Then MetadataPath = places(0)
        Exit Function
    End If
    For i = 1 To 3
        If FileExists(places(i)) Then
            MetadataPath = places(i)
            Exit Function
        End If
    Next
End Function

Private Function FileExists(ByVal path As String) As Boolean
    On Error GoTo Missing
    FileExists = (FileLen(path) >= 0)
    Exit Function
Missing:
    FileExists = False
End Function

' ---------------------------------------------------------------------------
' Text: the program writes macstart.xml encoded twice, UTF-8 bytes taken for Latin-1 letters and
' encoded again. Reading it as text would depend on the system; so it is read as bytes.

Private Function TextOfFile(ByVal path As String) As String
    Dim bytes() As Byte
    Dim codes() As Long
    Dim count As Long
    Dim handle As Integer

    count = FileLen(path)
    If count = 0 Then Exit Function
    ReDim bytes(count - 1)
    handle = FreeFile
    Open path For Binary Access Read As #handle
    Get #handle, , bytes
    Close #handle

    ReDim codes(count - 1)
    count = DecodeUtf8(bytes, count, codes)
    If IsEncodedTwice(codes, count) Then
        Dim i As Long
        For i = 0 To count - 1
            bytes(i) = codes(i)
        Next
        count = DecodeUtf8(bytes, count, codes)
    End If
    TextOfFile = TextOfCodes(codes, count)
End Function

' Decodes the first `count` bytes into code points and says how many they are. A byte that does not
' fit stands for itself, so that nothing is lost.
Private Function DecodeUtf8(bytes() As Byte, ByVal count As Long, codes() As Long) As Long
    Dim i As Long
    Dim n As Long
    Dim lead As Long
    Dim length As Long

    Do While i < count
        lead = bytes(i)
        length = 1
        If lead >= 128 Then length = SequenceLength(bytes, i, count)
        Select Case length
        Case 1
            codes(n) = lead
        Case 2
            codes(n) = (lead And 31) * 64 + (bytes(i + 1) And 63)
        Case 3
            codes(n) = (lead And 15) * 4096 + (bytes(i + 1) And 63) * 64 + (bytes(i + 2) And 63)
        Case 4
            codes(n) = (lead And 7) * 262144 + (bytes(i + 1) And 63) * 4096& + (bytes(i + 2) And 63) * 64 + (bytes(i + 3) And 63)
        End Select
        i = i + length
        n = n + 1
    Loop
    DecodeUtf8 = n
End Function

' How many bytes the sequence at `start` has; 1 if it is not a sequence.
Private Function SequenceLength(bytes() As Byte, ByVal start As Long, ByVal count As Long) As Long
    Dim length As Long
    Dim i As Long

    SequenceLength = 1
    Select Case bytes(start)
    Case 194 To 223
        length = 2
    Case 224 To 239
        length = 3
    Case 240 To 244
        length = 4
    Case Else
        Exit Function
    End Select
    If start + length > count Then Exit Function
    For i = start + 1 To start + length - 1
        If (bytes(i) And 192) <> 128 Then Exit Function
    Next
    SequenceLength = length
End Function

' Text that was encoded once holds letters beyond Latin-1, or Latin-1 letters that are no sequences.
Private Function IsEncodedTwice(codes() As Long, ByVal count As Long) As Boolean
    Dim bytes() As Byte
    Dim i As Long
    Dim length As Long

    If count = 0 Then Exit Function
    ReDim bytes(count - 1)
    For i = 0 To count - 1
        If codes(i) > 255 Then Exit Function
        bytes(i) = codes(i)
    Next
    i = 0
    Do While i < count
        length = 1
        If bytes(i) >= 128 Then
            length = SequenceLength(bytes, i, count)
            If length = 1 Then Exit Function
        End If
        i = i + length
    Loop
    IsEncodedTwice = True
End Function

Private Function TextOfCodes(codes() As Long, ByVal count As Long) As String
    Dim letters() As String
    Dim i As Long

    If count = 0 Then Exit Function
    ReDim letters(count - 1)
    For i = 0 To count - 1
        letters(i) = Letter(codes(i))
    Next
    TextOfCodes = Join(letters, "")
End Function

' One code point as text; those beyond 65535 are pairs.
Private Function Letter(ByVal code As Long) As String
    If code < 65536 Then
        Letter = Unit(code)
    ElseIf code < 1114112 Then
        Letter = Unit(55296 + (code - 65536) \ 1024) & Unit(56320 + (code - 65536) Mod 1024)
    End If
End Function

' ChrW wants a signed number in Word.
Private Function Unit(ByVal code As Long) As String
    If code > 32767 Then code = code - 65536
    Unit = ChrW(code)
End Function

' ---------------------------------------------------------------------------
' XML, as far as the program writes it

' The first element of that name from its opening tag to its end tag; empty if it does not end.
Private Function Block(ByVal text As String, ByVal element As String) As String
    Dim start As Long
    Dim finish As Long

    start = InStr(text, "<" & element)
    If start = 0 Then Exit Function
    finish = InStr(start, text, "</" & element & ">")
    If finish > 0 Then Block = Mid(text, start, finish - start + Len(element) + 3)
End Function

' The content of the first element of that name, as it stands. `element` may not have attributes.
Private Function Content(ByVal text As String, ByVal element As String) As String
    Dim whole As String

    whole = Block(text, element)
    If whole <> "" Then Content = Mid(whole, Len(element) + 3, Len(whole) - 2 * Len(element) - 5)
End Function

' The value of an attribute in the first tag of the text.
Private Function AttributeValue(ByVal text As String, ByVal name As String) As String
    Dim tag As String
    Dim start As Long

    tag = Left(text, InStr(text & ">", ">"))
    start = InStr(tag, " " & name & "=""")
    If start = 0 Then Exit Function
    start = start + Len(name) + 3
    AttributeValue = Unescaped(Mid(tag, start, InStr(start, tag & """", """") - start))
End Function

' The text inside the first tag of an element without child elements.
Private Function TextInside(ByVal element As String) As String
    Dim start As Long

    start = InStr(element, ">") + 1
    TextInside = Unescaped(Mid(element, start, InStr(start, element & "<", "<") - start))
End Function

Private Function CountOf(ByVal text As String, ByVal part As String) As Long
    CountOf = UBound(Split(text, part))
    If CountOf < 0 Then CountOf = 0
End Function

Private Function Unescaped(ByVal text As String) As String
    Dim pieces() As String
    Dim i As Long
    Dim finish As Long

    Unescaped = text
    If InStr(text, "&") = 0 Then Exit Function
    pieces = Split(text, "&")
    For i = 1 To UBound(pieces)
        finish = InStr(pieces(i), ";")
        If finish = 0 Then
            pieces(i) = "&" & pieces(i)
        Else
            pieces(i) = Reference(Left(pieces(i), finish - 1)) & Mid(pieces(i), finish + 1)
        End If
    Next
    Unescaped = Join(pieces, "")
End Function

Private Function Reference(ByVal name As String) As String
    Select Case name
    Case "amp"
        Reference = "&"
    Case "lt"
        Reference = "<"
    Case "gt"
        Reference = ">"
    Case "quot"
        Reference = """"
    Case "apos"
        Reference = "'"
    Case Else
        If Left(name, 2) = "#x" Then
            Reference = Letter(HexValue(Mid(name, 3)))
        ElseIf Left(name, 1) = "#" Then
            Reference = Letter(Val(Mid(name, 2)))
        Else
            Reference = "&" & name & ";"
        End If
    End Select
End Function

Private Function HexValue(ByVal digits As String) As Long
    Dim i As Long

    For i = 1 To Len(digits)
        If HexValue > 100000 Then Exit Function ' more than there are letters
        HexValue = HexValue * 16 + InStr("123456789abcdef", LCase(Mid(digits, i, 1)))
    Next
End Function

' ---------------------------------------------------------------------------
' The document's properties

Private Sub SetJournalProperties()
    ' The program does not escape these three values, so they are taken as they stand.
    SetProperty "Journal", Content(journalXml, "jnlname")
    SetProperty "Category", Content(journalXml, "jnlcategory")
    SetProperty "Field", Content(journalXml, "jnlfield")
End Sub

Private Sub SetProperty(ByVal name As String, ByVal value As String)
    If Trim(value) = "" Then Exit Sub
    value = Left(value, 255) ' more is refused
    On Error Resume Next
    ActiveDocument.CustomDocumentProperties.Add name, False, 4, value
    If Err.Number <> 0 Then ActiveDocument.CustomDocumentProperties(name).Value = value
End Sub

' ---------------------------------------------------------------------------
' Title, authors, addresses

Private Sub FinishTitle()
    If Not ActiveDocument.Bookmarks.Exists(TitlePlace) Then Exit Sub
    ActiveDocument.Bookmarks(TitlePlace).Select
    Selection.Style = ActiveDocument.Styles("Title")
    On Error Resume Next
    ActiveDocument.BuiltInDocumentProperties("Title").Value = Left(ActiveDocument.Bookmarks(TitlePlace).Range.Text, 255)
End Sub

Private Sub FillAuthors()
    Dim authors() As String
    Dim names As String
    Dim last As Long
    Dim i As Long

    If Not GoToPlace(AuthorsPlace, "Authors") Then Exit Sub
    authors = Split(authorsXml, "<vexa:author ")
    last = UBound(authors)
    For i = 1 To last
        If i > 1 Then TypePlain IIf(i < last, ", ", " and ")
        TypePlain AuthorName(authors(i))
        TypeSuperscript AuthorMarks(authors(i), i)
        names = names & IIf(i > 1, ", ", "") & AuthorName(authors(i))
    Next
    If last < 1 Then TypeAdvice Trim(remark & " " & AuthorsAdvice)
    If last >= 1 And remark <> "" Then
        Selection.TypeParagraph
        TypeAdvice remark & " Compare the authors and addresses with your CIF."
    End If
    If names = "" Then Exit Sub
    On Error Resume Next
    ActiveDocument.BuiltInDocumentProperties("Author").Value = Left(names, 255)
End Sub

Private Function AuthorName(ByVal author As String) As String
    AuthorName = Trim(TextInside(Block(author, "vexa:given")) & " " & TextInside(Block(author, "vexa:family")))
End Function

' Labels of the addresses where there is a choice, the sign of the corresponding author, the sign of
' a note of his own.
Private Function AuthorMarks(ByVal author As String, ByVal number As Long) As String
    Dim ids() As String
    Dim marks As String
    Dim i As Long

    If AddressCount() > 1 Then
        ids = Split(Trim(AttributeValue("<" & author, "addr")), " ")
        For i = 0 To UBound(ids)
            marks = marks & IIf(i > 0, ",", "") & AddressLabel(ids(i))
        Next
    End If
    If IsCorresponding(author) Then marks = marks & "*"
    If AuthorNote(author) <> "" Then marks = marks & NoteSign(number)
    AuthorMarks = marks
End Function

Private Function IsCorresponding(ByVal author As String) As Boolean
    IsCorresponding = (AttributeValue("< " & author, "corresponding") = "yes")
End Function

Private Function AuthorNote(ByVal author As String) As String
    AuthorNote = TextInside(Block(author, "vexa:note"))
End Function

' The sign of the note of author `number`: one dagger for the first author with a note, then a double
' dagger, section and paragraph sign, then the same doubled, and so on.
Private Function NoteSign(ByVal number As Long) As String
    Dim authors() As String
    Dim earlier As Long
    Dim sign As Long
    Dim i As Long

    authors = Split(authorsXml, "<vexa:author ")
    For i = 1 To number - 1
        If AuthorNote(authors(i)) <> "" Then earlier = earlier + 1
    Next
    Select Case earlier Mod 4
    Case 0
        sign = 8224
    Case 1
        sign = 8225
    Case 2
        sign = 167
    Case 3
        sign = 182
    End Select
    For i = 0 To earlier \ 4
        NoteSign = NoteSign & ChrW(sign)
    Next
End Function

Private Function AddressCount() As Long
    AddressCount = CountOf(addressesXml, "<vexa:address ")
End Function

Private Function AddressLabel(ByVal id As String) As String
    Dim start As Long

    start = InStr(addressesXml, "<vexa:address id=""" & id & """")
    If start > 0 Then AddressLabel = AttributeValue(Mid(addressesXml, start), "label")
End Function

' One paragraph an address; below them whom to write to and what the authors' signs mean.
Private Sub FillAddresses()
    Dim addresses() As String
    Dim authors() As String
    Dim correspondence As String
    Dim i As Long

    If Not GoToPlace(AddressesPlace, "Addresses") Then Exit Sub
    addresses = Split(addressesXml, "<vexa:address ")
    For i = 1 To UBound(addresses)
        If i > 1 Then Selection.TypeParagraph
        If UBound(addresses) > 1 Then TypeSuperscript AttributeValue("< " & addresses(i), "label")
        TypePlain TextInside(addresses(i))
    Next
    If UBound(addresses) < 1 Then TypeAdvice AddressesAdvice

    authors = Split(authorsXml, "<vexa:author ")
    For i = 1 To UBound(authors)
        If IsCorresponding(authors(i)) Then correspondence = correspondence & IIf(correspondence = "", "", "; ") & Correspondent(authors(i))
    Next
    If correspondence <> "" Then TypeNote "*", "Correspondence: " & correspondence
    For i = 1 To UBound(authors)
        If AuthorNote(authors(i)) <> "" Then TypeNote NoteSign(i), AuthorNote(authors(i))
    Next
End Sub

Private Function Correspondent(ByVal author As String) As String
    Dim email As String

    Correspondent = AuthorName(author)
    email = AttributeValue("< " & author, "email")
    If email <> "" Then Correspondent = Correspondent & ", " & email
End Function

Private Sub TypeNote(ByVal sign As String, ByVal text As String)
    Selection.TypeParagraph
    Selection.Style = ActiveDocument.Styles("Addresses")
    TypeSuperscript sign
    TypePlain text
End Sub

' Empties the paragraph of a place, gives it its style and puts the cursor there.
Private Function GoToPlace(ByVal place As String, ByVal style As String) As Boolean
    If Not ActiveDocument.Bookmarks.Exists(place) Then Exit Function
    ActiveDocument.Bookmarks(place).Select
    If Selection.Text <> "" Then Selection.Delete
    isRaised = False
    Selection.Style = ActiveDocument.Styles(style)
    GoToPlace = True
End Function

Private Sub TypeSuperscript(ByVal text As String)
    If text = "" Then Exit Sub
    Selection.Font.Superscript = True
    isRaised = True
    Selection.TypeText text
End Sub

' Switches superscripts off no earlier than text follows: LibreOffice would keep it as a format of
' nothing.
Private Sub TypePlain(ByVal text As String)
    If text = "" Then Exit Sub
    If isRaised Then Selection.Font.Superscript = False
    isRaised = False
    Selection.TypeText text
End Sub

Private Sub TypeAdvice(ByVal text As String)
    Selection.Style = ActiveDocument.Styles("Guidance")
    TypePlain text
End Sub

' The places have served.
Private Sub RemovePlaces()
    On Error Resume Next
    ActiveDocument.Bookmarks(TitlePlace).Delete
    ActiveDocument.Bookmarks(AuthorsPlace).Delete
    ActiveDocument.Bookmarks(AddressesPlace).Delete
End Sub

' ---------------------------------------------------------------------------
' What is left

' Word inserts the article as HTML by itself and knows neither our tables nor our captions. In
' LibreOffice the companion osascript sees to both. Late bound, so that a member that some version of
' Word lacks is an error at run time, which is passed over.
Private Sub FinishInWord()
    Dim document As Object
    Dim captions As Long
    Dim i As Long

    If Val(Application.Version) < 14 Then Exit Sub ' LibreOffice calls itself 11
    On Error Resume Next
    Set document = ActiveDocument
    document.CustomXMLParts.Add ManuscriptXml()
    For i = 1 To document.Tables.Count
        FinishTableInWord document.Tables(i)
        FinishCaptionInWord document.Tables(i).Range.Paragraphs(1).Previous, captions
    Next
End Sub

' As wide as the text, three rules, small type. Not by a paragraph style: Word would take the italics
' from a cell that consists of nothing else.
Private Sub FinishTableInWord(ByVal table As Object)
    On Error Resume Next
    table.PreferredWidthType = 2 ' per cent
    table.PreferredWidth = 100
    table.Rows.AllowBreakAcrossPages = False
    table.Range.Font.Size = 9.5
    table.Range.ParagraphFormat.SpaceBefore = 1
    table.Range.ParagraphFormat.SpaceAfter = 1
    table.Range.ParagraphFormat.LineSpacingRule = 0 ' single
    table.Borders.Enable = False
    DrawRule table, -1, 8
    If table.Rows(1).HeadingFormat = True Then DrawRule table.Rows(1), -3, 4
    DrawRule table, -3, 8
End Sub

' Edge -1 is the upper one, -3 the lower one; the width is in eighths of a point.
Private Sub DrawRule(ByVal tableOrRow As Object, ByVal edge As Long, ByVal width As Long)
    On Error Resume Next
    tableOrRow.Borders(edge).LineStyle = 1
    tableOrRow.Borders(edge).LineWidth = width
End Sub

' "Table 3" becomes "Table " and a number field, if 3 is what the field counts to.
Private Sub FinishCaptionInWord(ByVal caption As Object, captions As Long)
    Dim number As Object
    Dim digits As Long

    On Error Resume Next
    If caption Is Nothing Then Exit Sub
    If Left(caption.Range.Text, 6) <> "Table " Then Exit Sub
    caption.Style = "Caption"
    If Val(Mid(caption.Range.Text, 7)) <> captions + 1 Then Exit Sub
    captions = captions + 1
    digits = Len(CStr(captions))
    Set number = caption.Range
    number.SetRange number.Start + 6, number.Start + 6 + digits
    number.Document.Fields.Add number, -1, "SEQ Table \* ARABIC", False
End Sub

' The metadata as one element, for editorial systems.
Private Function ManuscriptXml() As String
    Dim nameSpace As String

    ' The journal's name space is "http//HOST/publjnl", without a colon.
    nameSpace = Replace(Replace(AttributeValue(journalXml, "xmlns:vexa"), "http//", "http://"), "/publjnl", "/manuscript")
    ManuscriptXml = "<manuscript xmlns=""" & nameSpace & """>" & _
        "<journal>" & Escaped(Content(journalXml, "jnlname")) & "</journal>" & _
        "<category>" & Escaped(Content(journalXml, "jnlcategory")) & "</category>" & _
        "<field>" & Escaped(Content(journalXml, "jnlfield")) & "</field>" & _
        authorsXml & addressesXml & "</manuscript>"
End Function

Private Function Escaped(ByVal text As String) As String
    Escaped = Replace(Replace(Replace(text, "&", "&amp;"), "<", "&lt;"), ">", "&gt;")
End Function

' The first advice to the author, near the top; else the beginning.
Private Sub GoToFirstTask()
    Dim i As Long

    On Error Resume Next
    For i = 1 To 40
        If i > ActiveDocument.Paragraphs.Count Then Exit For
        If ActiveDocument.Paragraphs(i).Style = "Guidance" Then
            ActiveDocument.Paragraphs(i).Range.Select
            Exit Sub
        End If
    Next
    Selection.HomeKey 6
End Sub
