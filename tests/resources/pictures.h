// Pictures of the page's states, compared with those that are stored.
#pragma once

#include <QImage>
#include <QString>

namespace pictures
{
// Compares with stored/<name>.png: both are looked at a quarter of their size, where the edges of
// letters do not matter but a missing word, a shifted line or another colour does. A picture with
// more than one dot to a pixel must look like the stored one, only finer. The picture itself is
// left in the build's screenshots folder. Empty if they are alike, else what is wrong.
//
// With the environment variable VEXA_STORE_PICTURES set, the picture is stored instead: look at it
// before it is committed.
QString compare(const QString& name, const QImage& picture);
} // namespace pictures
