#include <QTest>
class DataReportFilesTest : public QObject
{
    Q_OBJECT
};
QTEST_MAIN(DataReportFilesTest)
#include "DataReportFilesTest.moc"
