#include "tests/support/webpages.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QUrl>
#include <QWebFrame>
#include <QWebPage>
#include <QWebView>

namespace webpages
{
QString writePage(const QString& name, const QString& html)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(html.toUtf8()) < 0)
        return QString();
    return path;
}

bool load(QWebView& view, const QString& path)
{
    QSignalSpy finished(view.page(), SIGNAL(loadFinished(bool)));
    view.load(QUrl::fromLocalFile(path));
    return finished.count() > 0 || finished.wait(20000);
}

QVariant evaluate(QWebView& view, const QString& script)
{
    return view.page()->mainFrame()->evaluateJavaScript(script);
}

QPoint screenPositionOf(QWebView& view, const QString& selector)
{
    const QVariantList middle =
        evaluate(view, QStringLiteral("(function () { var box = document.querySelector('%1')."
                                      "getBoundingClientRect(); return [box.left + box.width / 2,"
                                      " box.top + box.height / 2]; })()")
                           .arg(selector))
            .toList();
    return view.mapToGlobal(QPoint(middle.value(0).toInt(), middle.value(1).toInt()));
}
} // namespace webpages
