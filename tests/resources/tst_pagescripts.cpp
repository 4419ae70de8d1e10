// The page's scripts that need no page: reading CIFs, summing them up, rules.
#include "bundlefiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <QWebFrame>
#include <QWebPage>

namespace
{
QString script(const QString& name)
{
    return QString::fromUtf8(
        fileBytes(QStringLiteral(VEXA_BUNDLE_DIR "/resources/webwidgets/") + name));
}

// The values of all names, as "block:name=value", in their order; "-" for no value.
const QString listing = QStringLiteral(
    "function list(text) {"
    " var block = '', lines = [];"
    " var scan = Vexa.cif.scan(text, {"
    "  block: function (name) { block = name; lines.push('data ' + name); },"
    "  wants: function (name) { return name.indexOf('_no') !== 0; },"
    "  value: function (name, value) {"
    "   lines.push(block + ':' + name + '=' + (value === null ? '-' : value)); }});"
    " while (!scan.step(1)) {}"
    " if (scan.cutOff) lines.push('cut off');"
    " return lines; }"
    "function summary(text) {"
    " var points = Vexa.sketch.gatherer();"
    " var collector = Vexa.summary.collector(Vexa.sketch.pointNames, points.keep);"
    " Vexa.cif.scan(text, collector).step();"
    " var found = collector.found(true);"
    " var result = Vexa.summary.describe(found);"
    " var s = found.structure;"
    " function n(name) { return parseFloat(s[name]); }"
    " result.drawing = Vexa.sketch.draw(found.kind, points.columns, {a: n('_cell_length_a'),"
    "  b: n('_cell_length_b'), c: n('_cell_length_c'), alpha: n('_cell_angle_alpha'),"
    "  beta: n('_cell_angle_beta'), gamma: n('_cell_angle_gamma')});"
    " return result; }");

QByteArray example(const QString& name)
{
    return fileBytes(QStringLiteral(VEXA_SOURCE_DIR "/examples/") + name);
}
} // namespace

class TestPageScripts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void readsCif_data();
    void readsCif();
    void unwantedValuesAreNotTold();
    void textsBecomePlain_data();
    void textsBecomePlain();
    void sumsUp_data();
    void sumsUp();
    void namesWhatIsMissing();
    void firstStructureOfSeveral();
    void drawsWhatIsThere_data();
    void drawsWhatIsThere();
    void sumsUpRealFiles();
    void readsQuickly();

private:
    QVariant call(const QString& function, const QString& argument);

    QWebPage page;
};

void TestPageScripts::initTestCase()
{
    for (const char* name : {"rules.js", "cif.js", "ciftext.js", "summary.js", "sketch.js"}) {
        QVERIFY2(!script(name).isEmpty(), name);
        page.mainFrame()->evaluateJavaScript(script(name));
    }
    page.mainFrame()->evaluateJavaScript(listing);
    QCOMPARE(page.mainFrame()->evaluateJavaScript("typeof Vexa.sketch.draw").toString(),
             QString("function"));
}

QVariant TestPageScripts::call(const QString& function, const QString& argument)
{
    const QString literal =
        QString::fromUtf8(QJsonDocument(QJsonArray{argument}).toJson(QJsonDocument::Compact));
    return page.mainFrame()->evaluateJavaScript(function + "(" + literal + "[0])");
}

