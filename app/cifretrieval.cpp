// Fetching a CIF by identifier.
#include "app/application.h"
#include "app/mmcif.h"
#include "text/textpieces.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QRegExp>
#include <QUrl>

namespace
{
// The identifier stands in the address as it was given.
QString addressOf(const QString& identifier)
{
    const QRegExp sasIdentifier(QStringLiteral("^SAS[A-Z0-9][A-Z0-9][A-Z0-9][A-Z0-9]$"),
                                Qt::CaseSensitive, QRegExp::RegExp);
    if (identifier.indexOf(sasIdentifier) != -1)
        return QStringLiteral("http://" VEXAWORD_WIDGET_HOST
                              "/widgets/cifmol/getcif.php?type=sascif&artid=") +
               identifier;
    return QStringLiteral("http://" VEXAWORD_PDB_HOST "/view/") + identifier +
           QStringLiteral(".cif");
}
} // namespace

void Application::getPdbCif(const QString& pdbcode)
{
    auto* manager = new QNetworkAccessManager(this);
    connect(manager, SIGNAL(finished(QNetworkReply*)), this,
            SLOT(pdbReplyFinished(QNetworkReply*)));
    manager->get(QNetworkRequest(QUrl(addressOf(pdbcode))));
}

// Only the content decides: an error page, a redirect or an empty answer holds no mmCIF.
void Application::pdbReplyFinished(QNetworkReply* pdbreply)
{
    // One byte, one character, up to the first zero byte. The working copy's encoding is the
    // locale's, so a byte above 0x7F does not come out as it went in.
    const QString text = QString::fromLatin1(pdbreply->readAll().constData());
    const QString copyPath = resourcesPath + QStringLiteral("/tmpcif.cif");
    isMmCif = isMmCifText(text);
    if (!isMmCif) {
        evaluateInPage(QStringLiteral("pdbResponse(\"Failed to retrieve mmCIF from PDB\");"));
    } else if (replaceTextFile(copyPath, text)) {
        workCifPath = copyPath;
        userCifPath = copyPath;
        evaluateInPage(QStringLiteral("pdbResponse(\"OK\");"));
    }
    pdbreply->deleteLater();
}
