#include "wordbridge/folders.h"

#include <QDir>

namespace wordbridge
{

namespace
{

// A relative path in the environment does not count.
QString folder(const char* variable, const char* belowHome)
{
    QString base = qEnvironmentVariable(variable);
    if (!QDir::isAbsolutePath(base))
        base = QDir::home().filePath(QLatin1String(belowHome));
    return base + QStringLiteral("/vexaword");
}

} // namespace

QString cacheFolder()
{
    return folder("XDG_CACHE_HOME", ".cache");
}

QString stateFolder()
{
    return folder("XDG_STATE_HOME", ".local/state");
}

} // namespace wordbridge
