// The launch script: the AppleScript that the program writes, read statement by statement.
#pragma once

#include <optional>
#include <QByteArray>
#include <QString>

namespace wordbridge
{

// A path or name that the script gives, and the line that it stands in.
struct ScriptValue {
    QString text;
    int line = 0;
};

struct LaunchScript {
    ScriptValue templatePath;               // create new document
    std::optional<ScriptValue> articlePath; // insert file
    std::optional<ScriptValue> macro;       // run VB macro
};

// Reads the bytes of a script file. They are encoded twice (see textencoding.h).
//
// Known are the statements of a launch script, each on a line of its own, in the blocks that they
// belong to: activate; switching user-interface scripting on; create new document; delay; insert
// file; run VB macro. Only the three actions are carried out, each at most once, the new document
// first. Paths stand as they are between the first and the last quotation mark of their statement:
// the program does not escape them. Throws Error, with the line's number in front, for anything
// else.
LaunchScript readLaunchScript(const QByteArray& bytes, const QString& scriptName);

} // namespace wordbridge
