#include "app/onewindow.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QUrl>

namespace
{
constexpr int patience = 4000; // milliseconds; making a manuscript, a window answers once a second
const char taken[] = "taken\n";
} // namespace

oneWindow::oneWindow(const QString& socketPath) : path(socketPath) {}

bool oneWindow::handOver(const QString& file) const
{
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(patience))
        return false;
    // A name may hold line ends.
    socket.write(QUrl::toPercentEncoding(file) + '\n');
    QByteArray reply;
    while (!reply.endsWith('\n') && socket.waitForReadyRead(patience))
        reply += socket.readAll();
    return reply == taken;
}

void oneWindow::listen(const std::function<bool(const QString& file)>& take)
{
    takeFile = take;
    QObject::connect(&server, &QLocalServer::newConnection, &server, [this] {
        while (QLocalSocket* client = server.nextPendingConnection()) {
            QObject::connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            QObject::connect(client, &QLocalSocket::readyRead, client, [this, client] {
                if (client->canReadLine())
                    answer(client);
            });
        }
    });
    // What nobody answers at was left by a program that was ended by force.
    if (!server.listen(path) && QLocalServer::removeServer(path))
        server.listen(path);
}

void oneWindow::answer(QLocalSocket* client)
{
    const QString file = QUrl::fromPercentEncoding(client->readLine().trimmed());
    if (takeFile(file)) {
        client->write(taken);
        client->flush();
    } else {
        server.close(); // before the other program makes its own
    }
    client->disconnectFromServer();
}
