// cpDir, rmDir and the installation of the resources, on a real file system.
#include "app/resourcefolder.h"
#include "tests/support/filesizelimit.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
bool write(const QString& path, const QByteArray& content = "x")
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size();
}

// Everything below a folder, hidden entries too, as sorted relative paths; folders end in "/".
QStringList tree(const QString& folder)
{
    QStringList paths;
    QDirIterator entries(folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString path = QDir(folder).relativeFilePath(entries.next());
        paths << (entries.fileInfo().isDir() ? path + QLatin1Char('/') : path);
    }
    paths.sort();
    return paths;
}
} // namespace

class tst_ResourceFolder : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void copyTakesFoldersAndFiles();
    void copyLeavesHiddenEntries();
    void copyIntoAnExistingFolderFails();
    void copyWithoutAParentFails();
    void copyOfNothingMakesAnEmptyFolder();
    void copyPassesOverWhatIsNeitherFolderNorFile();
    void copyStopsAtAFileThatCannotBeCopied();
    void removeTakesEverything();
    void removeOfNothingSucceeds();
    void removeStopsAtHiddenEntries();

    void firstStartInstallsBoth();
    void secondStartChangesNothing();
    void aCopyWithoutItsMarkerIsNotMended();
    void aMissingWordScriptIsCopiedAgain();
    void aMissingSourceGivesBothErrors();
    void aHomeThatCannotBeWrittenGivesBothErrors();
    void oldVersionsStay();

private:
    QString at(const QString& path) const { return scratch->filePath(path); }
    InstalledResources install() const { return installResources(at("home"), at("app")); }
    void stageApplication() const;

    std::unique_ptr<QTemporaryDir> scratch;
    QString library; // of the user
};

void tst_ResourceFolder::init()
{
    scratch = std::make_unique<QTemporaryDir>();
    library = at(QStringLiteral("home/Library"));
    QVERIFY(QDir().mkpath(at(QStringLiteral("home"))));
}

void tst_ResourceFolder::copyTakesFoldersAndFiles()
{
    QVERIFY(write(at("src/a.txt"), "alpha") && write(at("src/sub/deeper/b.txt"), "beta"));
    QVERIFY(QDir().mkpath(at("src/empty")));
    QVERIFY(cpDir(at("src"), at("dst")));
    QCOMPARE(tree(at("dst")), tree(at("src")));
    QFile copied(at("dst/sub/deeper/b.txt"));
    QVERIFY(copied.open(QIODevice::ReadOnly));
    QCOMPARE(copied.readAll(), QByteArray("beta"));
}

void tst_ResourceFolder::copyLeavesHiddenEntries()
{
    QVERIFY(write(at("src/a")) && write(at("src/.hidden")) && write(at("src/.folder/b")));
    QVERIFY(cpDir(at("src"), at("dst")));
    QCOMPARE(tree(at("dst")), QStringList({QStringLiteral("a")}));
}

void tst_ResourceFolder::copyIntoAnExistingFolderFails()
{
    QVERIFY(write(at("src/a")) && QDir().mkpath(at("dst")));
    QVERIFY(!cpDir(at("src"), at("dst")));
    QCOMPARE(tree(at("dst")), QStringList());
}

void tst_ResourceFolder::copyWithoutAParentFails()
{
    QVERIFY(write(at("src/a")));
    QVERIFY(!cpDir(at("src"), at("none/dst")));
    QVERIFY(!QFileInfo::exists(at("none")));
}

void tst_ResourceFolder::copyOfNothingMakesAnEmptyFolder()
{
    QVERIFY(cpDir(at("none"), at("dst")));
    QVERIFY(QFileInfo(at("dst")).isDir());
}

void tst_ResourceFolder::copyPassesOverWhatIsNeitherFolderNorFile()
{
    QVERIFY(write(at("src/a")));
    const QString pipe = at("pipe");
    QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
    // A pipe itself is not even listed; a link to one is.
    QCOMPARE(::symlink(qPrintable(pipe), qPrintable(at("src/link"))), 0);
    const QByteArray message = "Unhandled item \"" + at("src/link").toUtf8() + "\" in cpDir ";
    QTest::ignoreMessage(QtDebugMsg, message.constData());
    QVERIFY(cpDir(at("src"), at("dst")));
    QCOMPARE(tree(at("dst")), QStringList({QStringLiteral("a")}));
}

void tst_ResourceFolder::copyStopsAtAFileThatCannotBeCopied()
{
    // No file may grow beyond a limit, which holds for root too.
    for (int i = 0; i < 8; ++i)
        QVERIFY(write(at(QStringLiteral("src/small%1").arg(i))));
    QVERIFY(write(at("src/large"), QByteArray(100000, 'x')));
    const FileSizeLimit limit(50000);
    QVERIFY(!cpDir(at("src"), at("dst")));

    const QStringList listed =
        QDir(at("src")).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::NoSort);
    QStringList expected = listed.mid(0, listed.indexOf(QStringLiteral("large")));
    expected.sort();
    QCOMPARE(tree(at("dst")), expected);
}

void tst_ResourceFolder::removeTakesEverything()
{
    QVERIFY(write(at("old/a")) && write(at("old/sub/b")) && QDir().mkpath(at("old/empty")));
    QVERIFY(rmDir(at("old")));
    QVERIFY(!QFileInfo::exists(at("old")));
}

