// getPdbCif against a server on loopback that plays both hosts.
#include "app/application.h"
#include "tests/support/applicationsandbox.h"
#include "tests/support/eachcasealone.h"
#include "tests/support/loopbackproxy.h"
#include "tests/support/webpages.h"
#include "widgets/webwidget.h"

#include <QApplication>
#include <QDir>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>
#include <QWebView>

namespace
{
const QByteArray pdb = "http://" VEXAWORD_PDB_HOST "/view/";
const QByteArray sas =
    "http://" VEXAWORD_WIDGET_HOST "/widgets/cifmol/getcif.php?type=sascif&artid=";
const QByteArray mmCif = "data_1ABC\n_entity.id 1\n";
const QString ok = QStringLiteral("OK");
const QString failed = QStringLiteral("Failed to retrieve mmCIF from PDB");
} // namespace

class tst_CifRetrieval : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void addresses_data();
    void addresses();
    void requestsCarryNothingOfOurOwn();
    void anMmCifIsStored();
    void theLastFolderIsLeftAlone();
    void aSasCifIsStored();
    void theFileItselfIsSavedAfterwards();
    void answersThatAreNoMmCif_data();
    void answersThatAreNoMmCif();
    void mmCifInWhateverAnswer_data();
    void mmCifInWhateverAnswer();
    void whatIsStored_data();
    void whatIsStored();
    void connectionRefused();
    void connectionReset();
    void anAnswerCutShortCountsByItsContent();
    void aSlowAnswerCountsWhenItIsComplete();
    void anAnswerThatNeverComesIsPendingForGood();
    void aHugeAnswerIsStored();
    void anUnwritableWorkingCopyTellsThePageNothing();
    void twoAtOnce_data();
    void twoAtOnce();
    void managersAccumulateAndRepliesGo();
    void anAnswerAfterQuitDoesNotCrash();
    void aPendingRetrievalDoesNotKeepTheProgram();
    void thePageMayQuitWhenItIsTold();

private:
    QStringList responses() const;
    QByteArray workingCopy() const { return sandbox::readFile(sandbox->local("tmpcif.cif")); }
    void putPreviousCif();
    bool previousCifIsUntouched() const;

    std::unique_ptr<ApplicationSandbox> sandbox;
    std::unique_ptr<LoopbackProxy> proxy;
    std::unique_ptr<Application> application;
    QString previous;
};

void tst_CifRetrieval::init()
{
    proxy = std::make_unique<LoopbackProxy>();
    sandbox = std::make_unique<ApplicationSandbox>();
    application = std::make_unique<Application>();
    QTRY_COMPARE(
        webpages::evaluate(*application->mainWindow->webView(), "typeof Quillet").toString(),
        QStringLiteral("object"));
}

void tst_CifRetrieval::cleanup()
{
    application.reset();
    sandbox.reset();
    proxy.reset();
}

QStringList tst_CifRetrieval::responses() const
{
    return webpages::evaluate(*application->mainWindow->webView(), "responses").toStringList();
}

void tst_CifRetrieval::putPreviousCif()
{
    previous = sandbox->inHome("previous.cif");
    QVERIFY(sandbox::writeFile(previous, "data_previous\n"));
    QCOMPARE(application->setCif(previous), previous);
}

bool tst_CifRetrieval::previousCifIsUntouched() const
{
    return workingCopy() == "data_previous\n" && application->userCifPath == previous &&
           application->workCifPath == sandbox->local("tmpcif.cif") &&
           application->lastCifFolder == previous;
}

