// Choosing a CIF on disk, and writing it back.
#include "app/application.h"
#include "app/mmcif.h"
#include "text/textpieces.h"

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
    TextReader reader;
    if (!reader.open(path))
        return QString();
    lastCifFolder = QDir(path).path(); // the file itself: the next dialog opens beside it, on it

    isMmCif = false;
    if (!storeWorkingCopy(&reader))
        return QString();
    return isMmCif ? QStringLiteral("mmCIF: ") + path : path;
}

// Copies the text and looks at it on the way: it may be larger than memory.
bool Application::storeWorkingCopy(TextReader* reader)
{
    const QString copyPath = resourcesPath + QStringLiteral("/tmpcif.cif");
    TextReplacement copy;
    if (!copy.open(copyPath))
        return false;
    MmCifSearch search;
    TextPiece piece;
    while (reader->next(&piece)) {
        if (piece.isAscii)
            search.readAscii(piece.ascii);
        else
            search.read(piece.characters);
        copy.write(piece);
    }
    if (reader->failed() || !copy.commit())
        return false;
    isMmCif = search.hasFound();
    workCifPath = copyPath;
    return true;
}

bool Application::saveCif()
{
    return copyTextFile(workCifPath, userCifPath);
}
