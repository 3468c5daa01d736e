#include "measurement/RecordList.h"

#include <QtTest>

#include <algorithm>
#include <deque>
#include <random>

namespace {

constexpr int chunk = 2048; // records

using List = measurement::RecordList<const int>;
using Model = std::deque<const int *>;

/// As many addresses as wanted, all different.
const int *address(std::size_t number)
{
    static const std::vector<int> numbers(1000 * chunk);
    return numbers.data() + number % numbers.size();
}

bool areSame(const List &list, const Model &model)
{
    if (list.size() != static_cast<int>(model.size()) || list.isEmpty() != model.empty())
        return false;
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i) != model[static_cast<std::size_t>(i)])
            return false;
    }
    return std::equal(list.begin(), list.end(), model.begin(), model.end());
}

List &fill(List &list, int count)
{
    for (int i = 0; i < count; ++i)
        list.append(address(static_cast<std::size_t>(i)));
    return list;
}

} // namespace

/// The lists of an engine's records.
class RecordListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void empty();
    void sizes_data();
    void sizes();
    void queue_data();
    void queue();
    void randomQueue();
    void recordsStayInPlace();
    void clearAndFillAgain();
    void swap();
    void iterators();
};

void RecordListTest::empty()
{
    const List list;
    QVERIFY(list.isEmpty());
    QCOMPARE(list.size(), 0);
    QVERIFY(list.begin() == list.end());
    QVERIFY(list.cbegin() == list.cend());
}

void RecordListTest::sizes_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {1, 2, chunk - 1, chunk, chunk + 1, 16 * chunk, 16 * chunk + 1, 70 * chunk + 5})
        QTest::addRow("%d", count) << count;
}

void RecordListTest::sizes()
{
    QFETCH(int, count);
    List list;
    fill(list, count);
    QCOMPARE(list.size(), count);
    QVERIFY(!list.isEmpty());
    QCOMPARE(list.first(), address(0));
    QCOMPARE(list.last(), address(static_cast<std::size_t>(count) - 1));
    for (int i = 0; i < count; ++i) {
        if (list[i] != address(static_cast<std::size_t>(i)))
            QCOMPARE(list[i], address(static_cast<std::size_t>(i)));
    }
    for (int i = 0; i < count; ++i) {
        if (list.takeFirst() != address(static_cast<std::size_t>(i)))
            QFAIL(qPrintable(QStringLiteral("taken in another order at %1").arg(i)));
    }
    QVERIFY(list.isEmpty());
}

void RecordListTest::queue_data()
{
    QTest::addColumn<int>("kept");
    // The ring of chunks wraps around, and grows when it is not at its start.
    for (const int kept : {0, 1, chunk - 1, chunk, 3 * chunk + 7, 15 * chunk, 16 * chunk, 40 * chunk})
        QTest::addRow("%d", kept) << kept;
}

void RecordListTest::queue()
{
    QFETCH(int, kept);
    List list;
    Model model;
    for (std::size_t i = 0; i < 100 * chunk; ++i) {
        list.append(address(i));
        model.push_back(address(i));
        if (list.size() > kept) {
            QVERIFY(list.takeFirst() == model.front());
            model.pop_front();
        }
    }
    QVERIFY(areSame(list, model));
}

void RecordListTest::randomQueue()
{
    std::mt19937 random(7);
    std::size_t number = 0;
    List list;
    Model model;
    for (int turn = 0; turn < 300; ++turn) {
        const unsigned int most = turn % 10 == 0 ? 40 * chunk : 3 * chunk;
        for (unsigned int i = random() % most; i > 0; --i) {
            list.append(address(number));
            model.push_back(address(number++));
        }
        for (unsigned int i = random() % most; i > 0 && !model.empty(); --i) {
            QVERIFY(list.takeFirst() == model.front());
            model.pop_front();
        }
        QVERIFY(areSame(list, model));
    }
}

/// What an append may cost depends on this.
void RecordListTest::recordsStayInPlace()
{
    List list;
    list.append(address(0));
    const int *const *const place = &list.at(0);
    for (std::size_t i = 1; i < 200 * chunk; ++i)
        list.append(address(i));
    QCOMPARE(&list.at(0), place);
}

void RecordListTest::clearAndFillAgain()
{
    List list;
    fill(list, 20 * chunk);
    list.takeFirst();
    list.clear();
    QVERIFY(list.isEmpty());
    QVERIFY(list.begin() == list.end());
    list.clear();
    list.append(address(5));
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.first(), address(5));
    QCOMPARE(list.last(), address(5));
}

void RecordListTest::swap()
{
    List a;
    List b;
    fill(a, 5 * chunk);
    a.takeFirst();
    b.append(address(77));
    a.swap(b);
    QCOMPARE(a.size(), 1);
    QCOMPARE(a.first(), address(77));
    QCOMPARE(b.size(), 5 * chunk - 1);
    QCOMPARE(b.first(), address(1));
    a.append(address(78));
    b.append(address(79));
    QCOMPARE(a.last(), address(78));
    QCOMPARE(b.last(), address(79));
}

void RecordListTest::iterators()
{
    List list;
    fill(list, 3 * chunk);
    for (int i = 0; i < 100; ++i)
        list.takeFirst();
    List::const_iterator it = list.begin();
    QCOMPARE(*it, address(100));
    QCOMPARE(*it++, address(100));
    QCOMPARE(*it, address(101));
    QCOMPARE(*++it, address(102));
    QCOMPARE(*it--, address(102));
    QCOMPARE(*--it, address(100));
    QCOMPARE(it[chunk], address(100 + chunk));
    QCOMPARE(*(it + 2), address(102));
    QCOMPARE(*(2 + it), address(102));
    QCOMPARE(*(list.end() - 1), list.last());
    QCOMPARE(list.end() - list.begin(), std::ptrdiff_t(list.size()));
    QVERIFY(list.begin() < list.end());
    QVERIFY(list.begin() != list.end());
    // In the order of the addresses.
    const auto found = std::lower_bound(list.cbegin(), list.cend(), address(2 * chunk));
    QCOMPARE(found - list.cbegin(), std::ptrdiff_t(2 * chunk - 100));
}

QTEST_APPLESS_MAIN(RecordListTest)
#include "RecordListTest.moc"
