// isMmCifText
#include "app/mmcif.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>

namespace
{
const QStringList markers = {QStringLiteral("_refine_B_iso.class"),
                             QStringLiteral("_refine_ls_shell.entry_id"),
                             QStringLiteral("_refine.entry_id"),
                             QStringLiteral("_pdbx_phasing_MR."),
                             QStringLiteral("_phasing_MIR_der."),
                             QStringLiteral("_phasing_MIR."),
                             QStringLiteral("_phasing_MAD_clust."),
                             QStringLiteral("_phasing_MAD_set."),
                             QStringLiteral("_phasing_MAD.entry_id"),
                             QStringLiteral("_phasing_set.id"),
                             QStringLiteral("_computing.entry_id"),
                             QStringLiteral("_reflns.entry_id"),
                             QStringLiteral("_diffrn.id"),
                             QStringLiteral("_diffrn_source.diffrn_id"),
                             QStringLiteral("_diffrn_measurement.diffrn_id"),
                             QStringLiteral("_diffrn_detector.diffrn_id"),
                             QStringLiteral("_diffrn_radiation.diffrn_id"),
                             QStringLiteral("_cell.entry_id"),
                             QStringLiteral("_exptl_crystal_grow._symmetry.entry_id"),
                             QStringLiteral("_pdbx_exptl_crystal_grow_sol."),
                             QStringLiteral("_pdbx_exptl_crystal_grow_comp."),
                             QStringLiteral("_pdbx_exptl_crystal_cryo_treatment."),
                             QStringLiteral("_struct_keywords."),
                             QStringLiteral("_struct_biol."),
                             QStringLiteral("_pdbx_entity_prod_protocol."),
                             QStringLiteral("_entity_src_nat."),
                             QStringLiteral("_entity_src_gen."),
                             QStringLiteral("_entity.")};
} // namespace

class tst_MmCif : public QObject
{
    Q_OBJECT

private slots:
    void recognition_data();
    void recognition();
    void everyMarkerAlone_data();
    void everyMarkerAlone();
    void agreesWithSearchingForEachMarker();
    void piecesAreOneText_data();
    void piecesAreOneText();
    void realFiles();
};

void tst_MmCif::recognition_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isMmCif");

    QTest::newRow("empty") << "" << false;
    QTest::newRow("small molecule") << "data_I\n_cell_length_a 5.0\n" << false;
    QTest::newRow("marker as the very last characters") << "data_x\n_entity." << true;
    QTest::newRow("last characters cut by one") << "data_x\n_entity" << false;
    QTest::newRow("capital letters, item behind it") << "_ENTITY.ID 1" << true;
    QTest::newRow("mixed case") << "_Cell.Entry_Id 1ABC" << true;
    QTest::newRow("only entity_poly") << "_entity_poly.entity_id 1\n_entity_poly.type x" << false;
    QTest::newRow("symmetry alone") << "_symmetry.entry_id 1ABC" << false;
    QTest::newRow("crystal growth alone") << "_exptl_crystal_grow.crystal_id 1\n"
                                             "_exptl_crystal_grow.method x"
                                          << false;
    QTest::newRow("both, apart") << "_exptl_crystal_grow.crystal_id 1\n_symmetry.entry_id 1"
                                 << false;
    QTest::newRow("run together") << "_exptl_crystal_grow._symmetry.entry_id" << true;
    QTest::newRow("in a comment") << "data_I\n# see _cell.entry_id\n_cell_length_a 5" << true;
    QTest::newRow("in a text field") << "_publ_section_comment\n;\nabout _cell.entry_id\n;\n"
                                     << true;
    QTest::newRow("beginning of a longer name") << "_diffrn.identifier 1" << true;
    QTest::newRow("after a zero character") << QString(QChar(0)) + "_entity.id" << true;
    QTest::newRow("broken by a line end") << "_entity\n.id" << false;
}

