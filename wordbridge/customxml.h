// Metadata inside a Word document, for editorial systems.
#pragma once

#include "wordbridge/package.h"

namespace wordbridge
{

// Adds `xml` to a Word document as a custom XML part. The part survives when the document is saved
// again, in LibreOffice as in Word. Throws Error if the package is no Word document.
void addCustomXml(Package& document, const QByteArray& xml);

} // namespace wordbridge