void tst_CifRetrieval::addresses_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QByteArray>("url");
    QTest::newRow("SAS, digits") << "SAS1234" << sas + "SAS1234";
    QTest::newRow("SAS, mixed") << "SASA1B2" << sas + "SASA1B2";
    QTest::newRow("SAS, letters") << "SASABCD" << sas + "SASABCD";
    QTest::newRow("PDB, lower case") << "1abc" << pdb + "1abc.cif";
    QTest::newRow("PDB, upper case") << "1ABC" << pdb + "1ABC.cif";
    QTest::newRow("PDB, extended") << "pdb_00001abc" << pdb + "pdb_00001abc.cif";
    QTest::newRow("sas in lower case") << "sas1234" << pdb + "sas1234.cif";
    QTest::newRow("too short") << "SAS123" << pdb + "SAS123.cif";
    QTest::newRow("too long") << "SAS12345" << pdb + "SAS12345.cif";
    QTest::newRow("leading blank") << " SAS1234" << pdb + "%20SAS1234.cif";
    QTest::newRow("trailing blank") << "SAS1234 " << pdb + "SAS1234%20.cif";
    QTest::newRow("trailing line feed") << "SAS1234\n" << QByteArray(); // the URL itself is refused
    QTest::newRow("lower-case tail") << "SASabcd" << pdb + "SASabcd.cif";
    QTest::newRow("within other text") << "xSAS1234" << pdb + "xSAS1234.cif";
    QTest::newRow("empty") << "" << pdb + ".cif";
    QTest::newRow("slash and question mark") << "a/b?c" << pdb + "a/b?c.cif";
}

void tst_CifRetrieval::addresses()
{
    QFETCH(QString, identifier);
    QFETCH(QByteArray, url);
    application->getPdbCif(identifier);
    QTRY_COMPARE(responses(), QStringList({failed}));
    if (url.isEmpty())
        QVERIFY(proxy->heads.isEmpty() || !proxy->requestLines().at(0).contains(sas));
    else
        QCOMPARE(proxy->requestLines(), QList<QByteArray>({"GET " + url + " HTTP/1.1"}));
}

void tst_CifRetrieval::requestsCarryNothingOfOurOwn()
{
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(proxy->heads.size(), 1);
    QStringList names;
    const QList<QByteArray> lines = proxy->heads.at(0).trimmed().split('\n').mid(1);
    for (const QByteArray& line : lines)
        names << QString::fromLatin1(line.left(line.indexOf(':')));
    // All of these are the network library's own.
    const QStringList usual = {QStringLiteral("Proxy-Connection"),
                               QStringLiteral("Accept-Encoding"),
                               QStringLiteral("Accept-Language"),
                               QStringLiteral("User-Agent"),
                               QStringLiteral("Host"),
                               QStringLiteral("Connection")};
    for (const QString& name : names)
        QVERIFY2(usual.contains(name), qPrintable(name));
    QVERIFY(proxy->heads.at(0).contains("Host: " VEXAWORD_PDB_HOST "\r\n"));
}

void tst_CifRetrieval::anMmCifIsStored()
{
    putPreviousCif();
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(mmCif));
    application->getPdbCif(QStringLiteral("1abc"));
    QCOMPARE(responses(), QStringList()); // nothing before the answer has come
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(workingCopy(), mmCif);
    QCOMPARE(application->isMmCif, true);
    QCOMPARE(application->workCifPath, sandbox->local("tmpcif.cif"));
    QCOMPARE(application->userCifPath, sandbox->local("tmpcif.cif"));
}

void tst_CifRetrieval::theLastFolderIsLeftAlone()
{
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(mmCif));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(application->lastCifFolder, QString());
    putPreviousCif();
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok, ok}));
    QCOMPARE(application->lastCifFolder, previous);
}

