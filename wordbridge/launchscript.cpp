#include "wordbridge/launchscript.h"

#include "wordbridge/error.h"
#include "wordbridge/textencoding.h"

#include <QRegularExpression>
#include <QStringList>

namespace wordbridge
{

namespace
{

class ScriptReader
{
public:
    ScriptReader(const QString& text, const QString& scriptName) : m_name(scriptName)
    {
        m_lines = text.split(QLatin1Char('\n'));
    }

    LaunchScript read()
    {
        for (m_line = 1; m_line <= m_lines.size(); ++m_line)
            readStatement(m_lines[m_line - 1].trimmed());
        m_line = m_lines.size();
        if (!m_application.isEmpty())
            fail(QStringLiteral("the block for \"%1\" does not end").arg(m_application));
        if (m_script.templatePath.line == 0)
            fail(QStringLiteral("the script does not create a document"));
        return m_script;
    }

private:
    [[noreturn]] void fail(const QString& message) const
    {
        throw Error(QStringLiteral("%1:%2: %3").arg(m_name, QString::number(m_line), message));
    }

    [[noreturn]] void failUnknown(const QString& statement) const
    {
        fail(QStringLiteral("unknown statement: %1").arg(statement));
    }

    void readStatement(const QString& statement)
    {
        if (statement.isEmpty())
            return;
        if (m_application.isEmpty())
            readTell(statement);
        else if (statement == QLatin1String("end tell"))
            m_application.clear();
        else if (statement == QLatin1String("activate"))
            return;
        else if (m_application == QLatin1String("System Events"))
            readForSystem(statement);
        else
            readForWord(statement);
    }

    void readTell(const QString& statement)
    {
        static const QRegularExpression tell(QStringLiteral("^tell application \"([^\"]*)\"$"));
        const QRegularExpressionMatch match = tell.match(statement);
        const QString application = match.captured(1);
        if (application != QLatin1String("System Events") &&
            application != QLatin1String("Microsoft Word"))
            failUnknown(statement);
        m_application = application;
    }

    void readForSystem(const QString& statement) const
    {
        if (statement !=
            QLatin1String("if not (UI elements enabled) then set (UI elements enabled) "
                          "to true"))
            failUnknown(statement);
    }

    void readForWord(const QString& statement)
    {
        static const QRegularExpression delay(QStringLiteral("^delay \\d+(\\.\\d+)?$"));
        if (const auto path = between(
                statement, "create new document attached template (POSIX file \"", "\") as string"))
            createDocument(*path);
        else if (const auto article = between(
                     statement, "insert file at text object of selection file name (POSIX file \"",
                     "\") as string"))
            insertArticle(*article);
        else if (const auto macro = between(statement, "run VB macro macro name \"", "\""))
            act(m_script.macro, *macro);
        // LibreOffice answers when it is ready, so there is nothing to wait for.
        else if (!delay.match(statement).hasMatch())
            failUnknown(statement);
    }

    static std::optional<QString> between(const QString& statement, const char* start,
                                          const char* end)
    {
        const QLatin1String opening(start);
        const QLatin1String closing(end);
        if (!statement.startsWith(opening) || !statement.endsWith(closing) ||
            statement.size() < opening.size() + closing.size())
            return std::nullopt;
        return statement.mid(opening.size(), statement.size() - opening.size() - closing.size());
    }

    void createDocument(const QString& path)
    {
        if (m_script.templatePath.line != 0)
            fail(QStringLiteral("the script creates a second document"));
        if (path.isEmpty())
            fail(QStringLiteral("the name is empty"));
        m_script.templatePath = {path, m_line};
    }

    void insertArticle(const QString& path)
    {
        if (m_script.macro)
            fail(QStringLiteral("the article has to be inserted before the macro runs"));
        act(m_script.articlePath, path);
    }

    void act(std::optional<ScriptValue>& action, const QString& value)
    {
        if (m_script.templatePath.line == 0)
            fail(QStringLiteral("there is no document yet to do this in"));
        if (action)
            fail(QStringLiteral("the script does this a second time"));
        if (value.isEmpty())
            fail(QStringLiteral("the name is empty"));
        action = ScriptValue{value, m_line};
    }

    QString m_name;
    QStringList m_lines;
    int m_line = 0;
    QString m_application; // whose block this is
    LaunchScript m_script;
};

} // namespace

LaunchScript readLaunchScript(const QByteArray& bytes, const QString& scriptName)
{
    return ScriptReader(decodedTwice(bytes), scriptName).read();
}

} // namespace wordbridge
