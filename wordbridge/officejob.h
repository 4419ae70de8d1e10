// One run of LibreOffice: from the template, the article and the macro to a Word document.
#pragma once

#include "wordbridge/officeprofile.h"

#include <chrono>
#include <functional>
#include <optional>
#include <QString>
#include <QStringList>

namespace wordbridge
{

struct OfficeJob {
    QString templatePath;
    QString articlePath;  // OpenDocument text; empty: nothing is inserted
    QString macro;        // MODULE.MACRO of the template; empty: none is run
    QString metadataPath; // for the macro; the file need not exist
    QString outputPath;   // of the .docx
    QString workFolder;   // an existing folder for files of this run alone
};

struct OfficeResult {
    QStringList warnings;
    QString failure; // empty: the document is there
    bool timedOut = false;
};

// The LibreOffice to use: the program that the environment variable VEXAWORD_OFFICE names, or else
// soffice or libreoffice in PATH, or in one of the folders that LibreOffice is installed to.
// Nothing if there is none that can be run.
std::optional<QString> findOffice();

// How long to wait for LibreOffice.
struct Patience {
    std::chrono::milliseconds withoutProgress{60000}; // then it is ended
    std::chrono::milliseconds inSilence{3000};        // then `stillWorking` is called, once
    std::function<void()> stillWorking;
};

// Runs `office` on the job, without a window and without the user's profile, in a session of its
// own. When it reports no progress for too long, it is ended and `timedOut` is set.
OfficeResult runOffice(const QString& office, const OfficeProfile& profile, const OfficeJob& job,
                       const Patience& patience);

// Opens a document in the user's own LibreOffice, or without one in what the desktop opens such
// documents with, and returns at once. False if there is nothing to open it with.
bool openDocument(const std::optional<QString>& office, const QString& document);

} // namespace wordbridge