void tst_CifRetrieval::aSasCifIsStored()
{
    const QByteArray cif = "data_SASDAB1_MAIN\n_sas_scan.id 1\n_entity.id 1\n";
    proxy->answer(sas + "SASDAB1", LoopbackProxy::page(cif));
    application->getPdbCif(QStringLiteral("SASDAB1"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(workingCopy(), cif);
}

void tst_CifRetrieval::theFileItselfIsSavedAfterwards()
{
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(mmCif));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QVERIFY(application->saveCif());
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifRetrieval::answersThatAreNoMmCif_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("header");
    const QByteArray none;
    QTest::newRow("empty") << none << QByteArray("200 OK") << none;
    QTest::newRow("error page") << QByteArray("<html><body>Not here</body></html>")
                                << QByteArray("404 Not Found") << none;
    QTest::newRow("error page with status 200")
        << QByteArray("<html><body>Sorry</body></html>") << QByteArray("200 OK") << none;
    QTest::newRow("server error") << none << QByteArray("500 Internal Server Error") << none;
    QTest::newRow("redirect") << none << QByteArray("302 Found")
                              << QByteArray("Location: http://elsewhere.example/x.cif\r\n");
    QTest::newRow("a CIF without a marker")
        << QByteArray("data_x\n_sas_scan.id 1\n") << QByteArray("200 OK") << none;
    QTest::newRow("marker behind a zero byte")
        << QByteArray("data_x\n\0_entity.id 1\n", 22) << QByteArray("200 OK") << none;
}

void tst_CifRetrieval::answersThatAreNoMmCif()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, header);
    putPreviousCif();
    application->isMmCif = true;
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(body, status, header));
    proxy->answer("http://elsewhere.example/x.cif", LoopbackProxy::page(mmCif));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({failed}));
    QVERIFY(previousCifIsUntouched());
    QCOMPARE(application->isMmCif, false);
    QCOMPARE(proxy->heads.size(), 1); // a redirect is not followed
}

void tst_CifRetrieval::mmCifInWhateverAnswer_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::newRow("200") << QByteArray("200 OK");
    QTest::newRow("404") << QByteArray("404 Not Found");
    QTest::newRow("500") << QByteArray("500 Internal Server Error");
    QTest::newRow("302") << QByteArray("302 Found");
}

void tst_CifRetrieval::mmCifInWhateverAnswer()
{
    QFETCH(QByteArray, status);
    proxy->answer(pdb + "1abc.cif",
                  LoopbackProxy::page(mmCif, status, "Content-Type: text/html\r\n"));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifRetrieval::whatIsStored_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("stored");
    QTest::newRow("up to a zero byte") << mmCif + QByteArray("\0_more.x 1\n", 11) << mmCif;
    QTest::newRow("a byte above 0x7F becomes two") << mmCif + "# caf\xE9 \x80\xFF\n"
                                                   << mmCif + "# caf\xC3\xA9 \xC2\x80\xC3\xBF\n";
    QTest::newRow("UTF-8 is encoded again") << mmCif + "# \xC3\xA9\n"
                                            << mmCif + "# \xC3\x83\xC2\xA9\n";
    QTest::newRow("a byte-order mark too")
        << "\xEF\xBB\xBF" + mmCif << "\xC3\xAF\xC2\xBB\xC2\xBF" + mmCif;
    QTest::newRow("line ends stay") << mmCif + "a\r\nb\rc" << mmCif + "a\r\nb\rc";
}

void tst_CifRetrieval::whatIsStored()
{
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, stored);
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(body));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(workingCopy(), stored);
}

void tst_CifRetrieval::connectionRefused()
{
    putPreviousCif();
    qputenv("http_proxy", "http://127.0.0.1:1");
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({failed}));
    QVERIFY(previousCifIsUntouched());
}

void tst_CifRetrieval::connectionReset()
{
    putPreviousCif();
    LoopbackProxy::Answer answer;
    answer.ending = LoopbackProxy::Ending::Reset;
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({failed}));
    QVERIFY(previousCifIsUntouched());
}

