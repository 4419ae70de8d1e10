// One window for each user: the working copy belongs to it. A program that is started while there
// is one hands its file over and ends.
#pragma once

#include <QLocalServer>
#include <QString>

#include <functional>

class QLocalSocket;

class oneWindow
{
public:
    // The socket by which starts find each other lies at this path, in a folder that only the user
    // writes to. A folder that cannot be written to, or a path that is too long for a socket, makes
    // every start have a window of its own.
    explicit oneWindow(const QString& socketPath);

    // Hands a file to the window that is there already; an empty path only brings that to the
    // front. False if there is none, or if it does not answer within a few seconds. GUI thread.
    bool handOver(const QString& file) const;

    // From now on other starts hand over to this program. take gets their files and says whether
    // there still is a window; if not, this one does not answer any more. GUI thread.
    void listen(const std::function<bool(const QString& file)>& take);

private:
    void answer(QLocalSocket* client);

    QString path;
    QLocalServer server;
    std::function<bool(const QString&)> takeFile;
};
