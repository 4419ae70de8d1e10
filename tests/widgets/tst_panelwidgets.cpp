// geomWebWidget and exptlWebWidget: titles, flags, filled templates.
#include "tests/support/realinput.h"
#include "tests/support/webpages.h"
#include "widgets/panelwidgets.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QWebPage>
#include <QWebView>

#include <memory>

class tst_PanelWidgets : public QObject
{
    Q_OBJECT

private slots:
    void init() { scratch = std::make_unique<QTemporaryDir>(); }

    void classesAddNothing();
    void titlesAndFlags();
    void optionsAreTheWindows();
    void aPanelDoesNotStayOnTop();
    void markersAreReplaced_data();
    void markersAreReplaced();
    void theAddressBeginsWithFourSlashes();
    void aMissingTemplateLeavesThePage();
    void anUnwritableTargetShowsTheOldCopy();
    void anUnwritableTargetWithoutAnOldCopy();
    void anotherFillReplacesTheFirst();
    void anyAddressCanBeLoaded();
    void thePageReachesThePanel();

private:
    QString at(const QString& name) const { return scratch->filePath(name); }
    void write(const QString& name, const QByteArray& content) const;
    QByteArray read(const QString& name) const;
    // What the panel shows after loadhtml; "nothing loaded" if it loads nothing.
    static QString shownAfter(panelWidget& panel, const QString& fragment, const QString& base);

    std::unique_ptr<QTemporaryDir> scratch;
};

