#include "tests/support/loopbackproxy.h"

#include <sys/socket.h>

LoopbackProxy::LoopbackProxy()
{
    server.listen(QHostAddress::LocalHost);
    qputenv("http_proxy", url().toLatin1());
    connect(&server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
}

LoopbackProxy::~LoopbackProxy()
{
    qunsetenv("http_proxy");
}

QString LoopbackProxy::url() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(server.serverPort());
}

LoopbackProxy::Answer LoopbackProxy::page(const QByteArray& body, const QByteArray& status,
                                          const QByteArray& extraHeader)
{
    Answer answer;
    answer.bytes = "HTTP/1.1 " + status + "\r\nContent-Length: " + QByteArray::number(body.size()) +
                   "\r\nConnection: close\r\n" + extraHeader + "\r\n" + body;
    return answer;
}

QList<QByteArray> LoopbackProxy::requestLines() const
{
    QList<QByteArray> lines;
    for (const QByteArray& head : heads)
        lines << head.left(head.indexOf('\r'));
    return lines;
}

void LoopbackProxy::read(QTcpSocket* socket)
{
    QByteArray& head = received[socket];
    head += socket->readAll();
    if (!head.endsWith("\r\n\r\n"))
        return;
    heads << head;
    const QByteArray url = head.split(' ').value(1);
    received.remove(socket);
    const Answer answer = answers.value(url, page(QByteArray(), "404 Not Found"));
    if (answer.ending == Ending::KeepOpen)
        keptOpen.insert(url, socket);
    if (answer.held)
        waiting.append({url, socket});
    else
        send(socket, answer);
}

void LoopbackProxy::finish(const QByteArray& url, const QByteArray& bytes)
{
    if (QTcpSocket* socket = keptOpen.take(url)) {
        socket->write(bytes);
        socket->disconnectFromHost();
    }
}

void LoopbackProxy::release(const QByteArray& url)
{
    for (int i = 0; i < waiting.size(); ++i) {
        if (waiting.at(i).first != url)
            continue;
        if (QTcpSocket* socket = waiting.takeAt(i).second)
            send(socket, answers.value(url));
        return;
    }
}

void LoopbackProxy::send(QTcpSocket* socket, const Answer& answer)
{
    socket->write(answer.bytes);
    if (answer.ending == Ending::Close) {
        socket->disconnectFromHost();
    } else if (answer.ending == Ending::Reset) {
        socket->flush();
        const linger immediately = {1, 0}; // closing then sends a reset
        ::setsockopt(int(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &immediately,
                     sizeof immediately);
        socket->abort();
    }
}
