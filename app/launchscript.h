// The AppleScript that makes the word processor open a manuscript.
#pragma once

#include <QString>

// A script that creates a document from the template applicationFolder + "/vexainkworks_wm.dotm",
// inserts the HTML file and runs the macro that fills in the metadata. Both paths are absolute and
// stand in it as they are, without quoting. Every line ends with a line feed. Pure function.
QString launchScript(const QString& applicationFolder, const QString& htmlPath);
