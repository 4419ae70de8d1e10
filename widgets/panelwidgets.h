// The two panels that may stand beside the main window: HTML templates with a generated fragment.
#pragma once

#include "widgets/webwidget.h"

#include <QUrl>

// What both panels do. They do not stay on top of other windows. GUI thread only.
class panelWidget : public webWidget
{
public:
    // Reads templateBase + ".html", puts fragment in the place of every marker "<!-- QUILLET -->",
    // writes the result to templateBase + "tmp.html" and shows that. templateBase is an absolute
    // path. Without the template nothing happens; where the result cannot be written, what the file
    // held is shown.
    void loadhtml(const QString& fragment, const QString& templateBase);

    void loadfile(const QUrl& url);

protected:
    panelWidget(const QString& title, const QString& options, QWidget* parent);
};

class geomWebWidget : public panelWidget
{
    Q_OBJECT

public:
    geomWebWidget(const QString& options, QWidget* parent);
};

class exptlWebWidget : public panelWidget
{
    Q_OBJECT

public:
    exptlWebWidget(const QString& options, QWidget* parent);
};