void tst_PanelWidgets::write(const QString& name, const QByteArray& content) const
{
    QFile file(at(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

QByteArray tst_PanelWidgets::read(const QString& name) const
{
    QFile file(at(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

QString tst_PanelWidgets::shownAfter(panelWidget& panel, const QString& fragment,
                                     const QString& base)
{
    QSignalSpy started(panel.webView()->page(), SIGNAL(loadStarted()));
    QSignalSpy finished(panel.webView()->page(), SIGNAL(loadFinished(bool)));
    panel.loadhtml(fragment, base);
    if (started.isEmpty())
        return QStringLiteral("nothing loaded");
    if (finished.isEmpty() && !finished.wait())
        return QStringLiteral("load does not end");
    return webpages::evaluate(*panel.webView(), "document.body.textContent").toString().trimmed();
}

void tst_PanelWidgets::classesAddNothing()
{
    for (const QMetaObject* meta :
         {&geomWebWidget::staticMetaObject, &exptlWebWidget::staticMetaObject}) {
        QCOMPARE(meta->methodCount(), webWidget::staticMetaObject.methodCount());
        QCOMPARE(meta->propertyCount(), webWidget::staticMetaObject.propertyCount());
        QVERIFY(meta->inherits(&webWidget::staticMetaObject));
    }
}

void tst_PanelWidgets::titlesAndFlags()
{
    geomWebWidget geometry(QString(), nullptr);
    QCOMPARE(geometry.windowTitle(), QStringLiteral("Geometry selection"));
    QCOMPARE(geometry.windowFlags(), Qt::Window | Qt::FramelessWindowHint);
    exptlWebWidget details(QString(), nullptr);
    QCOMPARE(details.windowTitle(), QStringLiteral("Experimental details"));
    QCOMPARE(details.windowFlags(), Qt::Window | Qt::FramelessWindowHint);
}

void tst_PanelWidgets::optionsAreTheWindows()
{
    QWidget parent;
    auto* panel = new geomWebWidget(QStringLiteral("infobutton"), &parent);
    QCOMPARE(panel->parentWidget(), &parent);
    QSignalSpy asked(panel, SIGNAL(infoRequested()));
    for (QWidget* child : panel->findChildren<QWidget*>())
        if (child->toolTip() == QLatin1String("Help") && !child->isHidden())
            QTest::mouseRelease(child, Qt::LeftButton);
    QCOMPARE(asked.count(), 1);
}

void tst_PanelWidgets::aPanelDoesNotStayOnTop()
{
    exptlWebWidget panel(QStringLiteral("transparent opacity shadow"), nullptr);
    panel.setGeometry(100, 100, 300, 200);
    QVERIFY(realinput::showAndActivate(panel));
    QProcess xprop;
    xprop.start(QStringLiteral("xprop"), {QStringLiteral("-id"), QString::number(panel.winId()),
                                          QStringLiteral("_NET_WM_STATE")});
    QVERIFY(xprop.waitForFinished());
    const QByteArray state = xprop.readAllStandardOutput();
    QVERIFY2(!state.contains("ABOVE") && !state.contains("STAYS_ON_TOP"), state.constData());
}

void tst_PanelWidgets::markersAreReplaced_data()
{
    QTest::addColumn<QByteArray>("html");
    QTest::addColumn<QString>("fragment");
    QTest::addColumn<QByteArray>("filled");
    QTest::newRow("none") << QByteArray("<p>a</p>\n") << "x" << QByteArray("<p>a</p>\n");
    QTest::newRow("one") << QByteArray("<p><!-- QUILLET --></p>") << "x" << QByteArray("<p>x</p>");
    QTest::newRow("two") << QByteArray("<!-- QUILLET -->a<!-- QUILLET -->") << "<b>x</b>"
                         << QByteArray("<b>x</b>a<b>x</b>");
    QTest::newRow("many, side by side")
        << QByteArray("<!-- QUILLET -->").repeated(50) << "y" << QByteArray("y").repeated(50);
    QTest::newRow("case matters") << QByteArray("<!-- quillet --><!--QUILLET-->") << "x"
                                  << QByteArray("<!-- quillet --><!--QUILLET-->");
    QTest::newRow("fragment with a marker")
        << QByteArray("<!-- QUILLET -->") << "[<!-- QUILLET -->]"
        << QByteArray("[<!-- QUILLET -->]");
    QTest::newRow("empty fragment") << QByteArray("a<!-- QUILLET -->b") << "" << QByteArray("ab");
    QTest::newRow("empty template") << QByteArray() << "x" << QByteArray();
    QTest::newRow("line ends and accents")
        << QByteArray("caf\xC3\xA9\r\n<!-- QUILLET -->") << QString::fromUtf8("\xC3\xBC")
        << QByteArray("caf\xC3\xA9\n\xC3\xBC");
}

void tst_PanelWidgets::markersAreReplaced()
{
    QFETCH(QByteArray, html);
    QFETCH(QString, fragment);
    QFETCH(QByteArray, filled);
    write("panel.html", html);
    geomWebWidget panel(QString(), nullptr);
    panel.loadhtml(fragment, at("panel"));
    QCOMPARE(read("paneltmp.html"), filled);
    QCOMPARE(read("panel.html"), html);
}

void tst_PanelWidgets::theAddressBeginsWithFourSlashes()
{
    write("my panel.html", "<p><!-- QUILLET --></p>");
    exptlWebWidget panel(QString(), nullptr);
    QCOMPARE(shownAfter(panel, "shown", at("my panel")), QStringLiteral("shown"));
    QVERIFY(panel.webView()->url().toEncoded().startsWith("file:////"));
    QVERIFY(panel.webView()->url().path().endsWith("/my paneltmp.html"));
}

void tst_PanelWidgets::aMissingTemplateLeavesThePage()
{
    write("panel.html", "<p><!-- QUILLET --></p>");
    geomWebWidget panel(QString(), nullptr);
    QCOMPARE(shownAfter(panel, "first", at("panel")), QStringLiteral("first"));
    QCOMPARE(shownAfter(panel, "second", at("none")), QStringLiteral("nothing loaded"));
    QVERIFY(!QFile::exists(at("nonetmp.html")));
    QCOMPARE(webpages::evaluate(*panel.webView(), "document.body.textContent").toString().trimmed(),
             QStringLiteral("first"));
}

void tst_PanelWidgets::anUnwritableTargetShowsTheOldCopy()
{
    // Nobody, root included, can write to a program while it runs.
    write("panel.html", "<p><!-- QUILLET --></p>");
    write("old.html", "<p>old</p>");
    QVERIFY(QFile::copy(QStringLiteral("/bin/sleep"), at("paneltmp.html")));
    QProcess holder;
    holder.start(at("paneltmp.html"), {QStringLiteral("600")});
    QVERIFY(holder.waitForStarted());
    const QByteArray before = read("paneltmp.html");
    geomWebWidget panel(QString(), nullptr);
    QVERIFY(shownAfter(panel, "new", at("panel")) != QStringLiteral("nothing loaded"));
    QCOMPARE(read("paneltmp.html"), before);
    QVERIFY(panel.webView()->url().path().endsWith("/paneltmp.html"));
    holder.kill();
    holder.waitForFinished();
}

void tst_PanelWidgets::anUnwritableTargetWithoutAnOldCopy()
{
    write("panel.html", "<p><!-- QUILLET --></p>");
    QVERIFY(QDir().mkpath(at("paneltmp.html"))); // a folder where the file should be
    geomWebWidget panel(QString(), nullptr);
    QVERIFY(!shownAfter(panel, "new", at("panel")).contains("new"));
}

void tst_PanelWidgets::anotherFillReplacesTheFirst()
{
    write("panel.html", "<p><!-- QUILLET --></p>");
    exptlWebWidget panel(QString(), nullptr);
    QCOMPARE(shownAfter(panel, "a rather long first text", at("panel")),
             QStringLiteral("a rather long first text"));
    QCOMPARE(shownAfter(panel, "second", at("panel")), QStringLiteral("second"));
    QCOMPARE(read("paneltmp.html"), QByteArray("<p>second</p>"));
}

void tst_PanelWidgets::anyAddressCanBeLoaded()
{
    write("other.html", "<p>other</p>");
    geomWebWidget panel(QString(), nullptr);
    QSignalSpy finished(panel.webView()->page(), SIGNAL(loadFinished(bool)));
    panel.loadfile(QUrl::fromLocalFile(at("other.html")));
    QVERIFY(!finished.isEmpty() || finished.wait());
    QCOMPARE(webpages::evaluate(*panel.webView(), "document.body.textContent").toString(),
             QStringLiteral("other"));
}

void tst_PanelWidgets::thePageReachesThePanel()
{
    write("panel.html", "<p><!-- QUILLET --></p>");
    exptlWebWidget panel(QString(), nullptr);
    shownAfter(panel, "x", at("panel"));
    QCOMPARE(webpages::evaluate(*panel.webView(), "QuilLet.windowTitle").toString(),
             QStringLiteral("Experimental details"));
}

QTEST_MAIN(tst_PanelWidgets)
#include "tst_panelwidgets.moc"
