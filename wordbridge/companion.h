// The companion osascript: carries out a launch script with LibreOffice.
#pragma once

#include <QString>
#include <QStringList>

namespace wordbridge
{

enum ExitCode {
    documentMade = 0,
    scriptUnusable = 1, // the script, or a file that it names, is missing or wrong
    wrongCall = 2,
    documentNotMade = 3,
};

struct Outcome {
    QString document;    // path of the manuscript
    QStringList remarks; // what the user should know although the document was made
};

// Carries out the script: makes the manuscript, keeps it in the user's documents folder, and opens
// it where there is a display. Throws Error where it cannot; `exitCode` then says which kind it is.
Outcome carryOut(const QString& scriptPath, ExitCode& exitCode);

// The whole program: `arguments` without the program's name. Prints the document's path on standard
// output, messages on standard error, and keeps a line about the run in the log.
int run(const QStringList& arguments);

} // namespace wordbridge
