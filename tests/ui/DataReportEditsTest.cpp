#include <QTest>
class DataReportEditsTest : public QObject
{
    Q_OBJECT
};
QTEST_MAIN(DataReportEditsTest)
#include "DataReportEditsTest.moc"
