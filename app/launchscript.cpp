#include "app/launchscript.h"

QString launchScript(const QString& applicationFolder, const QString& htmlPath)
{
    return QStringLiteral("tell application \"System Events\"\n"
                          "activate\n"
                          "if not (UI elements enabled) then set (UI elements enabled) to true\n"
                          "\tend tell\n"
                          "tell application \"Microsoft Word\"\n"
                          "    activate\n"
                          "    create new document attached template (POSIX file \"") +
           applicationFolder +
           QStringLiteral("/vexainkworks_wm.dotm\") as string\n"
                          "    delay 1\n"
                          "    insert file at text object of selection file name (POSIX file \"") +
           htmlPath +
           QStringLiteral("\") as string\n"
                          "    run VB macro macro name \"Vexa_authors.VexaM_setInitialXmlData\"\n"
                          "end tell\n");
}
