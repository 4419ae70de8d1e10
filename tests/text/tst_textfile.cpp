// Reading and writing text files: which bytes become which text, and back.
#include "tests/support/filesizelimit.h"
#include "text/textfile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_TextFile : public QObject
{
    Q_OBJECT

private slots:
    void reading_data();
    void reading();
    void longFilesKeepCharactersThatStraddleBuffers();
    void writing_data();
    void writing();
    void writingReplacesWhatWasThere();
    void missingFilesAndFoldersFail();
    void aFullDiskFails();

private:
    QString file(const QByteArray& content);
    QByteArray contentOf(const QString& path);
    QTemporaryDir folder;
};

QString tst_TextFile::file(const QByteArray& content)
{
    QFile file(folder.filePath(QStringLiteral("in.txt")));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size()
               ? file.fileName()
               : QString();
}

QByteArray tst_TextFile::contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void tst_TextFile::reading_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const QString eAcute(QChar(0xE9));
    const QString replacement(QChar(0xFFFD));

    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("UTF-8") << QByteArray("caf\xC3\xA9\n") << "caf" + eAcute + "\n";
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "data_I")
                                     << "data_I";
    QTest::newRow("UTF-16, little end first") << QByteArray("\xFF\xFE"
                                                            "a\0\xE9\0",
                                                            6)
                                              << "a" + eAcute;
    QTest::newRow("UTF-16, big end first") << QByteArray("\xFE\xFF\0a\0\xE9", 6) << "a" + eAcute;
    QTest::newRow("UTF-32") << QByteArray("\xFF\xFE\0\0a\0\0\0", 8) << "a";
    QTest::newRow("Latin-1 byte") << QByteArray("caf\xE9 x") << "caf" + replacement + " x";
    QTest::newRow("CR LF") << QByteArray("a\r\nb\r\n") << "a\nb\n";
    QTest::newRow("CR alone vanishes") << QByteArray("a\rb\r") << "ab";
    QTest::newRow("no line end at the end") << QByteArray("a\nb") << "a\nb";
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QString::fromLatin1("a\0b", 3);
}

void tst_TextFile::reading()
{
    QFETCH(QByteArray, bytes);
    QString text = QStringLiteral("as before");
    QVERIFY(readTextFile(file(bytes), &text));
    QTEST(text, "text");
}

void tst_TextFile::longFilesKeepCharactersThatStraddleBuffers()
{
    for (int lead = 16380; lead < 16390; ++lead) {
        const QByteArray bytes = QByteArray(lead, 'x') + "\xE2\x82\xAC\r\n\xF0\x9F\x98\x80";
        QString text;
        QVERIFY(readTextFile(file(bytes), &text));
        QCOMPARE(text.mid(lead), QString::fromUtf8("\xE2\x82\xAC\n\xF0\x9F\x98\x80"));
    }
}

void tst_TextFile::writing_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("once");
    QTest::addColumn<QByteArray>("twice");

    QTest::newRow("empty") << QString() << QByteArray() << QByteArray();
    QTest::newRow("ASCII") << "a <b>\r\n\n"
                           << QByteArray("a <b>\r\n\n") << QByteArray("a <b>\r\n\n");
    QTest::newRow("umlaut") << QString::fromUtf8("M\xC3\xBCller") << QByteArray("M\xC3\xBCller")
                            << QByteArray("M\xC3\x83\xC2\xBCller");
    QTest::newRow("three bytes") << QString::fromUtf8("\xE2\x82\xAC") << QByteArray("\xE2\x82\xAC")
                                 << QByteArray("\xC3\xA2\xC2\x82\xC2\xAC");
    QTest::newRow("four bytes") << QString::fromUtf8("\xF0\x9F\x98\x80")
                                << QByteArray("\xF0\x9F\x98\x80")
                                << QByteArray("\xC3\xB0\xC2\x9F\xC2\x98\xC2\x80");
    QTest::newRow("zero character")
        << QString::fromLatin1("a\0b", 3) << QByteArray("a\0b", 3) << QByteArray("a\0b", 3);
}

void tst_TextFile::writing()
{
    QFETCH(QString, text);
    const QString path = folder.filePath(QStringLiteral("out.txt"));
    QVERIFY(writeTextFile(path, text));
    QTEST(contentOf(path), "once");
    QVERIFY(writeTextFileEncodedTwice(path, text));
    QTEST(contentOf(path), "twice");
}

void tst_TextFile::writingReplacesWhatWasThere()
{
    const QString path = file("a long text that stood here before");
    QVERIFY(writeTextFile(path, QStringLiteral("short")));
    QCOMPARE(contentOf(path), QByteArray("short"));
}

void tst_TextFile::missingFilesAndFoldersFail()
{
    QString text = QStringLiteral("as before");
    QVERIFY(!readTextFile(folder.filePath(QStringLiteral("none.txt")), &text));
    QVERIFY(!readTextFile(folder.path(), &text));
    QVERIFY(!readTextFile(QString(), &text));
    QCOMPARE(text, QStringLiteral("as before"));
    QVERIFY(!writeTextFile(folder.filePath(QStringLiteral("none/out.txt")), text));
    QVERIFY(!writeTextFile(folder.path(), text));
    QVERIFY(!writeTextFile(QString(), text));
}

void tst_TextFile::aFullDiskFails()
{
    const FileSizeLimit limit(1000);
    const QString path = folder.filePath(QStringLiteral("full.txt"));
    QVERIFY(!writeTextFile(path, QString(1001, QLatin1Char('x'))));
    QVERIFY(!writeTextFile(path, QString(100000, QLatin1Char('x'))));
    QVERIFY(writeTextFile(path, QString(1000, QLatin1Char('x'))));
}

QTEST_GUILESS_MAIN(tst_TextFile)
#include "tst_textfile.moc"
