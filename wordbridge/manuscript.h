// The manuscript: from what the launch script names to a document.
#pragma once

#include "wordbridge/htmltree.h"
#include "wordbridge/launchscript.h"
#include "wordbridge/officejob.h"
#include "wordbridge/publicationmetadata.h"

#include <optional>
#include <QStringList>

namespace wordbridge
{

// All that a manuscript is made from.
struct ManuscriptSource {
    LaunchScript script;
    HtmlNode article; // empty if the script names none
    QString articleFolder;
    PublicationMetadata metadata;
    QByteArray metadataBytes; // as they stand in macstart.xml; empty if it is missing
};

struct Manuscript {
    QString path;        // of a .docx or .odt in the work folder
    QStringList remarks; // what the user should know about it, a sentence each
};

// Reads a launch script and the files that belong to it. Damaged or missing metadata leads to
// remarks. Throws Error, with the script's line where there is one, if the script, the template or
// the article cannot be used.
ManuscriptSource readManuscriptSource(const QString& scriptPath, QStringList& remarks);

// Makes the manuscript with LibreOffice: a .docx from the template, with the article, the macro's
// work and the metadata as custom XML. Returns nothing, and adds the reason to `remarks`, if
// LibreOffice fails. Throws Error if the work folder cannot be written.
std::optional<Manuscript> makeWithOffice(const QString& office, const ManuscriptSource& source,
                                         const QString& workFolder, const Patience& patience,
                                         QStringList& remarks);

// Makes the manuscript without any word processor: an .odt in the styles of the template.
Manuscript makeWithoutOffice(const ManuscriptSource& source, const QString& workFolder);

// The name for the manuscript's file, without a suffix: by the article's name, else by the journal.
QString manuscriptName(const ManuscriptSource& source);

} // namespace wordbridge
