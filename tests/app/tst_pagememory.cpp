// What the page remembers, in its file.
#include "app/pagememory.h"

#include <QFile>
#include <QNetworkCookie>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

namespace
{
const QUrl page = QUrl::fromLocalFile(QStringLiteral("/home/anna/webwidgets/templates.html"));
const QByteArray lasting = "; max-age=100000000";

// As the page's assignment to document.cookie.
bool set(pageMemory& memory, const QByteArray& cookie, const QUrl& url = page)
{
    return memory.setCookiesFromUrl(QNetworkCookie::parseCookies(cookie), url);
}

// As the page reads document.cookie.
QByteArray read(const pageMemory& memory, const QUrl& url = page)
{
    QByteArrayList cookies;
    const QList<QNetworkCookie> all = memory.cookiesForUrl(url);
    for (const QNetworkCookie& cookie : all)
        cookies << cookie.toRawForm(QNetworkCookie::NameAndValueOnly);
    return cookies.join("; ");
}
} // namespace

class tst_PageMemory : public QObject
{
    Q_OBJECT

private slots:
    void survivesTheEnd();
    void keepsTheLastValueOfEachName();
    void forgetsWhatHasExpired();
    void isForLocalPagesOnly();
    void remembersWithoutAFile();
    void survivesADamagedFile_data();
    void survivesADamagedFile();
};

void tst_PageMemory::survivesTheEnd()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("page.cookies"));
    {
        pageMemory memory(path);
        QCOMPARE(read(memory), QByteArray());
        QVERIFY(!QFile::exists(path)); // nothing to remember, no file
        QVERIFY(set(memory, "choice=%7B%22journal%22%3A%22Section%20D%22%7D" + lasting));
        QVERIFY(set(memory, "size=1.5" + lasting));
        QVERIFY(QFile::exists(path));
    }
    QCOMPARE(read(pageMemory(path)),
             QByteArray("choice=%7B%22journal%22%3A%22Section%20D%22%7D; size=1.5"));
}

void tst_PageMemory::keepsTheLastValueOfEachName()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("page.cookies"));
    pageMemory memory(path);
    QVERIFY(set(memory, "a=1" + lasting) && set(memory, "b=2" + lasting) &&
            set(memory, "a=3" + lasting));
    QCOMPARE(read(memory), QByteArray("b=2; a=3"));
    QCOMPARE(read(pageMemory(path)), QByteArray("b=2; a=3"));
}

void tst_PageMemory::forgetsWhatHasExpired()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("page.cookies"));
    pageMemory memory(path);
    QVERIFY(set(memory, "a=1" + lasting) && set(memory, "b=2" + lasting));
    QVERIFY(set(memory, "a=; expires=Thu, 01-Jan-1970 00:00:01 GMT"));
    QCOMPARE(read(memory), QByteArray("b=2"));
    QCOMPARE(read(pageMemory(path)), QByteArray("b=2"));
}

void tst_PageMemory::isForLocalPagesOnly()
{
    const QTemporaryDir folder;
    const QUrl network(QStringLiteral("http://127.0.0.1/templates.html"));
    pageMemory memory(folder.filePath(QStringLiteral("page.cookies")));
    QVERIFY(set(memory, "a=1" + lasting));
    QVERIFY(!set(memory, "a=2" + lasting, network));
    QCOMPARE(read(memory, network), QByteArray());
    QCOMPARE(read(memory), QByteArray("a=1"));
}

void tst_PageMemory::remembersWithoutAFile()
{
    const QString path = QStringLiteral("/nowhere/at/all/page.cookies");
    pageMemory memory(path);
    QVERIFY(set(memory, "a=1" + lasting));
    QCOMPARE(read(memory), QByteArray("a=1"));
    QVERIFY(!QFile::exists(QStringLiteral("/nowhere")));
}

void tst_PageMemory::survivesADamagedFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("remembered");
    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("cut short") << QByteArray("a=1; expires=Fri, 01-Jan-2100 00:00:00 GMT\nb=")
                               << QByteArray("a=1; b=");
    QTest::newRow("bytes of all kinds") << QByteArray("\0\xff=\x80;\n\n=;=\n", 10) << QByteArray();
    QTest::newRow("no cookies") << QByteArray("once upon a time\n") << QByteArray();
}

void tst_PageMemory::survivesADamagedFile()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, remembered);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("page.cookies"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    pageMemory memory(path);
    if (!remembered.isEmpty())
        QCOMPARE(read(memory), remembered);
    QVERIFY(set(memory, "c=1" + lasting));
    QVERIFY(read(pageMemory(path)).endsWith("c=1"));
}

QTEST_GUILESS_MAIN(tst_PageMemory)
#include "tst_pagememory.moc"
