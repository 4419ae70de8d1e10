// How long taking and saving a CIF takes, compared with copying the file, and with reading and
// writing it through text streams and searching it once for each marker.
//
// bench_cifintake [MEGABYTES]     size of the CIF (default 100)
#include "app/mmcif.h"
#include "bench/ratio.h"
#include "text/textfile.h"
#include "text/textpieces.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>
#include <sys/resource.h>

namespace
{
// Coordinates as macromolecular CIFs have them: ASCII, no marker of an mmCIF.
QByteArray coordinates(int megabytes)
{
    QByteArray text = "data_x\nloop_\n_atom_site.id\n_atom_site.type_symbol\n_atom_site.Cartn_x\n";
    const QByteArray line =
        "ATOM   1234  C CA  . ALA A 1 12  ? 12.345  -67.890 1.234   1.00 23.45 ? 12  ALA A CA  1\n";
    return text + line.repeated(megabytes * 1000000 / line.size());
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        std::abort();
}

void copyByCp(const QString& from, const QString& to)
{
    QProcess::execute(QStringLiteral("cp"), {from, to});
}

// What the application does with a chosen CIF.
bool takeCif(const QString& from, const QString& to)
{
    TextReader reader;
    TextReplacement copy;
    if (!reader.open(from) || !copy.open(to))
        std::abort();
    MmCifSearch search;
    TextPiece piece;
    while (reader.next(&piece)) {
        if (piece.isAscii)
            search.readAscii(piece.ascii);
        else
            search.read(piece.characters);
        copy.write(piece);
    }
    if (!copy.commit())
        std::abort();
    return search.hasFound();
}

// 28 searches, as long as any marker's.
bool searchOneByOne(const QString& text)
{
    bool found = false;
    for (int marker = 0; marker < 28; ++marker)
        found |= text.indexOf(QStringLiteral("_no_such_marker.%1").arg(marker), 0,
                              Qt::CaseInsensitive) != -1;
    return found;
}

bool takeCifThroughStreams(const QString& from, const QString& to)
{
    QString text;
    if (!readTextFile(from, &text) || !writeTextFile(to, text))
        std::abort();
    return searchOneByOne(text);
}

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024;
}
} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const int megabytes = argc > 1 ? std::atoi(argv[1]) : 100;
    const QTemporaryDir folder;
    const QString cif = folder.filePath("in.cif");
    const QString large = folder.filePath("large.cif");
    const QString copy = folder.filePath("out.cif");
    write(cif, coordinates(megabytes));
    for (int part = 0; part < 10; ++part)
        QProcess::execute("sh", {"-c", "cat \"$0\" >>\"$1\"", cif, large});

    std::printf("A CIF of %d MB without a marker\n", megabytes);
    bench::printHead();
    bench::compare(
        "take it / cp", "at most 3", 5, [&] { takeCif(cif, copy); }, [&] { copyByCp(cif, copy); });
    bench::compare(
        "save it / cp", "at most 3", 5, [&] { copyTextFile(cif, copy); },
        [&] { copyByCp(cif, copy); });
    bench::compare(
        "take 10 times as much", "at most 11", 3, [&] { takeCif(large, copy); },
        [&] { takeCif(cif, copy); });
    std::printf("%-46s %10.0f MB\n", "peak memory so far", peakMegabytes());

    const QString text = QString::fromLatin1(coordinates(megabytes));
    bench::compare(
        "recognise the text / 28 searches", "at most 0.02", 3, [&] { isMmCifText(text); },
        [&] { searchOneByOne(text); });
    bench::compare(
        "take it / text streams and 28 searches", "at most 0.1", 1, [&] { takeCif(cif, copy); },
        [&] { takeCifThroughStreams(cif, copy); });
    return 0;
}
