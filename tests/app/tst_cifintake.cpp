// setCif and saveCif: results, state and files, with the real open dialog.
#include "app/application.h"
#include "tests/support/applicationsandbox.h"
#include "tests/support/eachcasealone.h"
#include "tests/support/webpages.h"
#include "widgets/webwidget.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <QWebView>

namespace
{
const QByteArray smallMolecule = "data_I\n_cell_length_a 5.0(1)\n";
const QByteArray mmCif = "data_1ABC\n# \n_CELL.Entry_ID 1ABC\n";

// What the open dialog showed, and how it is answered.
struct DialogAnswer {
    explicit DialogAnswer(const QString& answer = QString()) : path(answer)
    {
        QObject::connect(&poll, &QTimer::timeout, [this] { tryAnswer(); });
        poll.start(20);
    }
    void tryAnswer()
    {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        poll.stop();
        ++shown;
        caption = dialog->windowTitle();
        folder = dialog->directory().path();
        filters = dialog->nameFilters();
        parent = dialog->parentWidget();
        auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        proposed = name->text();
        if (path.isEmpty()) {
            dialog->reject();
            return;
        }
        name->setText(path);
        QTest::keyClick(name, Qt::Key_Return);
    }

    QString path; // empty: cancel
    QTimer poll;
    int shown = 0;
    QString caption, folder, proposed;
    QStringList filters;
    QWidget* parent = nullptr;
};
} // namespace

class tst_CifIntake : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void aPlainCifGivesItsPath();
    void anMmCifGivesThePrefix();
    void blanksAroundThePathAreDropped();
    void anyExtensionIsTaken();
    void anEmptyPathAsksTheUser_data();
    void anEmptyPathAsksTheUser();
    void theNextDialogOpensOnTheLastFile();
    void cancellingTheDialog();
    void aFileThatCannotBeOpened_data();
    void aFileThatCannotBeOpened();
    void aResourcesFolderThatCannotBeWritten();
    void theSecondSelectionReplacesTheFirst();
    void theWorkingCopyHoldsTheText_data();
    void theWorkingCopyHoldsTheText();
    void savingWritesTheWorkingCopyBack();
    void savingBeforeAnyCif();
    void savingAfterACancelledDialog();
    void savingAfterAFileThatCouldNotBeOpened();
    void savingWithoutTheWorkingCopy();
    void savingWhereNothingCanBeWritten();
    void thePageGetsTheResults();
    void realFiles();

private:
    QString cif(const QString& name, const QByteArray& content) const;
    QByteArray workingCopy() const { return sandbox::readFile(sandbox->local("tmpcif.cif")); }

    std::unique_ptr<ApplicationSandbox> sandbox;
    std::unique_ptr<Application> application;
};

void tst_CifIntake::init()
{
    sandbox = std::make_unique<ApplicationSandbox>();
    application = std::make_unique<Application>();
}

void tst_CifIntake::cleanup()
{
    application.reset();
    sandbox.reset();
}

QString tst_CifIntake::cif(const QString& name, const QByteArray& content) const
{
    const QString path = sandbox->inHome(name);
    return sandbox::writeFile(path, content) ? path : QString();
}

void tst_CifIntake::aPlainCifGivesItsPath()
{
    const QString path = cif("one.cif", smallMolecule);
    QCOMPARE(application->setCif(path), path);
    QCOMPARE(application->userCifPath, path);
    QCOMPARE(application->lastCifFolder, path);
    QCOMPARE(application->isMmCif, false);
    QCOMPARE(application->workCifPath, sandbox->local("tmpcif.cif"));
    QCOMPARE(workingCopy(), smallMolecule);
}

