#include <QTest>
class X : public QObject
{
    Q_OBJECT
};
QTEST_MAIN(X)
#include "tst_templategeneration.moc"
