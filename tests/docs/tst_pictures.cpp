// The documents' pictures of the window, taken from the built program. In VEXA_PICTURES_FOLDER,
// if that is set (tools/take-pictures sets it); else they are only compared in size with those that
// are there.
#include "tests/endtoend/programrun.h"
#include "tests/support/realinput.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QTest>

namespace
{

QByteArray example(const char* name)
{
    return sandbox::readFile(QStringLiteral(VEXA_SOURCE_DIR "/examples/") + QLatin1String(name));
}

// Functions for the scripts below, and whatever moves is at rest.
const char* const helpers =
    "var still = document.createElement('style');"
    "still.textContent = '* { -webkit-animation: none !important; -webkit-transition: none "
    "!important; }';"
    "document.head.appendChild(still);"
    "function control(id) { return document.getElementById(id); }"
    "function choose(id, value) { var change = document.createEvent('Event');"
    " control(id).value = value; change.initEvent('change', true, true);"
    " control(id).dispatchEvent(change); }"
    // The open dialog is the one thing that a script cannot work.
    "function chooseCif(path) { Vexa.bridge.chooseCif = function () {"
    " return Vexa.rules.readSetCifAnswer(Quillet.setCif(path)); }; control('choose-cif').click(); }"
    "function fetchCif(code) { control('identifier').value = code; control('fetch-cif').click(); }"
    "function when(condition, action) { var waiting = setInterval(function () {"
    " if (condition()) { clearInterval(waiting); action(); } }, 50); }"
    "function done() { document.activeElement.blur(); report('done'); }"
    "when(function () { return Vexa.state.connected; }, function () {"
    " control('setup-dismiss').click(); %1 });";

} // namespace

class tst_Pictures : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void windowShows_data();
    void windowShows();

private:
    static bool waitUntilStill(int window, QImage& picture);
};

// The pointer hovers over nothing.
void tst_Pictures::initTestCase()
{
    QVERIFY(realinput::moveTo(QPoint(0, 0)));
}

// Takes pictures, its shadow being half transparent, until one has not changed for a while.
bool tst_Pictures::waitUntilStill(int window, QImage& picture)
{
    constexpr int aWhile = 700;
    QElapsedTimer unchanged;
    unchanged.start();
    return QTest::qWaitFor(
        [&] {
            const QImage next = QGuiApplication::primaryScreen()
                                    ->grabWindow(static_cast<WId>(window))
                                    .toImage()
                                    .convertToFormat(QImage::Format_ARGB32);
            if (next != picture) {
                picture = next;
                unchanged.restart();
            }
            return unchanged.hasExpired(aWhile);
        },
        20000);
}

void tst_Pictures::windowShows_data()
{
    QTest::addColumn<QString>("script");

    const char* const disk = "chooseCif('FILE'); choose('journal', 'Journal Section C');"
                             "choose('category', 'research papers'); done();";
    QTest::newRow("window-ready") << disk;
    QTest::newRow("window-details")
        << "fetchCif('0VEX'); when(function () { return Vexa.state.structure &&"
           " Vexa.state.structure.summary; }, function () {"
           " choose('journal', 'Journal Section D'); choose('category', 'research papers');"
           " control('structure-details').click(); done(); });";
    QTest::newRow("guide-start") << "done();";
    QTest::newRow("guide-disk") << disk;
    QTest::newRow("guide-pdb")
        << "fetchCif('0VEX'); when(function () { return Vexa.state.structure; },"
           " function () { choose('journal', 'Journal Section D');"
           " choose('category', 'research papers'); done(); });";
    QTest::newRow("guide-scattering")
        << "fetchCif('SASDVX1'); when(function () { return Vexa.state.structure; },"
           " function () { choose('journal', 'Journal Section D');"
           " choose('category', 'research papers');"
           " if (!control('sas').checked) control('sas').click(); done(); });";
}

void tst_Pictures::windowShows()
{
    QFETCH(QString, script);
    ProgramRun run;
    const QString file = run.inHome(QStringLiteral("Structures/methoxyacetamide.cif"));
    QVERIFY(sandbox::writeFile(file, example("small_molecule.cif")));
    run.net.answer("http://" VEXAWORD_PDB_HOST "/view/0VEX.cif",
                   LoopbackProxy::page(example("macromolecule.cif")));
    run.net.answer("http://" VEXAWORD_WIDGET_HOST
                   "/widgets/cifmol/getcif.php?type=sascif&artid=SASDVX1",
                   LoopbackProxy::page(example("scattering.cif")));
    run.addToShippedPages(
        QString::fromLatin1(helpers).arg(script.replace(QLatin1String("FILE"), file)));

    const bool isLarge = qstrncmp(QTest::currentDataTag(), "window", 6) == 0;
    qputenv("QT_SCALE_FACTOR", isLarge ? "2" : "1");
    QVERIFY(run.start());
    const int window = run.waitForWindow();
    QVERIFY(window);
    QVERIFY(run.waitForReports(1));
    QImage picture;
    QVERIFY(waitUntilStill(window, picture));

    const QString name = QString::fromLatin1(QTest::currentDataTag()) + QStringLiteral(".png");
    const QString folder = qEnvironmentVariable("VEXA_PICTURES_FOLDER");
    if (folder.isEmpty())
        QCOMPARE(picture.size(),
                 QImage(QStringLiteral(VEXA_SOURCE_DIR "/docs/pictures/") + name).size());
    else
        QVERIFY(picture.save(QDir(folder).filePath(name)));
}

QTEST_MAIN(tst_Pictures)
#include "tst_pictures.moc"