void TestPageScripts::readsCif_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("values");
    using L = QStringList;
    QTest::newRow("nothing") << "" << L();
    QTest::newRow("comments only") << "# data_x\n  # _a 1" << L();
    QTest::newRow("items") << "data_I\n_a 1\n_B.c two # three\n_d ? _e . _f '?'"
                           << L({"data I", "I:_a=1", "I:_b.c=two", "I:_d=-", "I:_e=-", "I:_f=-"});
    QTest::newRow("words with ? and .")
        << "data_I _a ?? _b .5 _c ..." << L({"data I", "I:_a=??", "I:_b=.5", "I:_c=..."});
    QTest::newRow("quotes") << "data_I _a 'don't' _b \"x 'y' z\" _c 'a\"b' _d ''"
                            << L({"data I", "I:_a=don't", "I:_b=x 'y' z", "I:_c=a\"b", "I:_d=-"});
    QTest::newRow("quote inside a word")
        << "data_I _a P21'c _b N,N'-x" << L({"data I", "I:_a=P21'c", "I:_b=N,N'-x"});
    QTest::newRow("hash inside values")
        << "data_I _a x#1 _b 'y # z'" << L({"data I", "I:_a=x#1", "I:_b=y # z"});
    QTest::newRow("unclosed quote ends with its line")
        << "data_I\n_a 'open\n_b 2" << L({"data I", "I:_a=open", "I:_b=2"});
    QTest::newRow("text field") << "data_I\n_a\n;one\n two\n;\n_b 2"
                                << L({"data I", "I:_a=one\n two", "I:_b=2"});
    QTest::newRow("semicolon elsewhere")
        << "data_I\n_a ;x _b ;" << L({"data I", "I:_a=;x", "I:_b=;"});
    QTest::newRow("text field without content") << "data_I\n_a\n;\n ?\n;\n_b\n;\n;\n"
                                                << L({"data I", "I:_a=-", "I:_b=-"});
    QTest::newRow("text field that holds names")
        << "data_I\n_a\n;_b 1\nloop_\ndata_x\n;\n_c 3"
        << L({"data I", "I:_a=_b 1\nloop_\ndata_x", "I:_c=3"});
    QTest::newRow("folded text field") << "data_I\n_a\n;\\\none \\\ntwo\n;\n"
                                       << L({"data I", "I:_a=one two"});
    QTest::newRow("text field that never ends")
        << "data_I\n_a 1\n_b\n;one\ntwo" << L({"data I", "I:_a=1", "I:_b=one\ntwo", "cut off"});
    QTest::newRow("carriage returns") << "data_I\r\n_a 1\r\n_b\r\n;x\r\n;\r\n_c\r;y\r;\r"
                                      << L({"data I", "I:_a=1", "I:_b=x", "I:_c=y"});
    QTest::newRow("loop") << "data_I\nloop_\n_a _b\n1 2\n3 '4 5'\n_c 6"
                          << L({"data I", "I:_a=1", "I:_b=2", "I:_a=3", "I:_b=4 5", "I:_c=6"});
    QTest::newRow("loops one after the other")
        << "data_I loop_ _a 1 2 loop_ _b _c 3 4 data_II _a 5"
        << L({"data I", "I:_a=1", "I:_a=2", "I:_b=3", "I:_c=4", "data II", "II:_a=5"});
    QTest::newRow("keywords in capitals")
        << "DATA_I LOOP_ _A 1 2" << L({"data I", "I:_a=1", "I:_a=2"});
    QTest::newRow("keywords as values")
        << "data_I _a 'data_x' _b 'loop_'" << L({"data I", "I:_a=data_x", "I:_b=loop_"});
    QTest::newRow("words like keywords")
        << "data_I _a loop_1 _b date_x _c saved_x _d data"
        << L({"data I", "I:_a=loop_1", "I:_b=date_x", "I:_c=saved_x", "I:_d=data"});
    QTest::newRow("save frames") << "data_I save_x _a 1 loop_ _b 2 save_ _c 3"
                                 << L({"data I", "I:_c=3"});
    QTest::newRow("values without names")
        << "data_I stray _a 1 stray 'stray' _b 2" << L({"data I", "I:_a=1", "I:_b=2"});
    QTest::newRow("name without a value") << "data_I _a _b 2" << L({"data I", "I:_b=2"});
    QTest::newRow("triple quotes") << "data_I _a '''x 'y'\nz''' _b \"\"\"\"q\" \"\"\" _c 1"
                                   << L({"data I", "I:_a=x 'y'\nz", "I:_b=\"q\" ", "I:_c=1"});
    QTest::newRow("empty quotes") << "data_I _a '' _b \"\" _c 1"
                                  << L({"data I", "I:_a=-", "I:_b=-", "I:_c=1"});
    QTest::newRow("no block") << "_a 1" << L({":_a=1"});
    QTest::newRow("other letters")
        << QString::fromUtf8("data_I _a Größe _b 'α β'")
        << L({"data I", QString::fromUtf8("I:_a=Größe"), QString::fromUtf8("I:_b=α β")});
}

void TestPageScripts::readsCif()
{
    QFETCH(QString, text);
    QFETCH(QStringList, values);
    QCOMPARE(call("list", text).toStringList(), values);
}

void TestPageScripts::unwantedValuesAreNotTold()
{
    QCOMPARE(
        call("list", "data_I _no1 1 _a 2\nloop_ _no2 _b _no3\n1 2 3\n4 5\n;6\n;\n_no4\n;x\n;\n_c 7")
            .toStringList(),
        QStringList({"data I", "I:_a=2", "I:_b=2", "I:_b=5", "I:_c=7"}));
}

