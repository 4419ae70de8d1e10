// A window like the program's, for tests of the page: same size, same frame, same objects for the
// page to call, and nothing behind them.
#pragma once

#include <functional>

#include <QFrame>
#include <QImage>
#include <QStringList>
#include <QWebPage>

class QWebElement;
class QWebView;

// Stands in for the program. Records every call of the page as "slot(argument, argument)".
class FakeProgram : public QObject
{
    Q_OBJECT

public:
    QStringList calls;

    // What the slots do when they are called. Unset: nothing, with an empty or false answer.
    std::function<QString()> onSetCif;
    std::function<bool()> onSaveCif;
    std::function<void()> onCreateWordTemplate;

public slots:
    void quit();
    void openWordTemplate(const QString& wtemplate, const QString& jnl, const QString& cat,
                          const QString& type = QString());
    void createWordTemplate(const QString& wtemplate, const QString& jnl, const QString& cat,
                            const QString& type = QString());
    QString setCif(const QString& ciffile);
    void getPdbCif(const QString& pdbcode);
    bool saveCif();

private:
    void record(const char* slot, const QStringList& arguments);
};

// Keeps what the page's scripts complain about.
class WatchedPage : public QWebPage
{
public:
    using QWebPage::QWebPage;

    QStringList complaints;

protected:
    void javaScriptConsoleMessage(const QString& message, int line, const QString& source) override;
    void javaScriptAlert(QWebFrame* frame, const QString& message) override;
    bool acceptNavigationRequest(QWebFrame* frame, const QNetworkRequest& request,
                                 NavigationType type) override;
};

class PageWindow : public QFrame
{
    Q_OBJECT

public:
    // Does not show the page yet: see load().
    explicit PageWindow(QWidget* parent = nullptr);

    FakeProgram program;

    // The working copy that the page looks at; there is none until then.
    void setWorkingCopy(const QByteArray& text);
    // What the page remembers stands in this file from now on. Otherwise it forgets all.
    void rememberIn(const QString& file);

    // Loads a page of a copy of the staged resources and shows the window. With publish, the
    // program's object is there after the load, as in the real window, and the page has noticed it.
    bool load(const QString& page, bool publish = true);
    void publish();
    // Makes the page's repeating timers run that much faster. Call before load().
    void hurryTimers(int factor);

    QWebView* view() const { return webView; }
    WatchedPage* page() const { return webPage; }

    // What a user sees and does. Elements are named by their id; a name that is not there ends the
    // program, since it is a fault of the test.
    QWebElement element(const QString& id) const;
    QRect box(const QString& id) const; // in the view; empty when it is not shown
    bool isVisible(const QString& id) const;
    bool isEnabled(const QString& id) const;
    QString text(const QString& id) const;
    QString value(const QString& id) const;
    QString focused() const;
    QStringList tabOrder();
    void scrollTo(const QString& id);
    void click(const QString& id);
    void focus(const QString& id);
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    // Chooses an option of a <select> by the keyboard, as many keys as it takes.
    void choose(const QString& id, const QString& option);

    // A file dropped on the window, as the program tells the page of it; empty for anything else.
    void drop(const QString& path);

    // Calls a page function as the program does.
    QVariant evaluate(const QString& script);

    // A picture of the whole window, over some desktop.
    QImage photograph();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    WatchedPage* webPage;
    QWebView* webView;
};
