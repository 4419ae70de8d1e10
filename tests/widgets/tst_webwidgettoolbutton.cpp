// webwidgetToolButton: images, sizes, clicks.
#include "tests/support/realinput.h"
#include "widgets/webwidgettoolbutton.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class tst_WebwidgetToolButton : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void theHoverImageDecidesTheSize();
    void thePictureHasTheDotsOfTheDisplay();
    void aMissingHoverImageGivesNoSize();
    void thePointerSwapsTheImage();
    void aClickEmitsAndShowsTheNormalImage();
    void aReleaseAloneClicks();
    void anyButtonClicks();

private:
    QString image(const QString& name, const QSize& size, Qt::GlobalColor colour);
    Qt::GlobalColor shown(const webwidgetToolButton& button) const;

    QTemporaryDir folder;
    QString hover;
    QString normal;
};

QString tst_WebwidgetToolButton::image(const QString& name, const QSize& size,
                                       Qt::GlobalColor colour)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    const QString path = folder.filePath(name);
    return picture.save(path, "PNG") ? path : QString();
}

Qt::GlobalColor tst_WebwidgetToolButton::shown(const webwidgetToolButton& button) const
{
    const QPixmap pixmap = button.pixmap(Qt::ReturnByValue);
    return pixmap.toImage().pixelColor(0, 0) == QColor(Qt::red) ? Qt::red : Qt::blue;
}

void tst_WebwidgetToolButton::initTestCase()
{
    hover = image(QStringLiteral("hover.png"), QSize(22, 18), Qt::red);
    normal = image(QStringLiteral("normal.png"), QSize(30, 40), Qt::blue);
    QVERIFY(!hover.isEmpty() && !normal.isEmpty());
}

void tst_WebwidgetToolButton::theHoverImageDecidesTheSize()
{
    webwidgetToolButton button(hover, normal, nullptr);
    QCOMPARE(button.minimumSize(), QSize(22, 18));
    QCOMPARE(button.maximumSize(), QSize(22, 18));
    QCOMPARE(button.sizePolicy(), QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed));
    QVERIFY(button.testAttribute(Qt::WA_NoMousePropagation));
    QCOMPARE(shown(button), Qt::blue);
}

void tst_WebwidgetToolButton::thePictureHasTheDotsOfTheDisplay()
{
    const bool isFine = qGuiApp->devicePixelRatio() > 1;
    const webwidgetToolButton button(QStringLiteral(":/images/closea.png"),
                                     QStringLiteral(":/images/close.png"), nullptr);
    QCOMPARE(button.maximumSize(), QSize(18, 18));
    QCOMPARE(button.pixmap(Qt::ReturnByValue).width(), isFine ? 36 : 18);

    // A picture that is not the program's.
    const QString path = image(QStringLiteral("own.png"), QSize(7, 9), Qt::red);
    QCOMPARE(webwidgetToolButton(path, path, nullptr).maximumSize(), QSize(7, 9));
}

void tst_WebwidgetToolButton::aMissingHoverImageGivesNoSize()
{
    webwidgetToolButton button(QStringLiteral(":/images/none.png"), normal, nullptr);
    QCOMPARE(button.maximumSize(), QSize(0, 0));
}

void tst_WebwidgetToolButton::thePointerSwapsTheImage()
{
    QWidget window;
    window.setGeometry(100, 100, 200, 100);
    webwidgetToolButton button(hover, normal, &window);
    button.move(50, 50);
    QVERIFY(realinput::moveTo(QPoint(10, 10)));
    QVERIFY(realinput::showAndActivate(window));
    QCOMPARE(shown(button), Qt::blue);
    QVERIFY(realinput::moveTo(button.mapToGlobal(QPoint(10, 10))));
    QTRY_COMPARE(shown(button), Qt::red);
    QVERIFY(realinput::moveTo(window.mapToGlobal(QPoint(150, 20))));
    QTRY_COMPARE(shown(button), Qt::blue);
}

void tst_WebwidgetToolButton::aClickEmitsAndShowsTheNormalImage()
{
    QWidget window;
    window.setGeometry(100, 100, 200, 100);
    webwidgetToolButton button(hover, normal, &window);
    QSignalSpy clicks(&button, &webwidgetToolButton::clicked);
    QVERIFY(realinput::showAndActivate(window));
    QVERIFY(realinput::moveTo(button.mapToGlobal(QPoint(10, 10))));
    QTRY_COMPARE(shown(button), Qt::red);
    QVERIFY(realinput::click(button.mapToGlobal(QPoint(10, 10))));
    QTRY_COMPARE(clicks.count(), 1);
    QCOMPARE(shown(button), Qt::blue); // although the pointer is still over it
}

void tst_WebwidgetToolButton::aReleaseAloneClicks()
{
    webwidgetToolButton button(hover, normal, nullptr);
    QSignalSpy clicks(&button, &webwidgetToolButton::clicked);
    QTest::mousePress(&button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 0);
    QTest::mouseRelease(&button, Qt::LeftButton);
    QTest::mouseRelease(&button, Qt::LeftButton);
    QCOMPARE(clicks.count(), 2);
}

void tst_WebwidgetToolButton::anyButtonClicks()
{
    webwidgetToolButton button(hover, normal, nullptr);
    QSignalSpy clicks(&button, &webwidgetToolButton::clicked);
    QTest::mouseRelease(&button, Qt::RightButton);
    QCOMPARE(clicks.count(), 1);
}

QTEST_MAIN(tst_WebwidgetToolButton)
#include "tst_webwidgettoolbutton.moc"