void TestPageScripts::textsBecomePlain_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("plain");
    const auto row = [](const char* function, const char* text, const char* plain) {
        QTest::newRow(text) << function << text << QString::fromUtf8(plain);
    };
    row("plain", "\n Hydrogen-bonded\n layers  ", "Hydrogen-bonded layers");
    row("plain", "Vall\\'es-Ortiz, In\\'es", "Vallés-Ortiz, Inés");
    row("plain", "Bj\\/ornstad, P\\%al", "Bjørnstad, Pål");
    row("plain", "\\/Lukasik \\\"O \\,c \\<S", "Łukasik Ö ç Š");
    row("plain", "\\a-helix, Cu K\\a, \\D\\r", "α-helix, Cu Kα, Δρ");
    row("plain", "100\\%C", "100°C");
    row("plain", "H~2~O, Cu^2+^, m^-1^", "H₂O, Cu²⁺, m⁻¹");
    row("plain", "<i>N</i>-methyl <SUB>2</SUB>", "N-methyl 2");
    row("plain", "a--b---c +-1", "a–b—c ±1");
    row("plain", "5 < 6 & 7 > <b", "5 < 6 & 7 > <b");
    row("plain", "a ~ b ^ c", "a ~ b ^ c");
    row("formula", "C9 H11 N1 O3.5", "C₉H₁₁NO₃.₅");
    row("formula", "Na Cl", "NaCl");
    row("formula", "C12 H16 N2 O6, 5(H2 O1)", "C₁₂H₁₆N₂O₆, 5(H₂O)");
    row("spaceGroup", "P 21/c", "P 2₁/c");
    row("spaceGroup", "P 43 21 2", "P 4₃ 2₁ 2");
    row("spaceGroup", "P 1 21/n 1", "P 1 2₁/n 1");
    row("spaceGroup", "P2(1)/c", "P21/c");
    row("spaceGroup", "P -3 m 1", "P -3 m 1");
    row("spaceGroup", "F d -3 m :1", "F d -3 m :1");
}

void TestPageScripts::textsBecomePlain()
{
    QFETCH(QString, function);
    QFETCH(QString, text);
    QTEST(call("Vexa.cifText." + function, text).toString(), "plain");
}

void TestPageScripts::sumsUp_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("identity");
    QTest::addColumn<QString>("quality");
    QTest::addColumn<QStringList>("missing");
    const auto row = [](const char* name, const QByteArray& text, const char* kind,
                        const char* title, const char* identity, const char* quality,
                        const QStringList& missing) {
        QTest::newRow(name) << text << kind << QString::fromUtf8(title)
                            << QString::fromUtf8(identity) << QString::fromUtf8(quality) << missing;
    };
    row("small molecule", example("small_molecule.cif"), "small-molecule",
        "Hydrogen-bonded chains in N-(4-hydroxyphenyl)-2-methoxyacetamide monohydrate at 150 K",
        "C₉H₁₃NO₄ · P 2₁/c · 9.54, 8.50, 13.25 Å; 90, 114.25, 90°",
        "R 0.0389, wR 0.1034 · Vallés-Ortiz, Bjørnstad, Łukasik and 1 more", {});
    row("macromolecule", example("macromolecule.cif"), "macromolecule",
        "Crystal structure of the zipper domain of the regulator VexR from Thermus thermophilus",
        "0VEX · P 2₁ 2₁ 2₁ · 24.61, 27.08, 39.37 Å; 90, 90, 90°",
        "1.35 Å · R 0.154, free R 0.190 · Okonjo, Ferreira-Lind, Szekely", {});
    row("scattering", example("scattering.cif"), "scattering",
        "A bacterial regulator bends its operator: a study by small-angle scattering", "SASDVX1",
        "Rg 2.578 nm · Dmax 10.10 nm · Ferreira-Lind, Okonjo, Szekely", {});
    row("nothing known", "data_x\n_something 1\n", "other", "", "", "",
        {"Title", "Formula", "Space group", "Cell", "R factors", "Authors"});
    row("dotted core names",
        "data_x\n_cell.length_a 5.0(1)\n_cell.length_b 6\n_cell.length_c 7\n_cell.angle_alpha 90\n"
        "_cell.angle_beta 91.5\n_cell.angle_gamma 90.00\n_chemical_formula.sum 'C6 H6'\n"
        "_space_group.name_H-M_alt 'P 21'\n_refine_ls.R_factor_gt 0.03\n",
        "small-molecule", "", "C₆H₆ · P 2₁ · 5, 6, 7 Å; 90, 91.5, 90°", "R 0.03",
        {"Title", "Authors"});
    row("NMR has no cell",
        "data_x\n_entry.id 1ABC\n_struct.title 'A fold'\n_exptl.method 'SOLUTION NMR'\n"
        "_cell.length_a 1\n_cell.length_b 1\n_cell.length_c 1\nloop_\n_audit_author.name\n'Smith, "
        "J.'\n"
        "'Li, K.'\n'Jones, A.'\n'Kim, B.'\n'Ng, C.'\n",
        "macromolecule", "A fold", "1ABC · solution nmr", "Smith, Li, Jones and 2 more", {});
    row("electron microscopy",
        "data_x\n_entry.id 9XYZ\n_exptl.method 'ELECTRON MICROSCOPY'\n"
        "_em_3d_reconstruction.resolution 3.20\n",
        "macromolecule", "", "9XYZ · electron microscopy", "3.20 Å", {"Title", "Authors"});
    row("computed model", "data_AF\n_entry.id AF-1\n_ma_data.id 1\n_cell.length_a 1\n",
        "macromolecule", "", "AF-1 · computed model", "", {"Title", "Authors"});
    row("group of authors",
        "data_x\n_entry.id 1ABC\n_exptl.method 'SOLUTION NMR'\nloop_\n_audit_author.name\n"
        "'Centre for Folds (CF)'\n'Smith, J.'\n",
        "macromolecule", "", "1ABC · solution nmr", "Centre for Folds (CF), Smith", {"Title"});
}

