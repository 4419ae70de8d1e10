// generationRoute and quilletCommandLine
#include "app/quilletcommand.h"

#include <QTest>

class tst_QuilletCommand : public QObject
{
    Q_OBJECT

private slots:
    void commandLines_data();
    void commandLines();
    void routes_data();
    void routes();
};

void tst_QuilletCommand::commandLines_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("command");

    const QString mo5 = QStringLiteral("\"/app/quillet\" -htmmo5 \"/w/tmp.cif\"");
    const QString mo6 = QStringLiteral("\"/app/quillet\" -htmmo6 \"/w/tmp.cif\"");
    const QString px =
        QStringLiteral("\"/app/quillet\" -htmPX \"/w/tmp.cif\" C qlettemplate_word.html");

    QTest::newRow("crystallization communication") << "Journal Section F"
                                                   << "crystallization communications"
                                                   << "" << mo5;
    QTest::newRow("capital letters are another category") << "Journal Section F"
                                                          << "Crystallization Communications"
                                                          << "" << mo6;
    QTest::newRow("section D has no communications") << "Journal Section D"
                                                     << "crystallization"
                                                     << "sas" << mo6 + " -sas";
    QTest::newRow("sections D and F together") << "Section F with section d"
                                               << "crystallization"
                                               << "" << mo6;
    QTest::newRow("section F, scattering") << "SECTION F"
                                           << "crystallization"
                                           << "sas" << mo5 + " -sas";
    QTest::newRow("SAS in capitals is not scattering") << "Section D"
                                                       << ""
                                                       << "SAS" << mo6;
    QTest::newRow("a field is not scattering") << "Section D"
                                               << ""
                                               << "biology" << mo6;
    QTest::newRow("section C, type ignored") << "Journal Section C"
                                             << "x"
                                             << "sas" << px;
    QTest::newRow("section B") << "Journal Section B"
                               << "crystallization"
                               << "" << px;
    QTest::newRow("none") << "vexaj"
                          << "crystallization"
                          << "sas"
                          << "";
}

void tst_QuilletCommand::commandLines()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, type);
    QFETCH(QString, command);
    QCOMPARE(
        quilletCommandLine(QStringLiteral("/app"), QStringLiteral("/w/tmp.cif"), jnl, cat, type),
        command);
    // Without a CIF the path is empty, but quoted.
    QCOMPARE(quilletCommandLine(QStringLiteral("/app"), QString(), jnl, cat, type),
             command.replace(QStringLiteral("/w/tmp.cif"), QString()));
}

void tst_QuilletCommand::routes_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<int>("route");
    const int none = int(GenerationRoute::None);
    const int macromolecular = int(GenerationRoute::Macromolecular);
    const int smallMolecule = int(GenerationRoute::SmallMolecule);
    QTest::newRow("F") << "Journal Section F" << macromolecular;
    QTest::newRow("D") << "journal section d, online" << macromolecular;
    QTest::newRow("B") << "SECTION B" << smallMolecule;
    QTest::newRow("C") << "Section Crystals" << smallMolecule;
    QTest::newRow("D wins over B") << "section b and section d" << macromolecular;
    QTest::newRow("A") << "Journal Section A" << none;
    QTest::newRow("two blanks") << "section  d" << none;
    QTest::newRow("no blank") << "sectiond" << none;
    QTest::newRow("other journals") << "Zorvane Review" << none;
    QTest::newRow("empty") << "" << none;
}

void tst_QuilletCommand::routes()
{
    QFETCH(QString, jnl);
    QFETCH(int, route);
    QCOMPARE(int(generationRoute(jnl)), route);
}

QTEST_GUILESS_MAIN(tst_QuilletCommand)
#include "tst_quilletcommand.moc"