void tst_CifIntake::anMmCifGivesThePrefix()
{
    const QString path = cif("one.cif", mmCif);
    QCOMPARE(application->setCif(path), QStringLiteral("mmCIF: ") + path);
    QCOMPARE(application->userCifPath, path);
    QCOMPARE(application->isMmCif, true);
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifIntake::blanksAroundThePathAreDropped()
{
    const QString path = cif("a name with blanks.cif", mmCif);
    QCOMPARE(application->setCif(QStringLiteral(" \t") + path + QStringLiteral("\n ")),
             QStringLiteral("mmCIF: ") + path);
    QCOMPARE(application->userCifPath, path);
}

void tst_CifIntake::anyExtensionIsTaken()
{
    const QString path = cif("data.txt", smallMolecule);
    QCOMPARE(application->setCif(path), path);
}

void tst_CifIntake::anEmptyPathAsksTheUser_data()
{
    QTest::addColumn<QString>("argument");
    QTest::newRow("empty") << "";
    QTest::newRow("blanks") << "  \t ";
}

void tst_CifIntake::anEmptyPathAsksTheUser()
{
    QFETCH(QString, argument);
    const QString path = cif("one.cif", mmCif);
    DialogAnswer dialog(path);
    QCOMPARE(application->setCif(argument), QStringLiteral("mmCIF: ") + path);
    QCOMPARE(dialog.shown, 1);
    QCOMPARE(dialog.caption, QStringLiteral("Quillet"));
    QCOMPARE(dialog.folder, sandbox->home()); // no CIF so far
    QCOMPARE(dialog.filters, QStringList({QStringLiteral("CIF files (*.cif)")}));
    QVERIFY(!dialog.parent);
}

void tst_CifIntake::theNextDialogOpensOnTheLastFile()
{
    const QString path = cif("some folder/one.cif", smallMolecule);
    QCOMPARE(application->setCif(path), path);
    DialogAnswer dialog;
    QCOMPARE(application->setCif(QString()), QString());
    QCOMPARE(dialog.folder, sandbox->inHome("some folder"));
    QCOMPARE(dialog.proposed, QStringLiteral("one.cif"));
}

void tst_CifIntake::cancellingTheDialog()
{
    const QString path = cif("one.cif", mmCif);
    application->setCif(path);
    DialogAnswer dialog;
    QCOMPARE(application->setCif(QString()), QString());
    QCOMPARE(application->userCifPath, QString());
    QCOMPARE(application->lastCifFolder, path);
    QCOMPARE(application->isMmCif, true);
    QCOMPARE(application->workCifPath, sandbox->local("tmpcif.cif"));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifIntake::aFileThatCannotBeOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << "none.cif";
    QTest::newRow("missing folder") << "none/none.cif";
    QTest::newRow("a folder") << "folder";
}

void tst_CifIntake::aFileThatCannotBeOpened()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkpath(sandbox->inHome("folder")));
    const QString good = cif("one.cif", mmCif);
    application->setCif(good);
    const QString bad = sandbox->inHome(name);
    QCOMPARE(application->setCif(bad), QString());
    QCOMPARE(application->userCifPath, bad);
    QCOMPARE(application->lastCifFolder, good);
    QCOMPARE(application->isMmCif, true);
    QCOMPARE(application->workCifPath, sandbox->local("tmpcif.cif"));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifIntake::aResourcesFolderThatCannotBeWritten()
{
    const QString path = cif("one.cif", mmCif);
    QVERIFY(QDir().mkpath(sandbox->local("tmpcif.cif"))); // a folder where the file should be
    QCOMPARE(application->setCif(path), QString());
    QCOMPARE(application->isMmCif, false);
    QCOMPARE(application->userCifPath, path);
    QCOMPARE(application->lastCifFolder, path);
    QCOMPARE(application->workCifPath, QString());
}

void tst_CifIntake::theSecondSelectionReplacesTheFirst()
{
    const QString second = cif("two.cif", smallMolecule);
    application->setCif(cif("one.cif", mmCif + QByteArray(100000, '#')));
    QCOMPARE(application->setCif(second), second);
    QCOMPARE(workingCopy(), smallMolecule);
    QCOMPARE(application->isMmCif, false);
}

void tst_CifIntake::theWorkingCopyHoldsTheText_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("copy");
    QTest::newRow("empty") << QByteArray("") << QByteArray("");
    QTest::newRow("UTF-8") << QByteArray("# caf\xC3\xA9\n") << QByteArray("# caf\xC3\xA9\n");
    QTest::newRow("line ends") << QByteArray("a\r\nb\n") << QByteArray("a\nb\n");
    QTest::newRow("no last line end") << QByteArray("a") << QByteArray("a");
    QTest::newRow("zero byte") << QByteArray("a\0b", 3) << QByteArray("a\0b", 3);
    QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF#\n") << QByteArray("#\n");
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFE#\0\n\0", 6) << QByteArray("#\n");
    QTest::newRow("byte that is not UTF-8") << QByteArray("\xE9.") << QByteArray("\xEF\xBF\xBD.");
}

