#include "process/procthread.h"

#include <QByteArray>
#include <QMetaType>

procThread::Limits procThread::limits;

namespace
{
void registerAsInt(const char* enumerationName)
{
    // Qt 5 warns when a name is registered a second time for another type.
    if (QMetaType::type(enumerationName) == QMetaType::UnknownType)
        qRegisterMetaType<int>(enumerationName);
}

QString textOf(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.constData(),
                               static_cast<int>(qstrnlen(bytes.constData(), uint(bytes.size()))));
}
} // namespace

procThread::procThread(QObject* parent) : QThread(parent)
{
    registerAsInt("QProcess::ExitStatus");
    registerAsInt("QProcess::ProcessError");
}

procThread::~procThread()
{
    QProcess* ended = process;
    // A QProcess whose child still runs would kill it and block; that child is left to itself.
    if (ended && ended->state() == QProcess::NotRunning)
        delete ended;
}

void procThread::startrun(const QString& newProgram, const QStringList& newArguments,
                          const QString& workdir, const QString& proctag)
{
    program = newProgram;
    arguments = newArguments;
    workingDirectory = workdir;
    tag = proctag;
    start(QThread::InheritPriority);
}

void procThread::run()
{
    auto* child = new QProcess(nullptr);
    child->setWorkingDirectory(workingDirectory);
    if (!tag.isEmpty()) {
        connect(child, SIGNAL(finished(int, QProcess::ExitStatus)), this,
                SLOT(newProcFinished(int, QProcess::ExitStatus)));
        connect(child, SIGNAL(error(QProcess::ProcessError)), this,
                SLOT(newProcError(QProcess::ProcessError)));
    }
    process = child;

    if (arguments.constFirst().isEmpty()) {
        QStringList words = QProcess::splitCommand(program);
        const QString path = words.isEmpty() ? QString() : words.takeFirst();
        child->start(path, words, QIODevice::ReadWrite);
    } else {
        child->start(program, arguments, QIODevice::ReadWrite);
    }

    if (child->waitForStarted(limits.start))
        child->waitForFinished(limits.finish);
    else
        outputText = QStringLiteral("FAILED_TO_START");

    // A process learns of its child's end only in a living thread.
    child->moveToThread(thread());
}

void procThread::stoprun()
{
    if (QProcess* child = process)
        child->kill();
}

bool procThread::childHasEnded()
{
    QProcess* child = process;
    if (!child)
        return false;
    // After the finish limit nobody else may be looking, since a caller that only polls runs no
    // event loop.
    if (child->state() != QProcess::NotRunning)
        child->waitForFinished(0);
    return child->state() == QProcess::NotRunning;
}

QString procThread::getOutput()
{
    if (!wait(static_cast<unsigned long>(limits.poll)) || !childHasEnded())
        return QStringLiteral("STILL_RUNNING");
    QProcess* child = process;
    outputText += textOf(child->readAllStandardOutput());
    errorText += textOf(child->readAllStandardError());
    return errorText + outputText;
}

void procThread::newProcFinished(int, QProcess::ExitStatus)
{
    wait(static_cast<unsigned long>(
        limits.poll)); // run() is about to return and still owns the process
    emit procResult(textOf(process.load()->readAllStandardOutput()), tag);
}

void procThread::newProcError(QProcess::ProcessError)
{
    wait(static_cast<unsigned long>(limits.poll));
    emit procResult(textOf(process.load()->readAllStandardError()), tag);
}
