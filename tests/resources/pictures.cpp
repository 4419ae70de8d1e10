#include "pictures.h"

#include <QDir>

#include <algorithm>
#include <cstdlib>

namespace
{
const int shrinkage = 4;
const int mostOfColour = 28;         // of 255, in any of the three colours of a place
const double mostOfArea = 0.001;     // of the places: a short word
const double mostOfAreaFiner = 0.02; // with more dots letters and edges fall otherwise

QImage shrunk(const QImage& picture)
{
    return picture
        .scaled(picture.size() / shrinkage, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_RGB32);
}

bool areAlike(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))}) <= mostOfColour;
}

// Share of the places that differ; the sizes are the same.
double difference(const QImage& a, const QImage& b)
{
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            different += areAlike(a.pixel(x, y), b.pixel(x, y)) ? 0 : 1;
    }
    return double(different) / (a.width() * a.height());
}

// Gradients in few steps: a third of the bytes.
bool store(const QString& path, const QImage& picture)
{
    return picture.convertToFormat(QImage::Format_RGB555).save(path, "PNG", 0);
}
} // namespace

QString pictures::compare(const QString& name, const QImage& picture)
{
    const QString file = name + ".png";
    const QString storedPath = QString(VEXA_STORED_PICTURES "/") + file;
    if (qEnvironmentVariableIsSet("VEXA_STORE_PICTURES"))
        return store(storedPath, picture) ? QString() : "cannot write " + storedPath;

    QDir().mkpath(VEXA_SCREENSHOT_DIR);
    picture.save(QString(VEXA_SCREENSHOT_DIR "/") + file);
    const QImage stored(storedPath);
    if (stored.isNull())
        return "there is no stored picture " + file;
    if (stored.size() != picture.size() / picture.devicePixelRatio())
        return file + " has another size than the stored one";
    const double found = difference(
        shrunk(stored),
        shrunk(picture.scaled(stored.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    const double most = picture.devicePixelRatio() > 1 ? mostOfAreaFiner : mostOfArea;
    return found <= most ? QString()
                         : QString("%1 differs from the stored one in %2 % of its area")
                               .arg(file)
                               .arg(found * 100, 0, 'f', 1);
}
