// OpenDocument text as a package.
#pragma once

#include "wordbridge/package.h"

#include <QStringList>

namespace wordbridge
{

struct OdtContent {
    QByteArray body;            // the content of office:text
    QByteArray automaticStyles; // the content of office:automatic-styles
    QStringList sequences;      // names of the number fields in use
    QVector<Part> images;       // named Pictures/…, with the suffix of their type
    QByteArray metaXml;         // a whole meta.xml; may be empty
};

// Puts the package together, with the styles of the manuscript in styles.xml: they make it a
// document that stands for itself. In a document made from the Word template, that template's own
// styles of the same names take their place.
Package packOdt(const OdtContent& content);

} // namespace wordbridge
