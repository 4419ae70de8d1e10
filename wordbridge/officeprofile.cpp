#include "wordbridge/officeprofile.h"

#include "wordbridge/error.h"
#include "wordbridge/files.h"
#include "wordbridge/resources.h"

#include <fcntl.h>
#include <QDir>
#include <QFile>
#include <sys/file.h>
#include <unistd.h>

namespace wordbridge
{

namespace
{

struct SeedFile {
    QString name;
    QByteArray content;
};

// Without the first setting the first start replaces the macros below. The second keeps the
// template's macros out of the manuscript; they still run.
const char* const settings = R"(<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry" xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
<item oor:path="/org.openoffice.Setup/Office"><prop oor:name="ooSetupInstCompleted" oor:op="fuse"><value>true</value></prop></item>
<item oor:path="/org.openoffice.Office.Writer/Filter/Import/VBA"><prop oor:name="Save" oor:op="fuse"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Writer/Filter/Import/VBA"><prop oor:name="Executable" oor:op="fuse"><value>true</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="FirstRun" oor:op="fuse"><value>false</value></prop></item>
</oor:items>
)";

const char* const libraryList = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE library:libraries PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "libraries.dtd">
<library:libraries xmlns:library="http://openoffice.org/2000/library" xmlns:xlink="http://www.w3.org/1999/xlink">
<library:library library:name="Vexa" xlink:href="$(USER)/basic/Vexa/%1.xlb/" xlink:type="simple" library:link="false"/>
</library:libraries>
)";

const char* const moduleList = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE library:library PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "library.dtd">
<library:library xmlns:library="http://openoffice.org/2000/library" library:name="Vexa" library:readonly="false" library:passwordprotected="false">
<library:element library:name="Bridge"/>
</library:library>
)";

const char* const module = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE script:module PUBLIC "-//OpenOffice.org//DTD OfficeDocument 1.0//EN" "module.dtd">
<script:module xmlns:script="http://openoffice.org/2000/script" script:name="Bridge" script:language="StarBasic">%1</script:module>
)";

std::vector<SeedFile> seedFiles()
{
    const QString libraries = QString::fromLatin1(libraryList);
    const QString source = QString::fromUtf8(resource("bridge.bas")).toHtmlEscaped();
    return {
        {QStringLiteral("registrymodifications.xcu"), settings},
        {QStringLiteral("basic/script.xlc"), libraries.arg(QStringLiteral("script")).toUtf8()},
        {QStringLiteral("basic/dialog.xlc"), libraries.arg(QStringLiteral("dialog")).toUtf8()},
        {QStringLiteral("basic/Vexa/script.xlb"), moduleList},
        {QStringLiteral("basic/Vexa/Bridge.xba"), QString::fromLatin1(module).arg(source).toUtf8()},
    };
}

bool hasContent(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readAll() == content;
}

} // namespace

std::unique_ptr<OfficeProfile> OfficeProfile::kept(const QString& cacheFolder)
{
    std::unique_ptr<OfficeProfile> profile(new OfficeProfile);
    profile->m_path = cacheFolder + QStringLiteral("/libreoffice");
    if (!QDir().mkpath(profile->m_path))
        return nullptr;

    // Inherited by LibreOffice on purpose (no O_CLOEXEC): a lock that only this process held would
    // let the next run into a profile where a LibreOffice of a killed run still works.
    const QByteArray lock = QFile::encodeName(cacheFolder + QStringLiteral("/libreoffice.lock"));
    profile->m_lock =
        ::open(lock.constData(), O_RDWR | O_CREAT, 0600); // NOLINT(android-cloexec-open)
    if (profile->m_lock < 0 || ::flock(profile->m_lock, LOCK_EX | LOCK_NB) != 0)
        return nullptr;
    try {
        profile->fill();
    } catch (const Error&) {
        return nullptr;
    }
    return profile;
}

std::unique_ptr<OfficeProfile> OfficeProfile::temporary()
{
    std::unique_ptr<OfficeProfile> profile(new OfficeProfile);
    profile->m_temporary = makeWorkFolder();
    profile->m_path = profile->m_temporary->path();
    profile->fill();
    return profile;
}

OfficeProfile::~OfficeProfile()
{
    if (m_lock >= 0)
        ::close(m_lock);
}

void OfficeProfile::discard()
{
    QDir(m_path).removeRecursively();
}

// LibreOffice rewrites these files with contents of its own now and then (its settings grow at
// every run), so only the macro decides whether the profile is up to date.
void OfficeProfile::fill()
{
    const QDir user(m_path + QStringLiteral("/user"));
    const std::vector<SeedFile> files = seedFiles();
    if (!hasContent(user.filePath(files.back().name), files.back().content)) {
        QDir(m_path).removeRecursively();
        for (const SeedFile& file : files)
            writeFile(user.filePath(file.name), file.content);
    }
    // LibreOffice's own lock, left by one that was killed. Ours says that nobody is here.
    QFile::remove(m_path + QStringLiteral("/.lock"));
}

} // namespace wordbridge
