#include "wordbridge/resources.h"

#include <QFile>

// The resources of a static library are not there by themselves. Must stand outside any namespace.
static void initResources()
{
    Q_INIT_RESOURCE(wordbridge);
}

namespace wordbridge
{

QByteArray resource(const char* name)
{
    initResources();
    QFile file(QStringLiteral(":/wordbridge/") + QLatin1String(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("missing resource %s", name);
    return file.readAll();
}

} // namespace wordbridge
