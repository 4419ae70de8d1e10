// procThread: one run of one external program on a thread of its own, result by polling or signal.
#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QThread>

#include <atomic>

// One object serves one run. Construct it, call startrun() once, then either poll getOutput() until
// it no longer answers "STILL_RUNNING", or give the run a tag and wait for procResult().
//
// All functions but run() belong to the thread that constructed the object (the GUI thread).
// No mutex is needed: the process is left alone by that thread until run() has returned, except for
// stoprun(), which only sends a signal to the child.
//
// Text: bytes of the child become characters of the same code (Latin-1), up to the first zero byte.
class procThread : public QThread
{
    Q_OBJECT

public:
    // How long run() waits for the child to start and to end, and how long one getOutput() waits
    // for run(), in milliseconds. The program never changes them; tests shorten them before
    // startrun().
    struct Limits {
        int start = 30000;
        int finish = 180000;
        int poll = 1000;
    };
    static Limits limits;

    // Registers "QProcess::ExitStatus" and "QProcess::ProcessError" as aliases of int with Qt's
    // meta-type system, so that queued connections can carry them. Registering the enumerations
    // themselves later in the same program (qRegisterMetaType<QProcess::ExitStatus>()) is fatal in
    // Qt 5.
    explicit procThread(QObject* parent);

    // The thread must have ended (stoprun() and wait() see to that). Deletes the process object
    // unless its child still runs; never kills a child.
    ~procThread() override;

    // Stores the run's description and starts the thread; returns at once.
    // arguments must hold at least one element. When the first one is empty, program is a whole
    // command line, split at blanks outside double quotes; otherwise program is a path. proctag:
    // empty when the caller polls; otherwise it comes back with procResult().
    void startrun(const QString& program, const QStringList& arguments, const QString& workdir,
                  const QString& proctag);

    // Kills the child if it runs. Does not wait, and does not touch the texts.
    void stoprun();

    // Waits up to limits.poll for run() to return. Then answers "STILL_RUNNING" while the child has
    // not ended (also before it was started), else all it wrote to standard error, followed
    // directly by all it wrote to standard output; "FAILED_TO_START" stands for the latter if it
    // did not start. Every call after the end gives the same answer.
    QString getOutput();

signals:
    // Only for runs with a tag: op is what was still to be read, standard output after a normal
    // end, standard error after an error.
    void procResult(QString op, QString proctag);

public slots:
    void newProcFinished(int exitCode, QProcess::ExitStatus exitStatus);
    void newProcError(QProcess::ProcessError error);

protected:
    void run() override;

private:
    bool childHasEnded();

    QString outputText;
    QString errorText;
    std::atomic<QProcess*> process{
        nullptr}; // made by run(); lives in this object's thread afterwards
    QString program;
    QStringList arguments;
    QString workingDirectory;
    QString tag;
};
