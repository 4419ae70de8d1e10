// oneWindow: how a program that is started again finds the window that is there.
#include "app/onewindow.h"

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <memory>
#include <thread>

namespace
{
// What another start, here one on a thread of its own, is answered.
bool handOver(const QString& socket, const QString& file)
{
    std::atomic<int> answer{-1};
    std::thread start([&] { answer = oneWindow(socket).handOver(file) ? 1 : 0; });
    const bool isAnswered = QTest::qWaitFor([&] { return answer >= 0; }, 20000);
    start.join();
    return isAnswered && answer == 1;
}
} // namespace

class tst_OneWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void aFirstStartFindsNoWindow();
    void aSecondStartHandsItsFileOver();
    void aWindowThatIsGoneDoesNotAnswer();
    void aSocketThatWasLeftBehindIsReplaced();
    void aWindowThatHangsIsTakenForDead();
    void aFolderThatCannotBeWrittenToIsNoHindrance();

private:
    std::unique_ptr<QTemporaryDir> folder;
    QString socket;
};

void tst_OneWindow::init()
{
    folder = std::make_unique<QTemporaryDir>();
    socket = folder->filePath(QStringLiteral("Application Support/window"));
    QVERIFY(QDir(folder->path()).mkdir(QStringLiteral("Application Support")));
}

void tst_OneWindow::aFirstStartFindsNoWindow()
{
    QVERIFY(!oneWindow(socket).handOver(QStringLiteral("/a.cif")));
    QVERIFY(!QFile::exists(socket));
}

void tst_OneWindow::aSecondStartHandsItsFileOver()
{
    QStringList taken;
    oneWindow window(socket);
    window.listen([&](const QString& file) {
        taken << file;
        return true;
    });
    const QStringList files = {QString::fromUtf8("/a b/\xC3\xA9\n%20.cif"), QString(),
                               QStringLiteral("/c.cif")};
    for (const QString& file : files)
        QVERIFY(handOver(socket, file));
    QCOMPARE(taken, files);
}

void tst_OneWindow::aWindowThatIsGoneDoesNotAnswer()
{
    oneWindow window(socket);
    window.listen([](const QString&) { return false; });
    QVERIFY(!handOver(socket, QStringLiteral("/a.cif")));
    // The other one is the window now.
    oneWindow other(socket);
    other.listen([](const QString&) { return true; });
    QVERIFY(handOver(socket, QStringLiteral("/b.cif")));
}

void tst_OneWindow::aSocketThatWasLeftBehindIsReplaced()
{
    QFile left(socket);
    QVERIFY(left.open(QIODevice::WriteOnly));
    left.close();
    QVERIFY(!oneWindow(socket).handOver(QStringLiteral("/a.cif")));
    oneWindow window(socket);
    window.listen([](const QString&) { return true; });
    QVERIFY(handOver(socket, QStringLiteral("/a.cif")));
}

void tst_OneWindow::aWindowThatHangsIsTakenForDead()
{
    QLocalServer hanging; // lets others connect, and never answers
    QVERIFY(hanging.listen(socket));
    QVERIFY(!handOver(socket, QStringLiteral("/a.cif")));
    oneWindow window(socket);
    window.listen([](const QString&) { return true; });
    QVERIFY(handOver(socket, QStringLiteral("/a.cif")));
}

void tst_OneWindow::aFolderThatCannotBeWrittenToIsNoHindrance()
{
    oneWindow window(QStringLiteral("/nowhere/window"));
    window.listen([](const QString&) { return true; });
    QVERIFY(!window.handOver(QStringLiteral("/a.cif")));
}

QTEST_GUILESS_MAIN(tst_OneWindow)
#include "tst_onewindow.moc"
