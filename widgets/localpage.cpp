#include "widgets/localpage.h"

#include <QDesktopServices>
#include <QNetworkRequest>
#include <QUrl>

localPage::localPage(QObject* parent) : QWebPage(parent) {}

bool localPage::acceptNavigationRequest(QWebFrame*, const QNetworkRequest& request,
                                        NavigationType type)
{
    const QUrl url = request.url();
    const QStringList localSchemes = {QStringLiteral("file"), QStringLiteral("about"),
                                      QStringLiteral("data")};
    if (localSchemes.contains(url.scheme()))
        return true;
    if (type == NavigationTypeLinkClicked)
        QDesktopServices::openUrl(url);
    return false;
}
