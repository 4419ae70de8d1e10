// The pictures of the window's chrome: all there, of one family, legible, and made from their
// sources.
#include <cmath>

#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace
{

const QStringList buttons{"close", "winmin", "winmax", "info", "save", "update", "symbol"};

QStringList allPictures()
{
    QStringList names{"publauthors.png"};
    for (const QString& button : buttons)
        names << button + ".png" << button + "a.png";
    names.sort();
    return names;
}

QImage picture(const QString& path)
{
    return QImage(path).convertToFormat(QImage::Format_ARGB32);
}

// Relative luminance of WCAG 2.1.
double luminance(const QColor& color)
{
    auto linear = [](double c) {
        return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a), lb = luminance(b);
    return (qMax(la, lb) + 0.05) / (qMin(la, lb) + 0.05);
}

// How many pixels two pictures of one size do not share, with a tolerance for rounding.
int differingPixels(const QImage& a, const QImage& b, int tolerance)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            if (qAbs(qRed(p) - qRed(q)) > tolerance || qAbs(qGreen(p) - qGreen(q)) > tolerance ||
                qAbs(qBlue(p) - qBlue(q)) > tolerance || qAbs(qAlpha(p) - qAlpha(q)) > tolerance)
                ++count;
        }
    }
    return count;
}

} // namespace

class TestImages : public QObject
{
    Q_OBJECT

private slots:
    void bundleHoldsTheFifteenPictures();
    void everyPictureIsThereWithTwiceAsManyDots();
    void everyPictureIsAPngOfTitleRowSize_data();
    void everyPictureIsAPngOfTitleRowSize();
    void normalPictureIsLegibleOnTheFrame_data();
    void normalPictureIsLegibleOnTheFrame();
    void highlightIsPlainToSee_data();
    void highlightIsPlainToSee();
    void committedPicturesAreThoseOfTheSources();
};

void TestImages::bundleHoldsTheFifteenPictures()
{
    QStringList found = QDir(":/images").entryList();
    found.sort();
    QCOMPARE(found, allPictures());
    QCOMPARE(found.size(), 15);
}

void TestImages::everyPictureIsThereWithTwiceAsManyDots()
{
    for (const QString& name : allPictures()) {
        const QString fine = ":/fine/" + QString(name).replace(".png", "@2x.png");
        QVERIFY2(QImageReader(fine).size() == QSize(36, 36), qPrintable(fine));
    }
}

void TestImages::everyPictureIsAPngOfTitleRowSize_data()
{
    QTest::addColumn<QString>("name");
    for (const QString& name : allPictures())
        QTest::newRow(qPrintable(name)) << name;
}

void TestImages::everyPictureIsAPngOfTitleRowSize()
{
    QFETCH(QString, name);
    QImageReader reader(":/images/" + name);
    QCOMPARE(reader.format(), QByteArray("png"));
    // The highlighted picture decides a button's size, so both variants must agree.
    QCOMPARE(reader.size(), QSize(18, 18));
    QVERIFY(reader.read().hasAlphaChannel());
}

void TestImages::normalPictureIsLegibleOnTheFrame_data()
{
    everyPictureIsAPngOfTitleRowSize_data();
}

// The frame behind the pictures runs from white to light grey.
void TestImages::normalPictureIsLegibleOnTheFrame()
{
    QFETCH(QString, name);
    const QImage image = picture(":/images/" + name);
    QColor darkest = Qt::white;
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() < 200)
                continue;
            ++inked;
            if (luminance(color) < luminance(darkest))
                darkest = color;
        }
    }
    QVERIFY2(inked >= 12, "hardly anything is drawn");
    QVERIFY(contrast(darkest, Qt::white) >= 3.0);
    QVERIFY(contrast(darkest, Qt::lightGray) >= 3.0);
}

void TestImages::highlightIsPlainToSee_data()
{
    QTest::addColumn<QString>("button");
    for (const QString& button : buttons)
        QTest::newRow(qPrintable(button)) << button;
}

void TestImages::highlightIsPlainToSee()
{
    QFETCH(QString, button);
    const QImage normal = picture(":/images/" + button + ".png");
    const QImage highlighted = picture(":/images/" + button + "a.png");
    QCOMPARE(highlighted.size(), normal.size());
    QVERIFY(differingPixels(normal, highlighted, 64) > normal.width() * normal.height() / 2);
}

void TestImages::committedPicturesAreThoseOfTheSources()
{
    if (QStandardPaths::findExecutable("rsvg-convert").isEmpty())
        QSKIP("skipped: rsvg-convert is not installed");
    QTemporaryDir fresh;
    const QString images = QStringLiteral(VEXA_SOURCE_DIR "/images");
    QCOMPARE(QProcess::execute(images + "/render", {fresh.path()}), 0);

    QStringList rendered = QDir(fresh.path()).entryList({"*.png"});
    rendered.sort();
    QCOMPARE(rendered, allPictures());
    for (const QString& name : rendered) {
        const QImage made = picture(fresh.filePath(name));
        const QImage committed = picture(images + "/" + name);
        QCOMPARE(committed.size(), made.size());
        // Another version of the renderer may round edges differently.
        QVERIFY2(differingPixels(made, committed, 40) <= 4, qPrintable(name));
    }
}

QTEST_GUILESS_MAIN(TestImages)
#include "tst_images.moc"