void TestPageScripts::sumsUp()
{
    QFETCH(QByteArray, text);
    const QVariantMap summary = call("summary", QString::fromUtf8(text)).toMap();
    QTEST(summary["kind"].toString(), "kind");
    QTEST(summary["title"].toString(), "title");
    QTEST(summary["identity"].toString(), "identity");
    QTEST(summary["quality"].toString(), "quality");
    QTEST(summary["missing"].toStringList(), "missing");
}

void TestPageScripts::namesWhatIsMissing()
{
    const QVariantMap summary =
        call("summary", "data_x\n_cell_length_a 5\n_cell_length_b ?\n_cell_length_c 7\n"
                        "_publ_section_title\n;\n ?\n;\n_refine_ls_R_factor_gt .\n"
                        "loop_\n_publ_author_name\n?\n?\n")
            .toMap();
    QCOMPARE(summary["missing"].toStringList(),
             QStringList({"Title", "Formula", "Space group", "Cell", "R factors", "Authors"}));
    for (const QVariant& row : summary["rows"].toList())
        QCOMPARE(row.toMap()["value"].toString(), QString());
}

// What belongs to a structure is never mixed with that of another.
void TestPageScripts::firstStructureOfSeveral()
{
    const QVariantMap summary =
        call("summary", "data_global\n_publ_section_title 'Two salts'\ndata_I\n_cell_length_a 5\n"
                        "_cell_length_b 6\n_cell_length_c 7\ndata_II\n_cell_length_a 8\n"
                        "_cell_length_b 9\n_cell_length_c 10\n_refine_ls_R_factor_gt 0.05\n"
                        "loop_\n_publ_author_name\n'M\\\"uller, A.'\n")
            .toMap();
    QCOMPARE(summary["structures"].toInt(), 2);
    QCOMPARE(summary["blocks"].toInt(), 3);
    QCOMPARE(summary["title"].toString(), QString("Two salts"));
    QCOMPARE(summary["identity"].toString(), QString::fromUtf8("5, 6, 7 Å; ?, ?, ?°"));
    QCOMPARE(summary["quality"].toString(), QString::fromUtf8("Müller"));
    QVERIFY(summary["missing"].toStringList().contains("R factors"));
}

void TestPageScripts::drawsWhatIsThere_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("dots");
    QTest::addColumn<int>("leastLines"); // 0: no drawing
    QTest::newRow("molecule") << example("small_molecule.cif") << 27 << 25;
    QTest::newRow("chain") << example("macromolecule.cif") << 0 << 8;
    QTest::newRow("curve") << example("scattering.cif") << 0 << 20;
    QTest::newRow("two ions") << QByteArray("data_x\n_cell_length_a 5.6\n_cell_length_b 5.6\n"
                                            "_cell_length_c 5.6\n_cell_angle_alpha 90\n"
                                            "_cell_angle_beta 90\n_cell_angle_gamma 90\nloop_\n"
                                            "_atom_site_label\n_atom_site_fract_x\n"
                                            "_atom_site_fract_y\n_atom_site_fract_z\n"
                                            "Na 0 0 0\nCl .5 .5 .5\n")
                              << 0 << 0;
    QTest::newRow("atoms without a cell")
        << QByteArray("data_x\nloop_\n_atom_site_label\n_atom_site_fract_x\n_atom_site_fract_y\n"
                      "_atom_site_fract_z\nC1 0 0 0\nC2 .1 0 0\nC3 .2 0 0\nC4 .3 0 0\n")
        << 0 << 0;
    QTest::newRow("no coordinates") << QByteArray("data_x\n_cell_length_a 5\n") << 0 << 0;
}

