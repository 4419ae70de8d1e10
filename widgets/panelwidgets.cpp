#include "widgets/panelwidgets.h"

#include "text/textfile.h"

#include <QWebView>

panelWidget::panelWidget(const QString& title, const QString& options, QWidget* parent)
    : webWidget(options, parent)
{
    setWindowTitle(title);
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
}

void panelWidget::loadhtml(const QString& fragment, const QString& templateBase)
{
    QString html;
    if (!readTextFile(templateBase + QStringLiteral(".html"), &html))
        return;
    html.replace(QStringLiteral("<!-- QUILLET -->"), fragment);
    const QString filled = templateBase + QStringLiteral("tmp.html");
    writeTextFile(filled, html);
    loadfile(QUrl(QStringLiteral("file:///") + filled));
}

void panelWidget::loadfile(const QUrl& url)
{
    webView()->load(url);
}

geomWebWidget::geomWebWidget(const QString& options, QWidget* parent)
    : panelWidget(QStringLiteral("Geometry selection"), options, parent)
{
}

exptlWebWidget::exptlWebWidget(const QString& options, QWidget* parent)
    : panelWidget(QStringLiteral("Experimental details"), options, parent)
{
}
