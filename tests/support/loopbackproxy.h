// An HTTP proxy on the loopback interface that plays every host a program asks it for.
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

// While it lives, the environment variable http_proxy names it, for this program and its children.
class LoopbackProxy : public QObject
{
    Q_OBJECT

public:
    enum class Ending {
        Close,    // after the answer
        KeepOpen, // never; an answer without a length then never ends
        Reset     // the connection breaks
    };
    struct Answer {
        QByteArray bytes; // head and body as they go out
        Ending ending = Ending::Close;
        bool held = false; // until release()
    };

    LoopbackProxy();
    ~LoopbackProxy() override;

    // Its own address, without a slash at the end.
    QString url() const;

    // A complete answer with status line, length and body.
    static Answer page(const QByteArray& body, const QByteArray& status = "200 OK",
                       const QByteArray& extraHeader = QByteArray());

    // What a request for this URL gets, whichever host it is on. The default is an empty 404.
    void answer(const QByteArray& url, const Answer& answer) { answers.insert(url, answer); }

    // Sends the held answer to the oldest request for the URL that waits for it.
    void release(const QByteArray& url);

    // Sends more of an answer that was kept open, and closes the connection.
    void finish(const QByteArray& url, const QByteArray& bytes);

    // Request heads in the order of their arrival; the first line of each names the URL.
    QList<QByteArray> heads;
    QList<QByteArray> requestLines() const;

private:
    void read(QTcpSocket* socket);
    void send(QTcpSocket* socket, const Answer& answer);

    QTcpServer server;
    QHash<QByteArray, Answer> answers;
    QHash<QTcpSocket*, QByteArray> received;
    QList<QPair<QByteArray, QPointer<QTcpSocket>>> waiting;
    QHash<QByteArray, QPointer<QTcpSocket>> keptOpen;
};