void TestPageScripts::drawsWhatIsThere()
{
    QFETCH(QByteArray, text);
    QFETCH(int, dots);
    QFETCH(int, leastLines);
    const QVariant drawing = call("summary", QString::fromUtf8(text)).toMap()["drawing"];
    if (leastLines == 0) {
        QVERIFY(drawing.toMap().isEmpty());
        return;
    }
    const QVariantList lines = drawing.toMap()["lines"].toList();
    QVERIFY2(lines.size() >= leastLines, qPrintable(QString::number(lines.size())));
    QCOMPARE(drawing.toMap()["dots"].toList().size(), dots);
    for (const QVariant& line : lines) {
        for (const char* end : {"from", "to"}) {
            for (const QVariant& value : line.toMap()[end].toList())
                QVERIFY(value.toDouble() >= -0.001 && value.toDouble() <= 1.001);
        }
    }
}

// Real files of all kinds: none stops the reader, and those with a structure are recognised.
void TestPageScripts::sumsUpRealFiles()
{
    const QDir collection(qEnvironmentVariable("VEXA_CIF_COLLECTION"));
    if (qEnvironmentVariableIsEmpty("VEXA_CIF_COLLECTION") || !collection.exists())
        QSKIP("skipped: the collection of real CIFs is not there");
    const QMap<QString, QString> kinds = {{"mx-xray", "macromolecule"},
                                          {"sascif", "scattering"},
                                          {"small-molecule", "small-molecule"},
                                          {"syntax", QString()},
                                          {"cif2", QString()},
                                          {"derived", QString()},
                                          {"nmr-em-other", QString()}};
    for (auto kind = kinds.begin(); kind != kinds.end(); ++kind) {
        const QDir folder(collection.filePath(kind.key()));
        for (const QString& file : folder.entryList(QDir::Files)) {
            const QString text = QString::fromUtf8(fileBytes(folder.filePath(file)));
            const QVariantMap summary = call("summary", text).toMap();
            QVERIFY2(summary.contains("kind"), qPrintable(file));
            if (qEnvironmentVariableIsSet("VEXA_LIST_SUMMARIES"))
                qInfo().noquote() << file << "|" << summary["kind"].toString() << "|"
                                  << summary["title"].toString() << "|"
                                  << summary["identity"].toString() << "|"
                                  << summary["quality"].toString() << "| missing"
                                  << summary["missing"].toStringList().join(", ") << "| lines"
                                  << summary["drawing"].toMap()["lines"].toList().size();
            if (kind.value().isEmpty())
                continue;
            QVERIFY2(summary["kind"] == kind.value(), qPrintable(file));
            QVERIFY2(!summary["identity"].toString().isEmpty(), qPrintable(file));
        }
    }
}

void TestPageScripts::readsQuickly()
{
    QByteArray text = "data_x\n_entry.id 1ABC\nloop_\n_atom_site.group_PDB\n_atom_site.id\n"
                      "_atom_site.label_atom_id\n_atom_site.B_iso_or_equiv\n";
    text += QByteArray("ATOM 1 CA 10.00\n").repeated(500000);
    page.mainFrame()->evaluateJavaScript(
        "text = " +
        QString::fromUtf8(
            QJsonDocument(QJsonArray{QString::fromLatin1(text)}).toJson(QJsonDocument::Compact)) +
        "[0]");
    QElapsedTimer time;
    time.start();
    const double slowest =
        page.mainFrame()
            ->evaluateJavaScript(
                "(function () { var slowest = 0, before, done = false;"
                " var scan = Vexa.cif.scan(text, Vexa.summary.collector({}, function () {}));"
                " while (!done) { before = Date.now(); done = scan.step(20000);"
                " slowest = Math.max(slowest, Date.now() - before); } return slowest; }())")
            .toDouble();
    qInfo("%d characters in %lld ms, slowest step %.0f ms", text.size(), time.elapsed(), slowest);
    // Ten times what it takes on a slow machine.
    QVERIFY(time.elapsed() < 20000);
    QVERIFY(slowest < 500);
}

QTEST_MAIN(TestPageScripts)
#include "tst_pagescripts.moc"
