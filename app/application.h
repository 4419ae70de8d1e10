// Application: the one controller object, which the page reaches as "Quillet".
#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

class QNetworkReply;
class QWebView;
class TextReader;
class webWidget;

// Constructing it starts the program: it installs the user's copy of the resources, makes the main
// window and loads the page into it. Its public slots are what the page can do. All of it runs on
// the GUI thread. While createWordTemplate() or the open dialog of setCif() wait, events are
// handled, so any slot may be called again in the middle; each call then does its own work, and
// nothing guards the files.
//
// Nothing here shows a message: outcomes are return values, calls of page functions, or nothing.
class Application : public QObject
{
    Q_OBJECT

public:
    explicit Application(QObject* parent = nullptr);

    // Stops child processes that still run. Leaves the main window alone.
    ~Application() override;

    // Gives the page a file to begin with, as if it had been dropped on the window: once, and not
    // before the page is there.
    void openFile(const QString& path);

    // The same for a program that was started again: brings the window to the front. False if there
    // is none any more. An empty path stands for no file.
    bool takeOverFrom(const QString& path);

    // See app/resourcefolder.h.
    static bool cpDir(const QString& src, const QString& dst);
    static bool rmDir(const QString& path);

    // How often createWordTemplate() asks quillet's runner, once a second, before it gives up. The
    // program never changes it; tests shorten it.
    static int quilletPollLimit;

    QString setupInfo;               // set-up report, HTML; the page gets it after every load
    webWidget* mainWindow = nullptr; // owned; null after quit()
    QString workCifPath;             // working copy of the chosen CIF; empty until one was taken
    QString userCifPath;             // the file the CIF came from, and goes back to
    QString lastCifFolder;           // where the open dialog starts
    bool isMmCif = false;            // what the last CIF read was recognised as
    QString resourcesPath;           // folder of page, templates and working files
    QString appDirPath;              // the program's own folder

    // The order of the slots is part of the interface: the page's calls are dispatched by it.
public slots:
    // Closes the main window for good and ends the program once the caller's script has returned.
    void quit();

    // Starts the word processor on the ready-made template for a journal and category and closes
    // the main window. jnl: journal name; cat: category; type: sub-field, "sas" for small-angle
    // scattering. wtemplate is accepted and not used.
    void openWordTemplate(const QString& wtemplate, const QString& jnl, const QString& cat,
                          const QString& type = QString());

    // Runs quillet on the working copy and starts the word processor on the article it prints; then
    // closes the main window. Returns when that is done, up to three minutes later; events are
    // handled meanwhile, about once a second. Does nothing for a journal that quillet has nothing
    // for, or when quillet cannot be started. Arguments as for openWordTemplate().
    void createWordTemplate(const QString& wtemplate, const QString& jnl, const QString& cat,
                            const QString& type = QString());

    // Takes the CIF at a path, or asks the user for one when the path is empty or blank: copies its
    // text to the working copy. Returns the path, preceded by "mmCIF: " if it is a macromolecular
    // CIF, or an empty string if none was taken.
    QString setCif(const QString& ciffile);

    // Fetches the CIF of a Protein Data Bank or small-angle-scattering identifier over HTTP.
    // Returns at once; the page's function pdbResponse(message) is called when the answer has come.
    void getPdbCif(const QString& pdbcode);

    // Writes the working copy over the file it came from. False if that could not be done.
    bool saveCif();

private slots:
    void pageLoaded(bool OK);
    void pdbReplyFinished(QNetworkReply* pdbreply);

protected:
    // Ignores deferred deletion: QObject::deleteLater() is a slot too, so the page could call it.
    bool event(QEvent* event) override;

    // Takes the files that the Mac's Finder opens with the program.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeMainWindow();
    void loadPage();
    void handOverFile();
    void evaluateInPage(const QString& script);
    bool storeWorkingCopy(TextReader* reader);
    bool runQuillet(const QString& commandLine, QString* output);
    QString writeInsertedHtml(const QString& html) const;
    void launchWordSession(const QString& xmlText, const QString& htmlPath);

    bool isPageThere = false;
    QString fileToOpen; // not handed over yet

    // Views of windows that quit() has deleted: the page's script may still be running in one.
    std::vector<std::unique_ptr<QWebView>> retiredViews;
};
