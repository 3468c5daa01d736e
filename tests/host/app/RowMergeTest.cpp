#include "host/app/RowMerge.h"

#include <QtTest>

/// A row is a letter, which says what it stands for, and a digit, its contents.
class RowMergeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesTheRowsThoseWanted_data();
    void makesTheRowsThoseWanted();
};

void RowMergeTest::makesTheRowsThoseWanted_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QStringList>("wanted");
    QTest::addColumn<QString>("changes");

    QTest::newRow("nothing") << QStringList{} << QStringList{} << "";
    QTest::newRow("fills") << QStringList{} << QStringList{"A1", "B1"} << "+0 +1";
    QTest::newRow("empties") << QStringList{"A1", "B1"} << QStringList{} << "-1 -0";
    QTest::newRow("contents") << QStringList{"A1", "B1"} << QStringList{"A1", "B2"} << "";
    QTest::newRow("in front") << QStringList{"B1"} << QStringList{"A1", "B2"} << "+0";
    QTest::newRow("in between") << QStringList{"A1", "C1"} << QStringList{"A1", "B1", "C1"} << "+1";
    QTest::newRow("first goes") << QStringList{"A1", "B1", "C1"} << QStringList{"B1", "C1"} << "-0";
    QTest::newRow("replaced") << QStringList{"A1", "B1", "C1"} << QStringList{"A1", "D1", "C1"} << "-1 +1";
    QTest::newRow("exchanged") << QStringList{"A1", "B1"} << QStringList{"B2", "A2"} << "-1 +0";
}

void RowMergeTest::makesTheRowsThoseWanted()
{
    QFETCH(QStringList, rows);
    QFETCH(QStringList, wanted);
    QFETCH(QString, changes);

    QStringList seen;
    int endings = 0;
    host::RowChanges observer;
    observer.beginInsert = [&](int row) { seen << QStringLiteral("+%1").arg(row); };
    observer.beginRemove = [&](int row) { seen << QStringLiteral("-%1").arg(row); };
    observer.endInsert = observer.endRemove = [&] { ++endings; };
    std::vector<QString> merged(rows.begin(), rows.end());
    host::mergeRows(
        merged, std::vector<QString>(wanted.begin(), wanted.end()), observer,
        [](const QString &a, const QString &b) { return a[0] == b[0]; },
        [&](int row, const QString &now) { merged[std::size_t(row)] = now; });
    QCOMPARE(QStringList(merged.begin(), merged.end()), wanted);
    QCOMPARE(seen.join(' '), changes);
    QCOMPARE(endings, seen.size());
}

QTEST_GUILESS_MAIN(RowMergeTest)
#include "RowMergeTest.moc"
