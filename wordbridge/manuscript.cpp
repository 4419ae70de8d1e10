#include "wordbridge/manuscript.h"

#include "wordbridge/articleodt.h"
#include "wordbridge/customxml.h"
#include "wordbridge/docxcheck.h"
#include "wordbridge/error.h"
#include "wordbridge/files.h"
#include "wordbridge/folders.h"
#include "wordbridge/frontmatter.h"
#include "wordbridge/manuscriptfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace wordbridge
{

namespace
{

// The program writes the metadata to Word's container if there is one, else beside the script.
QString metadataPath(const QString& scriptPath)
{
    const QDir container(QDir::homePath() +
                         QStringLiteral("/Library/Containers/com.microsoft.Word/Data"));
    if (container.exists())
        return container.filePath(QStringLiteral("macstart.xml"));
    return QFileInfo(scriptPath).absoluteDir().filePath(QStringLiteral("publauthors/macstart.xml"));
}

void readMetadata(ManuscriptSource& source, const QString& path, QStringList& remarks)
{
    try {
        source.metadataBytes = readFile(path);
        source.metadata = readPublicationMetadata(source.metadataBytes);
    } catch (const Error& error) {
        source.metadata.remarks.push_back(error.message());
    }
    for (const QString& remark : qAsConst(source.metadata.remarks))
        remarks.push_back(
            QStringLiteral("journal, authors or addresses may be missing in the manuscript: %1: %2")
                .arg(path, remark));
}

void requireFile(const ScriptValue& file, const QString& what, const QString& scriptPath)
{
    const QFileInfo info(file.text);
    if (!info.isFile() || !info.isReadable())
        throw Error(QStringLiteral("%1:%2: the %3 is missing or cannot be read: %4")
                        .arg(scriptPath, QString::number(file.line), what, file.text));
}

// LibreOffice would take any text for a template.
void requireTemplate(const ScriptValue& file, const QString& scriptPath)
{
    requireFile(file, QStringLiteral("Word template"), scriptPath);
    try {
        if (Package::read(file.text).find(QStringLiteral("word/document.xml")) != nullptr)
            return;
    } catch (const Error&) {
        // is said below, with the line of the script
    }
    throw Error(QStringLiteral("%1:%2: this is no Word template, or a damaged one: %3")
                    .arg(scriptPath, QString::number(file.line), file.text));
}

// Writes what LibreOffice is to work on into the work folder.
OfficeJob prepareJob(const ManuscriptSource& source, const QString& workFolder,
                     QStringList& remarks)
{
    OfficeJob job;
    job.workFolder = workFolder;
    job.templatePath = QFileInfo(source.script.templatePath.text).absoluteFilePath();
    job.outputPath = workFolder + QStringLiteral("/manuscript.docx");
    job.metadataPath = workFolder + QStringLiteral("/macstart.xml");
    if (!source.metadataBytes.isEmpty())
        writeFile(job.metadataPath, source.metadataBytes);
    if (source.script.articlePath) {
        const ArticleOdt article = writeArticleOdt(source.article, source.articleFolder);
        job.articlePath = workFolder + QStringLiteral("/article.odt");
        article.package.write(job.articlePath);
        remarks += article.remarks;
    }
    if (source.script.macro)
        job.macro = source.script.macro->text;
    return job;
}

// Runs LibreOffice in the kept profile, or in a new one where that is in use or does not work.
OfficeResult runInSomeProfile(const QString& office, const OfficeJob& job, const Patience& patience)
{
    if (const auto profile = OfficeProfile::kept(cacheFolder())) {
        OfficeResult result = runOffice(office, *profile, job, patience);
        if (result.failure.isEmpty())
            return result;
        profile->discard();
        if (result.timedOut)
            return result; // a new profile seldom helps, and the user has waited long enough
    }
    const auto profile = OfficeProfile::temporary();
    return runOffice(office, *profile, job, patience);
}

// LibreOffice inserts a file that it cannot read without a word.
void requireArticle(const Package& document, const ManuscriptSource& source)
{
    const QByteArray* text = document.find(QStringLiteral("word/document.xml"));
    const bool hasContent =
        text != nullptr && (text->contains("<w:t") || text->contains("<w:drawing"));
    if (!hasContent && !isEmptyArticle(source.article))
        throw Error(QStringLiteral("LibreOffice did not take the article over"));
}

void finishDocument(const QString& path, const ManuscriptSource& source, QStringList& remarks)
{
    Package document = Package::read(path);
    requireArticle(document, source);
    addCustomXml(document, manuscriptXml(source.metadata));
    const QStringList findings = checkWordDocument(document);
    for (const QString& finding : findings)
        remarks.push_back(
            QStringLiteral("Word may have to repair the manuscript: %1").arg(finding));
    document.write(path);
}

} // namespace

ManuscriptSource readManuscriptSource(const QString& scriptPath, QStringList& remarks)
{
    ManuscriptSource source;
    source.script = readLaunchScript(readFile(scriptPath), scriptPath);
    requireTemplate(source.script.templatePath, scriptPath);
    if (const auto& articlePath = source.script.articlePath) {
        requireFile(*articlePath, QStringLiteral("article"), scriptPath);
        source.article = parseHtml(readFile(articlePath->text));
        source.articleFolder = QFileInfo(articlePath->text).absolutePath();
        if (isEmptyArticle(source.article))
            remarks.push_back(QStringLiteral("the article is empty: %1").arg(articlePath->text));
    }
    readMetadata(source, metadataPath(scriptPath), remarks);
    return source;
}

std::optional<Manuscript> makeWithOffice(const QString& office, const ManuscriptSource& source,
                                         const QString& workFolder, const Patience& patience,
                                         QStringList& remarks)
{
    Manuscript manuscript;
    const OfficeJob job = prepareJob(source, workFolder, manuscript.remarks);
    const OfficeResult result = runInSomeProfile(office, job, patience);
    if (!result.failure.isEmpty()) {
        remarks.push_back(result.failure);
        return std::nullopt;
    }
    manuscript.path = job.outputPath;
    manuscript.remarks += result.warnings;
    try {
        finishDocument(job.outputPath, source, manuscript.remarks);
    } catch (const Error& error) {
        remarks.push_back(error.message());
        return std::nullopt;
    }
    return manuscript;
}

Manuscript makeWithoutOffice(const ManuscriptSource& source, const QString& workFolder)
{
    HtmlNode article = source.article;
    fillFrontMatter(article, source.metadata);
    const ArticleOdt odt =
        writeArticleOdt(article, source.articleFolder,
                        openDocumentMeta(source.metadata, articleTitle(source.article)));
    Manuscript manuscript{workFolder + QStringLiteral("/manuscript.odt"), odt.remarks};
    odt.package.write(manuscript.path);
    return manuscript;
}

QString manuscriptName(const ManuscriptSource& source)
{
    const QString name = articleName(source.article);
    return manuscriptBaseName(name.isEmpty() ? source.metadata.journal + QLatin1Char(' ') +
                                                   source.metadata.category
                                             : name);
}

} // namespace wordbridge
