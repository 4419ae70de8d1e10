// The companion osascript: carries out a launch script with LibreOffice.
#pragma once

#include <QStringList>

namespace wordbridge
{

enum ExitCode {
    documentMade = 0,
    scriptUnusable = 1, // the script, or a file that it names, is missing or wrong
    wrongCall = 2,
    documentNotMade = 3,
};

// The whole program: `arguments` without the program's name. Prints the document's path on standard
// output and messages on standard error, and keeps a line about the run in the log. Returns an
// ExitCode.
int run(const QStringList& arguments);

} // namespace wordbridge
