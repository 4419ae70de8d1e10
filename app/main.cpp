#include "app/application.h"
#include "app/onewindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

#include <algorithm>
#include <limits>

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
    // Qt's network code would wake up every ten seconds to look for new interfaces. It needs to
    // know of none: a request finds its way when it is made.
    if (!qEnvironmentVariableIsSet("QT_BEARER_POLL_TIMEOUT"))
        qputenv("QT_BEARER_POLL_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    // On a display of many dots per inch the window would be as small as its pixels otherwise.
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication program(argc, argv);
    // Desktops find name and icon of the window by it.
    QGuiApplication::setDesktopFileName(QStringLiteral("vexaword"));
    const QString file = fileOf(QCoreApplication::arguments());
    oneWindow window(QDir::homePath() +
                     QStringLiteral("/Library/Application Support/VexaWord/window"));
    if (window.handOver(file))
        return 0;
    Application application;
    window.listen([&](const QString& another) { return application.takeOverFrom(another); });
    application.openFile(file);
    return program.exec();
}
