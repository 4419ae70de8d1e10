#include "app/pagememory.h"

#include "text/textfile.h"
#include "text/textpieces.h"

#include <QNetworkCookie>
#include <QUrl>

#include <algorithm>

namespace
{
// What a page can have set; a damaged file may hold anything.
bool isWhole(const QNetworkCookie& cookie)
{
    const QByteArray text = cookie.toRawForm(QNetworkCookie::NameAndValueOnly);
    return !cookie.name().isEmpty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}
} // namespace

pageMemory::pageMemory(const QString& path, QObject* parent)
    : QNetworkCookieJar(parent),
      filePath(path)
{
    QString text;
    readTextFile(filePath, &text);
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QList<QNetworkCookie> cookies = QNetworkCookie::parseCookies(line.toLatin1());
        for (const QNetworkCookie& cookie : cookies)
            if (isWhole(cookie))
                insertCookie(cookie);
    }
}

QList<QNetworkCookie> pageMemory::cookiesForUrl(const QUrl& url) const
{
    return url.isLocalFile() ? allCookies() : QList<QNetworkCookie>();
}

bool pageMemory::setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url)
{
    if (!url.isLocalFile())
        return false;
    // A cookie that has expired takes the one of its name with it.
    for (const QNetworkCookie& cookie : cookies)
        insertCookie(cookie);
    store();
    return true;
}

void pageMemory::store() const
{
    QByteArray text;
    const QList<QNetworkCookie> cookies = allCookies();
    for (const QNetworkCookie& cookie : cookies)
        text += cookie.toRawForm() + '\n';
    replaceTextFile(filePath, QString::fromLatin1(text));
}
