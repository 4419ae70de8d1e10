// Copying and replacing text files piece by piece, against the plain text streams.
#include "tests/support/filesizelimit.h"
#include "text/textfile.h"
#include "text/textpieces.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <functional>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

class tst_TextPieces : public QObject
{
    Q_OBJECT

private slots:
    void init() { scratch = std::make_unique<QTemporaryDir>(); }

    void copiesAreThoseOfTextStreams_data();
    void copiesAreThoseOfTextStreams();
    void aFileMayBeCopiedOntoItself();
    void missingSourceLeavesTheTarget();
    void onlyRegularFilesAreRead_data();
    void onlyRegularFilesAreRead();
    void onlyRegularFilesAreReplaced_data();
    void onlyRegularFilesAreReplaced();
    void aFullDiskLeavesTheTarget();
    void aReadOnlyFileIsNotReplaced();
    void aReadOnlyFolderIsNoObstacle();
    void linksAreFollowed();
    void permissionsStay();
    void newFilesGetUsualPermissions();
    void nothingIsLeftBeside();
    void replacingByAText();

private:
    QString at(const QString& name) const { return scratch->filePath(name); }
    void write(const QString& name, const QByteArray& content) const;
    QByteArray read(const QString& name) const;
    // What plain text streams make of the bytes.
    static QByteArray throughStreams(QByteArray bytes);

    std::unique_ptr<QTemporaryDir> scratch;
};

