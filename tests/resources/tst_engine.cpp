// The web engine has what the page needs: engine.html, opened as the program opens its page.
#include "app/pagememory.h"

#include <QNetworkAccessManager>
#include <QTemporaryDir>
#include <QtTest>
#include <QWebFrame>
#include <QWebPage>

class TestEngine : public QObject
{
    Q_OBJECT

private slots:
    void hasWhatThePageNeeds();
};

void TestEngine::hasWhatThePageNeeds()
{
    QTemporaryDir folder;
    QWebPage page;
    page.networkAccessManager()->setCookieJar(new pageMemory(folder.filePath("memory")));
    page.setViewportSize(QSize(480, 400));
    page.mainFrame()->load(QUrl::fromLocalFile(VEXA_SOURCE_DIR "/tests/resources/engine.html"));
    const auto results = [&page] {
        return page.mainFrame()->evaluateJavaScript("window.engineResults").toMap();
    };
    QTRY_VERIFY_WITH_TIMEOUT(!results().isEmpty(), 10000);
    const QVariantMap found = results();
    QCOMPARE(found.size(), 19);
    QStringList missing;
    for (auto feature = found.begin(); feature != found.end(); ++feature) {
        if (feature.value() != QVariant(true))
            missing << feature.key();
    }
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join("; ")));
}

QTEST_MAIN(TestEngine)
#include "tst_engine.moc"
