#include "app/application.h"

#include <QApplication>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>

namespace
{
// The file that the program is asked to open, as a full path; empty without one.
QString fileOf(const QStringList& arguments)
{
    const auto file =
        std::find_if(arguments.cbegin() + 1, arguments.cend(), [](const QString& argument) {
            return !argument.startsWith(QLatin1Char('-'));
        });
    if (file == arguments.cend() || file->isEmpty())
        return QString();
    const QUrl url(*file);
    return url.isLocalFile() ? url.toLocalFile() : QFileInfo(*file).absoluteFilePath();
}
} // namespace

int main(int argc, char* argv[])
{
    // On a display of many dots per inch the window would be as small as its pixels otherwise.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication program(argc, argv);
    // Desktops find name and icon of the window by it.
    QGuiApplication::setDesktopFileName(QStringLiteral("vexaword"));
    Application application;
    application.openFile(fileOf(QCoreApplication::arguments()));
    return program.exec();
}
