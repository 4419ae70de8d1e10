// makeJournalMetadata
#include "app/journalmetadata.h"

#include <QTest>

namespace
{
const QString opening = QStringLiteral("<vexa:publjnl xmlns:vexa=\"http//" VEXAWORD_NAMESPACE_HOST
                                       "/publjnl\"><jnlname>");
} // namespace

class tst_JournalMetadata : public QObject
{
    Q_OBJECT

private slots:
    void codes_data();
    void codes();
    void categories_data();
    void categories();
    void shapes_data();
    void shapes();
};

void tst_JournalMetadata::codes_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("code");
    QTest::newRow("s") << "Zorvane Review"
                       << "s";
    QTest::newRow("j") << "Quembly Review"
                       << "j";
    QTest::newRow("m") << "VexaJ"
                       << "m";
    QTest::newRow("last letter") << "Section D"
                                 << "d";
    QTest::newRow("trimmed first") << "  Section F \t\n"
                                   << "f";
    QTest::newRow("s before j") << "Quembly and Zorvane"
                                << "s";
    QTest::newRow("j before m") << "vexaj quembly"
                                << "j";
    QTest::newRow("any case") << "the ZORVANE"
                              << "s";
    QTest::newRow("not a word of its own") << "prezorvanes"
                                           << "s";
    QTest::newRow("blank inside the keyword") << "Vexa J"
                                              << "j";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("blanks only") << "   "
                                 << "";
    QTest::newRow("long name") << "Journal Section F Letters"
                               << "s";
}

void tst_JournalMetadata::codes()
{
    QFETCH(QString, jnl);
    QFETCH(QString, code);
    QCOMPARE(makeJournalMetadata(jnl, QString(), QString(), MetadataShape::WithField).code, code);
}

void tst_JournalMetadata::categories_data()
{
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("category");
    QTest::newRow("two words") << "Research Papers"
                               << "researchpapers";
    QTest::newRow("all kinds of white space") << " A\t b\n\nC  d "
                                              << "abcd";
    QTest::newRow("nothing to do") << "letters"
                                   << "letters";
    QTest::newRow("empty") << ""
                           << "";
}

void tst_JournalMetadata::categories()
{
    QFETCH(QString, cat);
    QFETCH(QString, category);
    QCOMPARE(
        makeJournalMetadata(QStringLiteral("x"), cat, QString(), MetadataShape::WithField).category,
        category);
}

void tst_JournalMetadata::shapes_data()
{
    QTest::addColumn<QString>("jnl");
    QTest::addColumn<QString>("cat");
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("withField");
    QTest::addColumn<QString>("behindOpening");

    QTest::newRow("standard, all as passed")
        << " Section D "
        << "Research Papers"
        << "Biology" << true
        << " Section D </jnlname><jnlcategory>Research Papers</jnlcategory>"
           "<jnlfield>Biology</jnlfield></vexa:publjnl>";
    QTest::newRow("empty field") << "Section D"
                                 << "x"
                                 << "" << true
                                 << "Section D</jnlname><jnlcategory>x</jnlcategory>"
                                    "<jnlfield></jnlfield></vexa:publjnl>";
    QTest::newRow("communications")
        << "Section F "
        << "methods communications"
        << "y" << true
        << "Section F </jnlname><jnlcategory>research communications</jnlcategory>"
           "<jnlfield>y</jnlfield></vexa:publjnl>";
    QTest::newRow("communications with a capital are not")
        << "Section F"
        << "Research Communications"
        << "" << true
        << "Section F</jnlname><jnlcategory>Research Communications</jnlcategory>"
           "<jnlfield></jnlfield></vexa:publjnl>";
    QTest::newRow("communications of another journal are not")
        << "Journal Section F Letters"
        << "research communications"
        << "" << true
        << "Journal Section F Letters</jnlname><jnlcategory>research communications</jnlcategory>"
           "<jnlfield></jnlfield></vexa:publjnl>";
    QTest::newRow("commun of code d is not")
        << "Section D"
        << "commun"
        << "" << true
        << "Section "
           "D</jnlname><jnlcategory>commun</jnlcategory><jnlfield></jnlfield></vexa:publjnl>";
    QTest::newRow("without field")
        << "Section C"
        << "Research Papers"
        << "sas" << false
        << "Section C</jnlname><jnlcategory>Research Papers</jnlcategory>"
           "</vexa:publjnl>";
    QTest::newRow("without field there are no communications")
        << "Section B or F"
        << "commun"
        << "" << false
        << "Section B or F</jnlname><jnlcategory>commun</jnlcategory></vexa:publjnl>";
    QTest::newRow("nothing is escaped")
        << "A & B <C"
        << "x & y <z>"
        << "\"&\"" << true
        << "A & B <C</jnlname><jnlcategory>x & y <z></jnlcategory><jnlfield>\"&\"</jnlfield>"
           "</vexa:publjnl>";
}

void tst_JournalMetadata::shapes()
{
    QFETCH(QString, jnl);
    QFETCH(QString, cat);
    QFETCH(QString, field);
    QFETCH(bool, withField);
    QFETCH(QString, behindOpening);
    const MetadataShape shape = withField ? MetadataShape::WithField : MetadataShape::WithoutField;
    QCOMPARE(makeJournalMetadata(jnl, cat, field, shape).xml, opening + behindOpening);
}

QTEST_GUILESS_MAIN(tst_JournalMetadata)
#include "tst_journalmetadata.moc"
