// What file managers take for a CIF, by the MIME types that the package brings.
#include <QFile>
#include <QMimeDatabase>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

class tst_mimetypes : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void type_data();
    void type();

private:
    QTemporaryDir data;
};

void tst_mimetypes::initTestCase()
{
    const QString mime = data.path() + QStringLiteral("/mime");
    QVERIFY(QDir().mkpath(mime + QStringLiteral("/packages")));
    QVERIFY(QFile::copy(QStringLiteral(VEXA_SOURCE_DIR "/packaging/linux/mime.xml"),
                        mime + QStringLiteral("/packages/vexaword.xml")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(data.path()));
    QCOMPARE(QProcess::execute(QStringLiteral("update-mime-database"), {mime}), 0);
}

void tst_mimetypes::type_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected");

    const QString cif = QStringLiteral("chemical/x-cif");
    const QString mmcif = QStringLiteral("chemical/x-mmcif");
    const QString text = QStringLiteral("text/plain");
    const QByteArray core = "# comment\ndata_I\n_cell_length_a 5.0\n";
    QTest::newRow("by its name") << "a.cif" << QByteArray("nothing of a CIF") << cif;
    QTest::newRow("by its name, in capitals") << "A.CIF" << QByteArray() << cif;
    QTest::newRow("macromolecule by its name") << "1abc.mmcif" << QByteArray() << mmcif;
    QTest::newRow("by its first line") << "download" << QByteArray("#\\#CIF_1.1\ndata_I\n") << cif;
    QTest::newRow("CIF 2.0 after a byte-order mark")
        << "download" << QByteArray("\xEF\xBB\xBF#\\#CIF_2.0\ndata_I\n") << cif;
    QTest::newRow("by its items") << "download" << core << cif;
    QTest::newRow("macromolecule by its items")
        << "download" << QByteArray("data_1ABC\n#\n_entry.id   1ABC\n") << mmcif;
    QTest::newRow("a text whose first word begins with data_")
        << "notes" << QByteArray("data_taking went well\n") << text;
    QTest::newRow("a text that speaks of a CIF") << "notes.txt" << core << text;
}

void tst_mimetypes::type()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);
    QCOMPARE(QMimeDatabase().mimeTypeForFileNameAndData(name, content).name(), expected);
}

QTEST_GUILESS_MAIN(tst_mimetypes)
#include "tst_mimetypes.moc"