void tst_CifRetrieval::anAnswerCutShortCountsByItsContent()
{
    LoopbackProxy::Answer answer = LoopbackProxy::page(mmCif);
    answer.bytes.replace("Content-Length: ", "Content-Length: 1");
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(responses(), QStringList({ok}));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifRetrieval::aSlowAnswerCountsWhenItIsComplete()
{
    LoopbackProxy::Answer answer;
    answer.bytes = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\ndata_1ABC\n_enti";
    answer.ending = LoopbackProxy::Ending::KeepOpen;
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(proxy->heads.size(), 1);
    application->getPdbCif(QStringLiteral("none"));
    QTRY_COMPARE(responses(), QStringList({failed})); // of the second one
    proxy->finish(pdb + "1abc.cif", "ty.id 1\n");
    QTRY_COMPARE(responses(), QStringList({failed, ok}));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifRetrieval::anAnswerThatNeverComesIsPendingForGood()
{
    putPreviousCif();
    LoopbackProxy::Answer answer;
    answer.ending = LoopbackProxy::Ending::KeepOpen;
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(proxy->heads.size(), 1);
    application->getPdbCif(QStringLiteral("none"));
    QTRY_COMPARE(responses(), QStringList({failed})); // of the second one
    QVERIFY(previousCifIsUntouched());
    QCOMPARE(application->findChildren<QNetworkReply*>().size(), 1);
}

void tst_CifRetrieval::aHugeAnswerIsStored()
{
    const QByteArray body = mmCif + QByteArray(200000000, '#');
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(body));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE_WITH_TIMEOUT(responses(), QStringList({ok}), 60000);
    QCOMPARE(workingCopy().size(), body.size());
}

void tst_CifRetrieval::anUnwritableWorkingCopyTellsThePageNothing()
{
    QVERIFY(QDir().mkpath(sandbox->local("tmpcif.cif"))); // a folder where the file should be
    proxy->answer(pdb + "1abc.cif", LoopbackProxy::page(mmCif));
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_VERIFY(application->isMmCif);
    application->getPdbCif(QStringLiteral("none"));
    QTRY_COMPARE(responses(), QStringList({failed})); // of the second one only
    QCOMPARE(application->workCifPath, QString());
    QCOMPARE(application->userCifPath, QString());
}

void tst_CifRetrieval::twoAtOnce_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("last");
    QTest::newRow("answered in order") << QByteArray("1aaa") << QByteArray("2bbb");
    QTest::newRow("answered the other way round") << QByteArray("2bbb") << QByteArray("1aaa");
}

void tst_CifRetrieval::twoAtOnce()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, last);
    for (const QByteArray& identifier : {QByteArray("1aaa"), QByteArray("2bbb")}) {
        LoopbackProxy::Answer answer = LoopbackProxy::page(mmCif + "# " + identifier + "\n");
        answer.held = true;
        proxy->answer(pdb + identifier + ".cif", answer);
        application->getPdbCif(QString::fromLatin1(identifier));
    }
    QTRY_COMPARE(proxy->heads.size(), 2);
    proxy->release(pdb + first + ".cif");
    QTRY_COMPARE(responses(), QStringList({ok}));
    proxy->release(pdb + last + ".cif");
    QTRY_COMPARE(responses(), QStringList({ok, ok}));
    QCOMPARE(workingCopy(), mmCif + "# " + last + "\n");
}

void tst_CifRetrieval::managersAccumulateAndRepliesGo()
{
    for (int count = 1; count <= 3; ++count) {
        application->getPdbCif(QStringLiteral("none"));
        QTRY_COMPARE(responses().size(), count);
        QCOMPARE(
            application->findChildren<QNetworkAccessManager*>(QString(), Qt::FindDirectChildrenOnly)
                .size(),
            count);
    }
    QTRY_COMPARE(application->findChildren<QNetworkReply*>().size(), 0);
}

void tst_CifRetrieval::anAnswerAfterQuitDoesNotCrash()
{
    LoopbackProxy::Answer answer = LoopbackProxy::page(mmCif);
    answer.held = true;
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(proxy->heads.size(), 1);
    application->quit();
    proxy->release(pdb + "1abc.cif");
    QTRY_COMPARE(application->userCifPath, sandbox->local("tmpcif.cif"));
    QCOMPARE(workingCopy(), mmCif);
}

void tst_CifRetrieval::aPendingRetrievalDoesNotKeepTheProgram()
{
    LoopbackProxy::Answer answer;
    answer.ending = LoopbackProxy::Ending::KeepOpen; // never answers
    proxy->answer(pdb + "1abc.cif", answer);
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_COMPARE(proxy->heads.size(), 1);
    application->quit();
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_CifRetrieval::thePageMayQuitWhenItIsTold()
{
    webpages::evaluate(*application->mainWindow->webView(),
                       "pdbResponse = function () { Quillet.quit(); }");
    application->getPdbCif(QStringLiteral("1abc"));
    QTRY_VERIFY(!application->mainWindow);
}

VEXA_TEST_MAIN_EACH_CASE_ALONE(tst_CifRetrieval)
#include "tst_cifretrieval.moc"