void tst_ResourceFolder::removeOfNothingSucceeds()
{
    QVERIFY(rmDir(at("none")));
}

void tst_ResourceFolder::removeStopsAtHiddenEntries()
{
    QVERIFY(write(at("old/a")) && write(at("old/.hidden")));
    QVERIFY(!rmDir(at("old")));
    QCOMPARE(tree(at("old")), QStringList({QStringLiteral(".hidden")}));
}

void tst_ResourceFolder::stageApplication() const
{
    QVERIFY(
        write(at("app/resources/macscrlaunch")) && write(at("app/resources/Vexa.scpt"), "script") &&
        write(at("app/resources/webwidgets/templates.html")) && write(at("app/resources/.secret")));
}

void tst_ResourceFolder::firstStartInstallsBoth()
{
    stageApplication();
    const InstalledResources installed = install();
    const QString folder = library + QStringLiteral("/Application Support/VexaWord/resources201");
    const QString script =
        library + QStringLiteral("/Application Scripts/com.microsoft.Word/Vexa.scpt");
    QCOMPARE(installed.folder, folder);
    QCOMPARE(installed.report,
             QStringLiteral("OK: created  local resources folder: ") + folder +
                 QStringLiteral("<br />OK: created local Word2016 AppleScript resources: ") +
                 script);
    QCOMPARE(tree(library),
             QStringList({QStringLiteral("Application Scripts/"),
                          QStringLiteral("Application Scripts/com.microsoft.Word/"),
                          QStringLiteral("Application Scripts/com.microsoft.Word/Vexa.scpt"),
                          QStringLiteral("Application Support/"),
                          QStringLiteral("Application Support/VexaWord/"),
                          QStringLiteral("Application Support/VexaWord/resources201/"),
                          QStringLiteral("Application Support/VexaWord/resources201/Vexa.scpt"),
                          QStringLiteral("Application Support/VexaWord/resources201/macscrlaunch"),
                          QStringLiteral("Application Support/VexaWord/resources201/webwidgets/"),
                          QStringLiteral("Application Support/VexaWord/resources201/webwidgets/"
                                         "templates.html")}));
}

void tst_ResourceFolder::secondStartChangesNothing()
{
    stageApplication();
    const InstalledResources first = install();
    QVERIFY(write(first.folder + "/macscrlaunch", "in use"));
    const QStringList before = tree(library);
    QVERIFY(write(at("app/resources/new")));
    const InstalledResources second = install();
    QCOMPARE(second.report, QString());
    QCOMPARE(second.folder, first.folder);
    QCOMPARE(tree(library), before);
    QFile marker(first.folder + "/macscrlaunch");
    QVERIFY(marker.open(QIODevice::ReadOnly));
    QCOMPARE(marker.readAll(), QByteArray("in use"));
}

void tst_ResourceFolder::aCopyWithoutItsMarkerIsNotMended()
{
    stageApplication();
    const InstalledResources first = install();
    QVERIFY(QFile::remove(first.folder + "/macscrlaunch"));
    const QStringList before = tree(library);
    for (int start = 0; start < 2; ++start)
        QCOMPARE(install().report,
                 QStringLiteral("ERROR: unable to create local resources folder: ") + first.folder);
    QCOMPARE(tree(library), before);
}

void tst_ResourceFolder::aMissingWordScriptIsCopiedAgain()
{
    stageApplication();
    install();
    const QString script =
        library + QStringLiteral("/Application Scripts/com.microsoft.Word/Vexa.scpt");
    QVERIFY(QFile::remove(script));
    QCOMPARE(install().report,
             QStringLiteral("<br />OK: created local Word2016 AppleScript resources: ") + script);
    QVERIFY(QFile::exists(script));
}

void tst_ResourceFolder::aMissingSourceGivesBothErrors()
{
    const InstalledResources installed = install();
    QCOMPARE(
        installed.report,
        QStringLiteral("ERROR: unable to create local resources folder: ") + installed.folder +
            QStringLiteral("<br />ERROR: unable to create local Word2016 AppleScript resources: ") +
            library + QStringLiteral("/Application Scripts/com.microsoft.Word/Vexa.scpt"));
}

void tst_ResourceFolder::aHomeThatCannotBeWrittenGivesBothErrors()
{
    stageApplication();
    QVERIFY(QDir(at("home")).removeRecursively());
    QVERIFY(write(at("home"), "a file where the home folder should be"));
    const InstalledResources installed = install();
    QCOMPARE(installed.report.count(QStringLiteral("ERROR: unable to create")), 2);
    QCOMPARE(installed.folder,
             library + QStringLiteral("/Application Support/VexaWord/resources201"));
}

void tst_ResourceFolder::oldVersionsStay()
{
    stageApplication();
    const QString old = library + QStringLiteral("/Application Support/VexaWord/resources200");
    QVERIFY(write(old + "/macscrlaunch"));
    QVERIFY(install().report.startsWith(QStringLiteral("OK: created  local")));
    QVERIFY(QFile::exists(old + "/macscrlaunch"));
}

QTEST_GUILESS_MAIN(tst_ResourceFolder)
#include "tst_resourcefolder.moc"
