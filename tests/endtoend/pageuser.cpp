#include "tests/endtoend/pageuser.h"

#include "tests/support/realinput.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRect>
#include <QTest>

namespace
{
constexpr int patience = 20000; // milliseconds

const QString observer = QStringLiteral(
    "var origin = null; document.addEventListener('mousemove', function (event) {"
    " origin = [event.screenX - event.clientX, event.screenY - event.clientY]; });"
    "setInterval(function () { if (!Vexa.state.connected || !origin || sending) return;"
    " var all = {}, elements = document.querySelectorAll('[id], .item'), i, e, box, name;"
    " for (i = 0; i < elements.length; i += 1) {"
    "  e = elements[i]; box = e.getBoundingClientRect(); name = e.id || 'item ' + e.title;"
    "  all[name] = [origin[0] + box.left + box.width / 2, origin[1] + box.top + box.height / 2,"
    "   box.width > 0, Boolean(e.disabled), e.children.length > 3 && e.tagName !== 'SELECT' &&"
    "   e.id.indexOf('dialog') !== 0 ? '' :"
    "   String(e.value !== undefined && e.tagName !== 'BUTTON' ? e.value : e.textContent)]; }"
    " report(JSON.stringify({all: all, focus: document.activeElement.id ||"
    "  'item ' + document.activeElement.title,"
    "  size: parseFloat(getComputedStyle(document.body).fontSize)})); }, 60);");
} // namespace

PageUser::PageUser(ProgramRun& run) : program(run)
{
    run.addToShippedPages(observer);
}

bool PageUser::start()
{
    program.net.heads.clear();
    if (!program.start())
        return false;
    window = program.waitForWindow();
    if (!window)
        return false;
    // The page learns from a move where on the screen it is, as soon as it listens. Over its
    // heading, since disabled controls swallow moves.
    const QPoint heading = program.windowFrame(window).topLeft() + QPoint(120, 55);
    int moves = 0;
    const auto reports = [&] {
        return realinput::moveTo(heading + QPoint(++moves % 2, 0)) && !program.reports().isEmpty();
    };
    return QTest::qWaitFor(reports, patience) && waitForNews();
}

QJsonObject PageUser::seen() const
{
    const QStringList reports = program.reports();
    return reports.isEmpty() ? QJsonObject()
                             : QJsonDocument::fromJson(reports.last().toUtf8()).object();
}

bool PageUser::waitForNews()
{
    const int old = program.reports().size();
    return QTest::qWaitFor([&] { return program.reports().size() > old + 1; }, patience);
}

static QJsonArray entry(const QJsonObject& seen, const QString& id)
{
    return seen[QStringLiteral("all")].toObject()[id].toArray();
}

bool PageUser::isShown(const QString& id) const
{
    return entry(seen(), id).at(2).toBool();
}

bool PageUser::isEnabled(const QString& id) const
{
    const QJsonArray element = entry(seen(), id);
    return element.at(2).toBool() && !element.at(3).toBool();
}

QString PageUser::text(const QString& id) const
{
    return entry(seen(), id).at(4).toString();
}

QString PageUser::focused() const
{
    return seen()[QStringLiteral("focus")].toString();
}

double PageUser::textSize() const
{
    return seen()[QStringLiteral("size")].toDouble();
}

QPoint PageUser::place(const QString& id) const
{
    const QJsonArray element = entry(seen(), id);
    return QPointF(element.at(0).toDouble(), element.at(1).toDouble()).toPoint();
}

bool PageUser::sees(const QString& id, const QString& words)
{
    const bool found =
        waitForNews() &&
        QTest::qWaitFor([&] { return isShown(id) && text(id).contains(words); }, patience);
    if (!found)
        qWarning().noquote() << id << "says:" << text(id);
    return found;
}

bool PageUser::hasFocus(const QString& id)
{
    return waitForNews() && QTest::qWaitFor([&] { return focused() == id; }, patience);
}

bool PageUser::click(const QString& id)
{
    return waitForNews() && QTest::qWaitFor([&] { return isEnabled(id); }, patience) &&
           realinput::click(place(id));
}

bool PageUser::tabTo(const QString& id)
{
    if (!waitForNews() || !QTest::qWaitFor([&] { return isEnabled(id); }, patience))
        return false;
    for (int i = 0; i < 30 && focused() != id; ++i) {
        if (!press(QStringLiteral("Tab")) || !waitForNews())
            return false;
    }
    return focused() == id;
}

bool PageUser::press(const QString& keys)
{
    return realinput::key(keys);
}

bool PageUser::type(const QString& text)
{
    return realinput::run(
        {QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("20"), text});
}

// Again if need be: while one window closes, the window manager may not listen.
bool PageUser::activate(const QString& title)
{
    return QTest::qWaitFor([&title] {
        return realinput::run({QStringLiteral("search"), QStringLiteral("--sync"),
                               QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                               QLatin1Char('^') + title + QLatin1Char('$'),
                               QStringLiteral("windowactivate"), QStringLiteral("--sync")});
    });
}

bool PageUser::nameFile(const QString& path)
{
    return activate(QStringLiteral("Quillet")) && type(path) && press(QStringLiteral("Return")) &&
           activate();
}
