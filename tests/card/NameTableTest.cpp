// The fixed slots of the file names: names that fit, names that continue in the next slots, and
// slots that are never written.
#include "card/NameTable.h"

#include "tests/kit/TestMain.h"

#include <array>
#include <climits>
#include <memory>
#include <string>

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QPair>
#include <QTest>

using card::NameTable;

/// The number of a slot and a name.
using Named = QPair<int, QByteArray>;
using NamedSlots = QList<Named>;

class NameTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup(); // checks that nothing around the table was written

    void holds9999SlotsOf30Bytes();
    void freshSlotsAreEmpty();
    void namesAreReadAsStored_data();
    void namesAreReadAsStored();
    void hugeNameIsCutWhereTheBlockEnds();
    void slotOutsideTheTableIsNeitherWrittenNorRead_data();
    void slotOutsideTheTableIsNeitherWrittenNorRead();

private:
    /// A name table with a canary on either side.
    struct Guarded
    {
        std::array<char, 64> before;
        NameTable names;
        std::array<char, 64> after;
    };

    QByteArray name(int slot) const { return m_guarded->names[slot]; }
    void store(int slot, const QByteArray& name)
    {
        m_guarded->names.store(slot, {name.constData(), static_cast<std::size_t>(name.size())});
    }

    std::unique_ptr<Guarded> m_guarded;
};

void NameTableTest::init()
{
    m_guarded = std::make_unique<Guarded>();
    m_guarded->before.fill('#');
    m_guarded->after.fill('#');
}

void NameTableTest::cleanup()
{
    std::array<char, 64> canary{};
    canary.fill('#');
    QVERIFY(m_guarded->before == canary && m_guarded->after == canary);
}

void NameTableTest::holds9999SlotsOf30Bytes()
{
    QCOMPARE(NameTable::capacity, 9999);
    QCOMPARE(NameTable::slotSize, std::size_t{30});
    QCOMPARE(sizeof(NameTable), std::size_t{299970});
}

void NameTableTest::freshSlotsAreEmpty()
{
    for (int slot = 0; slot < 9999; ++slot) {
        QCOMPARE(name(slot), QByteArray());
    }
}

void NameTableTest::namesAreReadAsStored_data()
{
    QTest::addColumn<NamedSlots>("stored");
    QTest::addColumn<NamedSlots>("read");
    const auto row = [](const char* title, const NamedSlots& stored, const NamedSlots& read) {
        QTest::newRow(title) << stored << read;
    };
    row("29 characters fit a slot", {{1, "next.mp4"}, {0, "abcdefghijklmnopqrstuvwxy.mp4"}},
        {{0, "abcdefghijklmnopqrstuvwxy.mp4"}, {1, "next.mp4"}});
    row("30 characters end with a zero in the next slot",
        {{1, "next.mp4"}, {0, "abcdefghijklmnopqrstuvwxyz.mp4"}},
        {{0, "abcdefghijklmnopqrstuvwxyz.mp4"}, {1, ""}});
    const QByteArray long63 = QByteArray(30, 'a') + QByteArray(30, 'b') + "ccc";
    row("several slots", {{5, long63}},
        {{4, ""}, {5, long63}, {6, long63.mid(30)}, {7, "ccc"}, {8, ""}});
    row("next name after the first 30 characters of a long one",
        {{0, "abcdefghijklmnopqrstuvwxyz0123.mp4"}, {1, "next.mp4"}},
        {{0, "abcdefghijklmnopqrstuvwxyz0123next.mp4"}, {1, "next.mp4"}});
    row("shorter name replaces a longer one", {{3, "BELUN_0001.mp4"}, {3, "a.mp4"}},
        {{3, "a.mp4"}});
    row("empty name replaces a name", {{3, "a.mp4"}, {3, ""}}, {{3, ""}});
    row("slots not written keep their text",
        {{0, "zero.mp4"}, {1, "one.mp4"}, {2, "two.mp4"}, {1, "new.mp4"}},
        {{0, "zero.mp4"}, {1, "new.mp4"}, {2, "two.mp4"}});
    row("last slot is cut where the block ends", {{9998, "abcdefghijklmnopqrstuvwxyz0123456789"}},
        {{9998, "abcdefghijklmnopqrstuvwxyz012"}});
}

void NameTableTest::namesAreReadAsStored()
{
    QFETCH(NamedSlots, stored);
    QFETCH(NamedSlots, read);
    for (const Named& one : stored) {
        store(one.first, one.second);
    }
    for (const Named& one : read) {
        QCOMPARE(name(one.first), one.second);
    }
}

void NameTableTest::hugeNameIsCutWhereTheBlockEnds()
{
    store(0, QByteArray(400000, 'x'));
    QCOMPARE(name(0).size(), 299969);
    QCOMPARE(name(9998), QByteArray(29, 'x'));
}

void NameTableTest::slotOutsideTheTableIsNeitherWrittenNorRead_data()
{
    QTest::addColumn<int>("slot");

    for (const int slot : {-1, -128, 9999, 10000, INT_MIN, INT_MAX}) {
        QTest::newRow(QByteArray::number(slot).constData()) << slot;
    }
}

void NameTableTest::slotOutsideTheTableIsNeitherWrittenNorRead()
{
    QFETCH(int, slot);
    store(slot, "outside.mp4");
    QCOMPARE(name(slot), QByteArray());
    for (const int inside : {0, 1, 9871, 9997, 9998}) {
        QCOMPARE(name(inside), QByteArray());
    }
}

BELUN_TEST(NameTableTest)

#include "NameTableTest.moc"
