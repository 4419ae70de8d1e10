// Text files of any size, read and replaced piece by piece.
//
// What comes out is byte for byte what readTextFile() followed by writeTextFile() gives (see
// text/textfile.h), in memory that does not grow with the file.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <QString>
#include <QTextDecoder>
#include <QTextEncoder>

#include <memory>

// A stretch of text. Most stretches of most files are ASCII and pass through as they are.
struct TextPiece {
    bool isAscii = true;
    QByteArray ascii;   // the text if it is ASCII
    QString characters; // the text if it is not
};

// Reads a regular file, or what a link to one leads to. Anything else (a folder, a pipe, a device)
// cannot be opened, since reading it might never end.
class TextReader
{
public:
    bool open(const QString& path);

    // The next piece; false at the end, and after an error (see failed()). A piece may be empty.
    bool next(TextPiece* piece);

    bool failed() const { return file.error() != QFileDevice::NoError; }

private:
    QFile file;
    std::unique_ptr<QTextDecoder> decoder; // made for the first bytes, which decide on the encoding
    bool isUtf8 = false;
    bool isBetweenCharacters = false; // all bytes so far belong to whole characters
};

// Replaces a regular file, or makes a new one, whole or not at all: the text goes to a file beside
// it, which takes its place in the end. Where no file can be made beside it, it is written
// directly.
class TextReplacement
{
public:
    TextReplacement();

    // False, and nothing happens to the file, if it cannot be written or is not a regular file.
    bool open(const QString& path);

    void write(const TextPiece& piece);

    // False if not all could be written; the file is as before then, unless it had to be written
    // directly.
    bool commit();

private:
    QSaveFile file;
    QTextEncoder encoder;
};

// Reads from and replaces to, which may be the same file. False if either could not be done.
bool copyTextFile(const QString& from, const QString& to);

// Replaces the file by that text.
bool replaceTextFile(const QString& path, const QString& text);