void tst_MmCif::recognition()
{
    QFETCH(QString, text);
    QFETCH(bool, isMmCif);
    QCOMPARE(isMmCifText(text), isMmCif);
    if (isMmCif)
        QVERIFY(isMmCifText(QString(100000, QLatin1Char('_')) + text.toUpper()));
}

void tst_MmCif::everyMarkerAlone_data()
{
    QTest::addColumn<QString>("marker");
    for (const QString& marker : markers)
        QTest::newRow(qPrintable(marker)) << marker;
}

void tst_MmCif::everyMarkerAlone()
{
    QFETCH(QString, marker);
    QVERIFY(isMmCifText(QStringLiteral("data_x\n") + marker));
    QVERIFY(!isMmCifText(QStringLiteral("data_x\n") + marker.chopped(1)));
}

void tst_MmCif::agreesWithSearchingForEachMarker()
{
    // Pieces of markers in a random order, with characters that Unicode folds to letters of them.
    QStringList pieces = {QStringLiteral("_"),    QStringLiteral("."), QString(QChar(0x17F)),
                          QString(QChar(0x212A)), QString(QChar(0)),   QString(QChar(0xD800))};
    for (const QString& marker : markers) {
        pieces << marker << QString(marker).replace(QLatin1Char('s'), QChar(0x17F));
        const QStringList words = marker.split(QLatin1Char('_'));
        for (const QString& word : words)
            pieces << word << QLatin1Char('_') + word << word.toUpper();
    }
    QRandomGenerator random(20260102);
    int found = 0;
    for (int round = 0; round < 100000; ++round) {
        QString text;
        for (int length = random.bounded(5); length > 0; --length)
            text += pieces.at(random.bounded(pieces.size()));
        text.chop(random.bounded(3));
        const bool expected =
            std::any_of(markers.begin(), markers.end(), [&](const QString& marker) {
                return text.indexOf(marker, 0, Qt::CaseInsensitive) != -1;
            });
        QVERIFY2(isMmCifText(text) == expected, qPrintable(text));
        found += expected;
    }
    QVERIFY(found > 1000 && found < 99000);
}

void tst_MmCif::piecesAreOneText_data()
{
    QTest::addColumn<bool>("ascii");
    QTest::newRow("bytes") << true;
    QTest::newRow("characters") << false;
}

void tst_MmCif::piecesAreOneText()
{
    QFETCH(bool, ascii);
    const auto search = [ascii](const QString& text, int first, int second) {
        MmCifSearch reader;
        for (const QString& piece :
             {text.left(first), text.mid(first, second), text.mid(first + second)})
            ascii ? reader.readAscii(piece.toLatin1()) : reader.read(piece);
        return reader.hasFound();
    };
    for (const QString& marker : markers) {
        const QString text = QStringLiteral("_x ") + marker.toUpper() + QStringLiteral(" y");
        for (int first = 0; first <= text.size(); ++first)
            for (int second : {0, 1, 2, 7, 30}) {
                QVERIFY(search(text, first, second));
                QVERIFY(!search(QString(text).remove(marker.size() + 2, 1), first, second));
            }
    }
}

void tst_MmCif::realFiles()
{
    const QDir collection(qEnvironmentVariable("VEXA_CIF_COLLECTION"));
    if (!collection.exists(QStringLiteral("MANIFEST.md")))
        QSKIP("skipped: no CIF collection here");
    const auto isMmCif = [&](const char* name) {
        QFile file(collection.filePath(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) && isMmCifText(QString::fromUtf8(file.readAll()));
    };
    QVERIFY(isMmCif("mx-xray/5i55.cif"));
    QVERIFY(isMmCif("sascif/SASDCG7.sascif"));
    QVERIFY(!isMmCif("small-molecule/2242624.cif"));
    QVERIFY(!isMmCif("syntax/empty.cif"));
}

QTEST_GUILESS_MAIN(tst_MmCif)
#include "tst_mmcif.moc"
