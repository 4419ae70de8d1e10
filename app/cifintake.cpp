// Choosing a CIF on disk, and writing it back.
#include "app/application.h"
#include "app/mmcif.h"
#include "text/textfile.h"

#include <QDir>
#include <QFileDialog>

QString Application::setCif(const QString& ciffile)
{
    userCifPath.clear();
    if (lastCifFolder.isEmpty())
        lastCifFolder = QDir::homePath();

    QString path = ciffile.trimmed();
    if (path.isEmpty())
        path = QFileDialog::getOpenFileName(nullptr, QStringLiteral("Quillet"), lastCifFolder,
                                            QStringLiteral("CIF files (*.cif)"));
    if (path.isEmpty())
        return QString();

    // Set before the file is read, and kept when it cannot be: saveCif() then goes to this path.
    userCifPath = path;
    QString text;
    if (!readTextFile(path, &text))
        return QString();
    lastCifFolder = QDir(path).path(); // the file itself: the next dialog opens beside it, on it

    isMmCif = isMmCifText(text);
    if (!storeWorkingCopy(text)) {
        isMmCif = false;
        return QString();
    }
    return isMmCif ? QStringLiteral("mmCIF: ") + path : path;
}

bool Application::saveCif()
{
    QString text;
    return readTextFile(workCifPath, &text) && writeTextFile(userCifPath, text);
}

bool Application::storeWorkingCopy(const QString& text)
{
    const QString path = resourcesPath + QStringLiteral("/tmpcif.cif");
    if (!writeTextFile(path, text))
        return false;
    workCifPath = path;
    return true;
}
