// Pages for tests: loading, waiting, asking.
#pragma once

#include <QPoint>
#include <QString>
#include <QVariant>

class QWebView;

namespace webpages
{
// Writes html to a file in a folder that lives as long as the program and returns its path.
QString writePage(const QString& name, const QString& html);

// Loads the file and waits until the load has finished; false when that takes too long.
bool load(QWebView& view, const QString& path);

// The value of a script in the main frame.
QVariant evaluate(QWebView& view, const QString& script);
// Where on the screen the middle of the first element is that a CSS selector finds.
QPoint screenPositionOf(QWebView& view, const QString& selector);
} // namespace webpages
