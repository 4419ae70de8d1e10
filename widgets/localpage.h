// A page that stays with files of this computer.
#pragma once

#include <QWebPage>

// What the application shows reaches the application's objects, so nothing from the network may
// ever be shown in its place: navigation to anything but a local file is refused. A link that the
// user follows opens in the desktop's browser instead. GUI thread only.
class localPage : public QWebPage
{
public:
    explicit localPage(QObject* parent);

protected:
    bool acceptNavigationRequest(QWebFrame* frame, const QNetworkRequest& request,
                                 NavigationType type) override;
};
