// Making a manuscript from the chosen CIF.
#include "app/application.h"
#include "app/articleblocks.h"
#include "app/journalmetadata.h"
#include "app/quilletcommand.h"
#include "process/procthread.h"
#include "text/textfile.h"

#include <QCoreApplication>
#include <QDir>

int Application::quilletPollLimit = 180;

void Application::createWordTemplate(const QString&, const QString& jnl, const QString& cat,
                                     const QString& type)
{
    const GenerationRoute route = generationRoute(jnl);
    if (route == GenerationRoute::None)
        return;

    QString output;
    if (!runQuillet(
            quilletCommandLine(QCoreApplication::applicationDirPath(), workCifPath, jnl, cat, type),
            &output))
        return;

    const Article article = splitArticle(output);
    const QString htmlPath = writeInsertedHtml(article.html);
    const JournalMetadata metadata =
        makeJournalMetadata(jnl, cat, type,
                            route == GenerationRoute::Macromolecular ? MetadataShape::WithField
                                                                     : MetadataShape::WithoutField);
    launchWordSession(metadata.xml + article.authors + article.addresses, htmlPath);
}

// False only if quillet could not be started. Otherwise output is what it printed, errors first, or
// a note that it did not end in time.
bool Application::runQuillet(const QString& commandLine, QString* output)
{
    auto* runner = new procThread(this);
    // An empty first argument makes the program text a command line; without a tag nothing is
    // signalled.
    runner->startrun(commandLine, {QString()}, QCoreApplication::applicationDirPath(), QString());

    int polls = 0;
    do {
        *output = runner->getOutput().trimmed();
        if (*output != QLatin1String("STILL_RUNNING"))
            break;
        QCoreApplication::processEvents(); // keeps the page alive; it may call any slot meanwhile
        ++polls;
    } while (polls < quilletPollLimit);
    const bool timedOut = polls == quilletPollLimit;

    if (!timedOut && output->startsWith(QLatin1String("FAILED_TO_START")))
        return false;
    runner->stoprun();
    if (timedOut)
        *output = QStringLiteral("PROCESS TIMED OUT");
    return true;
}
