// The ways in which text crosses files. Every text file of the application is read and written
// here.
#pragma once

#include <QString>

// Whether the path, or what a link there leads to, is a regular file. Opening anything else (a
// pipe, a device) might wait for ever, so all functions here refuse it.
bool isRegularFile(const QString& path);
bool isRegularFileOrMissing(const QString& path);

// Reads a whole file as text: in the locale's encoding (UTF-8 on Debian and on the Mac), or in
// UTF-16 or UTF-32 when it begins with such a byte-order mark; a byte-order mark is not part of the
// text. Carriage returns are dropped. Bytes that the encoding does not know become U+FFFD. False,
// and text untouched, when it is no regular file or cannot be opened.
bool readTextFile(const QString& path, QString* text);

// Writes text in the locale's encoding, over what the file held, without a byte-order mark and with
// line ends as they are. False when it is no regular file or cannot be opened, which leaves it as
// it was, or when not all could be written.
bool writeTextFile(const QString& path, const QString& text);

// The same for the two files that the word processor's side reads: text becomes UTF-8, each byte of
// which becomes the character of the same code, and these characters are written in the locale's
// encoding. So ASCII stays as it is and any other character arrives encoded twice.
bool writeTextFileEncodedTwice(const QString& path, const QString& text);
