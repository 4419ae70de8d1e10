// dragHandle and resizeHandle in a real window, moved by real and by synthetic pointers.
#include "tests/support/realinput.h"
#include "widgets/draghandle.h"
#include "widgets/resizehandle.h"

#include <QCursor>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace
{
struct Window : QWidget {
    dragHandle* mover = new dragHandle(nullptr);
    QWidget* middle = new QWidget;
    resizeHandle* grip = new resizeHandle(nullptr);

    Window()
    {
        setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
        auto* column = new QVBoxLayout(this);
        column->addWidget(mover);
        column->addWidget(middle, 1);
        column->addWidget(grip);
        mover->setContainer(this);
        grip->setContainer(this);
        setGeometry(200, 150, 300, 260);
    }
};

QPoint centreOnScreen(const QWidget& widget)
{
    return widget.mapToGlobal(widget.rect().center());
}
} // namespace

class tst_Handles : public QObject
{
    Q_OBJECT

private slots:
    void looks();
    void realDragMovesTheWindow();
    void realDragResizesTheWindow_data();
    void realDragResizesTheWindow();
    void oneSyntheticMoveResizesTheWindow();
    void resizingRepaintsAtOnce();
    void rightButtonDoesNothing();
    void releaseEndsTheDrag();
    void handlesWithoutAContainerDoNothing();
    void pressesDoNotReachTheWindow();
};

void tst_Handles::looks()
{
    dragHandle mover(nullptr);
    QCOMPARE(mover.minimumHeight(), 16);
    QCOMPARE(mover.maximumHeight(), 16);
    QCOMPARE(mover.sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    QCOMPARE(mover.cursor().shape(), Qt::OpenHandCursor);
    QVERIFY(mover.testAttribute(Qt::WA_NoMousePropagation));

    resizeHandle grip(nullptr);
    QCOMPARE(grip.minimumHeight(), 10);
    QCOMPARE(grip.maximumHeight(), 10);
    QCOMPARE(grip.sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed));
    QCOMPARE(grip.cursor().shape(), Qt::SizeFDiagCursor);
    QVERIFY(grip.testAttribute(Qt::WA_NoMousePropagation));
}

void tst_Handles::realDragMovesTheWindow()
{
    Window window;
    QVERIFY(realinput::showAndActivate(window));
    const QPoint before = window.pos();
    const QPoint from = centreOnScreen(*window.mover);
    QVERIFY(realinput::drag(from, from + QPoint(57, 41)));
    QTRY_COMPARE(window.pos(), before + QPoint(57, 41));
    QCOMPARE(window.size(), QSize(300, 260));
}

void tst_Handles::realDragResizesTheWindow_data()
{
    QTest::addColumn<QSize>("before");
    QTest::addColumn<QPoint>("way");
    QTest::newRow("larger") << QSize(300, 260) << QPoint(30, 20);
    QTest::newRow("larger, from another size") << QSize(512, 199) << QPoint(30, 20);
    QTest::newRow("much taller") << QSize(300, 260) << QPoint(0, 240);
    QTest::newRow("smaller") << QSize(400, 400) << QPoint(-90, -120);
}

void tst_Handles::realDragResizesTheWindow()
{
    QFETCH(QSize, before);
    QFETCH(QPoint, way);
    Window window;
    window.resize(before);
    QVERIFY(realinput::showAndActivate(window));
    const QPoint from = centreOnScreen(*window.grip);
    QVERIFY(realinput::drag(from, from + way));
    QTRY_COMPARE(window.size(), before + QSize(way.x(), way.y()));
    QCOMPARE(window.pos(), QPoint(200, 150));
}

void tst_Handles::oneSyntheticMoveResizesTheWindow()
{
    Window window;
    QVERIFY(realinput::showAndActivate(window));
    QTest::mousePress(window.grip, Qt::LeftButton, Qt::NoModifier, QPoint(40, 4));
    realinput::sendMove(*window.grip, QPoint(70, 24));
    QCOMPARE(window.size(), QSize(330, 280));
    QTest::mouseRelease(window.grip, Qt::LeftButton);
}

void tst_Handles::resizingRepaintsAtOnce()
{
    struct PaintCounter : QWidget {
        int paints = 0;
        void paintEvent(QPaintEvent*) override { ++paints; }
    } container;
    resizeHandle grip(nullptr);
    grip.setContainer(&container);
    container.resize(200, 200);
    QVERIFY(realinput::showAndActivate(container));
    grip.show();
    QTest::mousePress(&grip, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    const int before = container.paints;
    realinput::sendMove(grip, QPoint(5, 6));
    QCOMPARE(container.paints, before + 1); // no event loop has run in between
}

void tst_Handles::rightButtonDoesNothing()
{
    Window window;
    QVERIFY(realinput::showAndActivate(window));
    const QRect before = window.geometry();
    for (QWidget* handle :
         {static_cast<QWidget*>(window.mover), static_cast<QWidget*>(window.grip)}) {
        const QPoint from = centreOnScreen(*handle);
        QVERIFY(realinput::drag(from, from + QPoint(30, 20), 3));
        QTest::mousePress(handle, Qt::RightButton, Qt::NoModifier, QPoint(5, 5));
        realinput::sendMove(*handle, QPoint(35, 8));
        QTest::mouseRelease(handle, Qt::RightButton);
    }
    QCOMPARE(window.geometry(), before);
}

void tst_Handles::releaseEndsTheDrag()
{
    Window window;
    QVERIFY(realinput::showAndActivate(window));
    const QRect before = window.geometry();
    for (QWidget* handle :
         {static_cast<QWidget*>(window.mover), static_cast<QWidget*>(window.grip)}) {
        QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        QTest::mouseRelease(handle, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        realinput::sendMove(*handle, QPoint(35, 8));
    }
    QCOMPARE(window.geometry(), before);
}

void tst_Handles::handlesWithoutAContainerDoNothing()
{
    dragHandle mover(nullptr);
    resizeHandle grip(nullptr);
    for (QWidget* handle : {static_cast<QWidget*>(&mover), static_cast<QWidget*>(&grip)}) {
        QTest::mousePress(handle, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
        realinput::sendMove(*handle, QPoint(35, 8));
        QTest::mouseRelease(handle, Qt::LeftButton);
    }
}

void tst_Handles::pressesDoNotReachTheWindow()
{
    struct PressCounter : QWidget {
        int presses = 0;
        void mousePressEvent(QMouseEvent*) override { ++presses; }
    } window;
    auto* mover = new dragHandle(&window);
    mover->resize(100, 16);
    QVERIFY(realinput::showAndActivate(window));
    QVERIFY(realinput::click(mover->mapToGlobal(QPoint(10, 8))));
    QCOMPARE(window.presses, 0);
}

QTEST_MAIN(tst_Handles)
#include "tst_handles.moc"