void tst_TextPieces::write(const QString& name, const QByteArray& content) const
{
    QFile file(at(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray tst_TextPieces::read(const QString& name) const
{
    QFile file(at(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QByteArray tst_TextPieces::throughStreams(QByteArray bytes)
{
    QTemporaryDir folder;
    QFile in(folder.filePath("in"));
    in.open(QIODevice::WriteOnly);
    in.write(bytes);
    in.close();
    in.open(QIODevice::ReadOnly | QIODevice::Text);
    const QString text = QTextStream(&in).readAll();
    QFile out(folder.filePath("out"));
    out.open(QIODevice::WriteOnly);
    {
        QTextStream stream(&out);
        stream << text;
    }
    out.close();
    out.open(QIODevice::ReadOnly);
    return out.readAll();
}

namespace
{
using Random = QRandomGenerator;

QByteArray randomBytes(Random& random, int size, const QByteArray& alphabet)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = alphabet.isEmpty() ? char(random.bounded(256))
                                  : alphabet.at(random.bounded(alphabet.size()));
    return bytes;
}

// Mostly ASCII, with whole and broken characters here and there.
QByteArray randomUtf8(Random& random, int size)
{
    const QByteArrayList rarities = {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                                     "\r\n",     "\r",           "\xEF\xBB\xBF",
                                     "\xE2\x82", "\xFF",         QByteArray("\0", 1)};
    QByteArray bytes;
    while (bytes.size() < size) {
        bytes += QByteArray(random.bounded(random.bounded(4) ? 50 : 70000), 'a');
        bytes += rarities.at(random.bounded(rarities.size()));
    }
    return bytes;
}
} // namespace

void tst_TextPieces::copiesAreThoseOfTextStreams_data()
{
    QTest::addColumn<QByteArray>("bytes");
    Random random(20260103);
    const int pieceSize = 256 * 1024;

    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("one byte") << QByteArray("a");
    QTest::newRow("one CR") << QByteArray("\r");
    for (const char* mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF", "\xEF\xBB", "\xFF"})
        QTest::newRow(QByteArray("mark alone ").append(QByteArray(mark).toHex()).constData())
            << QByteArray(mark);
    QTest::newRow("UTF-32 mark, little end first")
        << QByteArray("\xFF\xFE\0\0a\0\0\0\r\0\0\0b\0\0\0", 16);
    QTest::newRow("UTF-32 mark, big end first") << QByteArray("\0\0\xFE\xFF\0\0\0a", 8);
    QTest::newRow("UTF-16 with line ends") << QByteArray("\xFF\xFE"
                                                         "a\0\r\0\n\0\xE9\0",
                                                         10);
    QTest::newRow("mark twice") << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF"
                                              "a");
    QTest::newRow("cut character at the end") << QByteArray("a\xE2\x82");
    QTest::newRow("several ASCII pieces") << QByteArray(3 * pieceSize + 17, 'a');
    QTest::newRow("mark at the start of the second piece")
        << QByteArray(pieceSize, 'a') + "\xEF\xBB\xBF" + QByteArray(pieceSize, 'b');
    // A character, a line end, and a broken character across the border between two pieces.
    for (const char* across : {"\xE2\x82\xAC", "\r\n", "\xF0\x9F\x98\x80",
                               "\xE2\x82"
                               "z",
                               "\xC3\xC3"})
        for (int before = 0; before <= 4; ++before)
            QTest::newRow(QByteArray(across)
                              .toHex()
                              .append(" across, ")
                              .append(QByteArray::number(before))
                              .constData())
                << QByteArray(pieceSize - before, 'a') + across + QByteArray(pieceSize + 5, 'b');
    for (int round = 0; round < 30; ++round) {
        const int size = random.bounded(5 * pieceSize);
        QTest::newRow(qPrintable(QStringLiteral("random bytes %1").arg(round)))
            << randomBytes(random, size, QByteArray());
        QTest::newRow(qPrintable(QStringLiteral("random ASCII %1").arg(round)))
            << randomBytes(random, size, "ab_.\r\n");
        QTest::newRow(qPrintable(QStringLiteral("random text %1").arg(round)))
            << randomUtf8(random, size);
        QTest::newRow(qPrintable(QStringLiteral("random UTF-16 %1").arg(round)))
            << "\xFF\xFE" +
                   randomBytes(random, random.bounded(70000), QByteArray("a\0\r\xD8\xDC", 5));
    }
}

void tst_TextPieces::copiesAreThoseOfTextStreams()
{
    QFETCH(QByteArray, bytes);
    write("in", bytes);
    QVERIFY(copyTextFile(at("in"), at("out")));
    const QByteArray copy = read("out");
    const QByteArray expected = throughStreams(bytes);
    QVERIFY2(
        copy == expected,
        qPrintable(QStringLiteral("%1 bytes instead of %2").arg(copy.size()).arg(expected.size())));

    QString text;
    QVERIFY(readTextFile(at("in"), &text) && writeTextFile(at("plain"), text));
    QVERIFY(read("plain") == expected);
}

void tst_TextPieces::aFileMayBeCopiedOntoItself()
{
    const QByteArray text = QByteArray("line\r\n").repeated(200000);
    write("file", text);
    QVERIFY(copyTextFile(at("file"), at("file")));
    QCOMPARE(read("file"), QByteArray(text).replace('\r', ""));
}

void tst_TextPieces::missingSourceLeavesTheTarget()
{
    write("out", "before");
    QVERIFY(!copyTextFile(at("none"), at("out")));
    QVERIFY(!copyTextFile(QString(), at("out")));
    QCOMPARE(read("out"), QByteArray("before"));
}

void tst_TextPieces::onlyRegularFilesAreRead_data()
{
    QTest::addColumn<QString>("kind");
    for (const char* kind :
         {"folder", "pipe", "link to a pipe", "device", "endless device", "dangling link"})
        QTest::newRow(kind) << kind;
}

void tst_TextPieces::onlyRegularFilesAreRead()
{
    QFETCH(QString, kind);
    QCOMPARE(::mkfifo(qPrintable(at("pipe")), 0600), 0);
    QVERIFY(QFile::link(at("pipe"), at("link")) && QFile::link(at("none"), at("dangling")));
    const QString path = kind == "folder"           ? scratch->path()
                         : kind == "pipe"           ? at("pipe")
                         : kind == "link to a pipe" ? at("link")
                         : kind == "device"         ? QStringLiteral("/dev/null")
                         : kind == "dangling link"  ? at("dangling")
                                                    : QStringLiteral("/dev/zero");
    write("out", "before");
    QVERIFY(!copyTextFile(path, at("out")));
    QCOMPARE(read("out"), QByteArray("before"));
    QString text;
    QVERIFY(!readTextFile(path, &text));
}

void tst_TextPieces::onlyRegularFilesAreReplaced_data()
{
    onlyRegularFilesAreRead_data();
}

void tst_TextPieces::onlyRegularFilesAreReplaced()
{
    QFETCH(QString, kind);
    if (kind == "dangling link")
        QSKIP("skipped: where a link leads to nothing, a new file is made");
    QVERIFY(QDir().mkpath(at("folder")));
    QCOMPARE(::mkfifo(qPrintable(at("pipe")), 0600), 0);
    QVERIFY(QFile::link(at("pipe"), at("link")));
    const QString path = kind == "folder"           ? at("folder")
                         : kind == "pipe"           ? at("pipe")
                         : kind == "link to a pipe" ? at("link")
                                                    : QStringLiteral("/dev/null");
    write("in", "text");
    QVERIFY(!copyTextFile(at("in"), path));
    QVERIFY(!replaceTextFile(path, QStringLiteral("text")));
    QVERIFY(!writeTextFile(path, QStringLiteral("text")));
    struct stat now;
    QCOMPARE(::stat(qPrintable(path), &now), 0);
    QVERIFY(!S_ISREG(now.st_mode));
}

void tst_TextPieces::aFullDiskLeavesTheTarget()
{
    write("in", QByteArray(1000000, 'x'));
    write("out", "before");
    {
        const FileSizeLimit limit(500000);
        QVERIFY(!copyTextFile(at("in"), at("out")));
        QVERIFY(!replaceTextFile(at("out"), QString(600000, 'y')));
    }
    QCOMPARE(read("out"), QByteArray("before"));
    QCOMPARE(QDir(scratch->path()).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void tst_TextPieces::aReadOnlyFileIsNotReplaced()
{
    if (::geteuid() == 0)
        QSKIP("skipped: root can write to every file");
    write("in", "text");
    write("out", "before");
    QVERIFY(QFile::setPermissions(at("out"), QFile::ReadOwner));
    QVERIFY(!copyTextFile(at("in"), at("out")));
    QCOMPARE(read("out"), QByteArray("before"));
}

void tst_TextPieces::aReadOnlyFolderIsNoObstacle()
{
    if (::geteuid() == 0)
        QSKIP("skipped: root can write to every folder");
    write("in", "text");
    QVERIFY(QDir().mkpath(at("folder")));
    write("folder/out", "before, and longer");
    QVERIFY(QFile::setPermissions(at("folder"), QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(copyTextFile(at("in"), at("folder/out")));
    QCOMPARE(read("folder/out"), QByteArray("text"));
    QFile::setPermissions(at("folder"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void tst_TextPieces::linksAreFollowed()
{
    write("in", "text");
    write("real", "before");
    QVERIFY(QFile::link(at("real"), at("link")));
    QVERIFY(copyTextFile(at("in"), at("link")));
    QCOMPARE(read("real"), QByteArray("text"));
    QVERIFY(QFileInfo(at("link")).isSymLink());
}

void tst_TextPieces::permissionsStay()
{
    write("in", "text");
    write("out", "before");
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QVERIFY(QFile::setPermissions(at("out"), permissions));
    QVERIFY(copyTextFile(at("in"), at("out")));
    const auto now = QFile::permissions(at("out"));
    QVERIFY(now.testFlag(QFile::ReadGroup) && !now.testFlag(QFile::ReadOther));
}

void tst_TextPieces::newFilesGetUsualPermissions()
{
    write("in", "text");
    QVERIFY(copyTextFile(at("in"), at("out")));
    QCOMPARE(QFile::permissions(at("out")), QFile::permissions(at("in")));
}

void tst_TextPieces::nothingIsLeftBeside()
{
    write("in", "text");
    QVERIFY(copyTextFile(at("in"), at("out")));
    QCOMPARE(QDir(scratch->path()).entryList(QDir::Files | QDir::Hidden),
             QStringList({"in", "out"}));
}

void tst_TextPieces::replacingByAText()
{
    write("out", "before, and longer");
    QVERIFY(replaceTextFile(at("out"), QString::fromUtf8("caf\xC3\xA9\r\n")));
    QCOMPARE(read("out"), QByteArray("caf\xC3\xA9\r\n"));
}

QTEST_GUILESS_MAIN(tst_TextPieces)
#include "tst_textpieces.moc"