void tst_CifIntake::theWorkingCopyHoldsTheText()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, copy);
    const QString path = cif("one.cif", file);
    QCOMPARE(application->setCif(path), path);
    QCOMPARE(workingCopy(), copy);
}

void tst_CifIntake::savingWritesTheWorkingCopyBack()
{
    const QString path = cif("one.cif", smallMolecule);
    application->setCif(path);
    QVERIFY(sandbox::writeFile(application->workCifPath, "edited \xC3\xA9\n"));
    QVERIFY(application->saveCif());
    QCOMPARE(sandbox::readFile(path), QByteArray("edited \xC3\xA9\n"));
    QVERIFY(QFile::remove(path));
    QVERIFY(application->saveCif()); // made anew
    QCOMPARE(sandbox::readFile(path), QByteArray("edited \xC3\xA9\n"));
    QCOMPARE(application->userCifPath, path);
    QCOMPARE(application->lastCifFolder, path);
}

void tst_CifIntake::savingBeforeAnyCif()
{
    QVERIFY(!application->saveCif());
}

void tst_CifIntake::savingAfterACancelledDialog()
{
    const QString path = cif("one.cif", smallMolecule);
    application->setCif(path);
    DialogAnswer dialog;
    application->setCif(QString());
    QVERIFY(!application->saveCif());
    QCOMPARE(sandbox::readFile(path), smallMolecule);
}

void tst_CifIntake::savingAfterAFileThatCouldNotBeOpened()
{
    application->setCif(cif("one.cif", smallMolecule));
    const QString missing = sandbox->inHome("missing.cif");
    QCOMPARE(application->setCif(missing), QString());
    QVERIFY(application->saveCif());
    QCOMPARE(sandbox::readFile(missing), smallMolecule);
}

void tst_CifIntake::savingWithoutTheWorkingCopy()
{
    const QString path = cif("one.cif", smallMolecule);
    application->setCif(path);
    QVERIFY(QFile::remove(application->workCifPath));
    QVERIFY(!application->saveCif());
    QCOMPARE(sandbox::readFile(path), smallMolecule);
}

void tst_CifIntake::savingWhereNothingCanBeWritten()
{
    const QString path = cif("folder/one.cif", smallMolecule);
    application->setCif(path);
    QVERIFY(QDir(sandbox->inHome("folder")).removeRecursively());
    QVERIFY(!application->saveCif());
    QVERIFY(!QFile::exists(sandbox->inHome("folder")));
}

void tst_CifIntake::thePageGetsTheResults()
{
    const QString path = cif(QString::fromUtf8("M\xC3\xBCller's \"one\".cif"), mmCif);
    QWebView& view = *application->mainWindow->webView();
    QTRY_COMPARE(webpages::evaluate(view, "typeof Quillet").toString(), QStringLiteral("object"));
    const QString quoted = QString(path).replace(QLatin1Char('\''), QStringLiteral("\\'"));
    QCOMPARE(
        webpages::evaluate(view, QStringLiteral("Quillet.setCif('%1')").arg(quoted)).toString(),
        QStringLiteral("mmCIF: ") + path);
    QCOMPARE(webpages::evaluate(view, "Quillet.saveCif()"), QVariant(true));
    QCOMPARE(webpages::evaluate(view, "Quillet.setCif('/no/such/file') === ''"), QVariant(true));
    QCOMPARE(webpages::evaluate(view, "Quillet.saveCif()"), QVariant(false));
}

void tst_CifIntake::realFiles()
{
    const QDir collection(qEnvironmentVariable("VEXA_CIF_COLLECTION"));
    if (!collection.exists(QStringLiteral("MANIFEST.md")))
        QSKIP("skipped: no CIF collection here");
    const QString macromolecule = collection.filePath(QStringLiteral("mx-xray/5i55.cif"));
    QCOMPARE(application->setCif(macromolecule), QStringLiteral("mmCIF: ") + macromolecule);
    QCOMPARE(workingCopy(), sandbox::readFile(macromolecule));
    const QString named =
        collection.filePath(QString::fromUtf8("small-molecule/Carb\xC3\xB3_2002_p305_crude.cif"));
    QCOMPARE(application->setCif(named), named);
    QVERIFY(!workingCopy().isEmpty());
}

VEXA_TEST_MAIN_EACH_CASE_ALONE(tst_CifIntake)
#include "tst_cifintake.moc"
