// What the page remembers from one start to the next.
#pragma once

#include <QNetworkCookieJar>

// The page's cookies, kept in a text file, one a line. Each is in the file when the page's
// assignment to document.cookie returns, so nothing is lost however the program ends; the web
// engine's own storage is written a second later or not at all. Pages that are local files share
// them; nothing from the network sees them. GUI thread only.
class pageMemory : public QNetworkCookieJar
{
public:
    // Reads the file, if it is there. Where it cannot be written, the page remembers until the
    // program ends.
    explicit pageMemory(const QString& path, QObject* parent = nullptr);

    QList<QNetworkCookie> cookiesForUrl(const QUrl& url) const override;
    bool setCookiesFromUrl(const QList<QNetworkCookie>& cookies, const QUrl& url) override;

private:
    void store() const;

    QString filePath;
};
