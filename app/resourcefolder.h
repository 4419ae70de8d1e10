// The user's own copy of the resources, and the folder operations it is made with.
#pragma once

#include <QString>

// Copies the folder src to the new folder dst with all that is in it, except hidden entries. False
// when dst exists, cannot be made, or an entry could not be copied; what was copied so far stays.
// Entries that are neither folders nor regular files are passed over with a debug message.
bool cpDir(const QString& src, const QString& dst);

// Removes a folder and all that is in it. True when it is gone or was not there; false at the first
// failure, which a hidden entry causes too, since it is not looked for.
bool rmDir(const QString& path);

struct InstalledResources {
    QString folder; // where the copy is, or would be
    QString report; // HTML: a line for each thing that was installed or could not be; empty when
                    // all was there
};

// Makes the copy of applicationFolder + "/resources" in the user's support folder, and puts the
// script that the word processor runs into its scripts folder, each only when it is not there yet.
// Both paths are absolute.
InstalledResources installResources(const QString& home, const QString& applicationFolder);
