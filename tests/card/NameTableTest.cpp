// The fixed slots of the file names: names that fit, names that continue in the next slots, and
// slots that are never written.
#include "card/NameTable.h"

#include "tests/kit/TestMain.h"

#include <array>
#include <climits>
#include <memory>
#include <string>

#include <QByteArray>
#include <QObject>
#include <QTest>

using card::NameTable;

class NameTableTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void holds9999SlotsOf30Bytes();
    void freshSlotsAreEmpty();
    void nameOf29CharactersFitsItsSlot();
    void nameOf30CharactersRunsIntoTheNextSlot();
    void nameOfSeveralSlotsIsReadFromEachOfThem();
    void nextNameIsReadAfterTheFirst30CharactersOfALongOne();
    void shorterNameReplacesALongerOne();
    void slotsNotWrittenKeepTheirText();
    void nameInTheLastSlotIsCutWhereTheBlockEnds();
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
    bool surroundingsAreIntact() const
    {
        std::array<char, 64> canary{};
        canary.fill('#');
        return m_guarded->before == canary && m_guarded->after == canary;
    }

    std::unique_ptr<Guarded> m_guarded;
};

void NameTableTest::init()
{
    m_guarded = std::make_unique<Guarded>();
    m_guarded->before.fill('#');
    m_guarded->after.fill('#');
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

void NameTableTest::nameOf29CharactersFitsItsSlot()
{
    store(1, "next.mp4");
    store(0, "abcdefghijklmnopqrstuvwxy.mp4");
    QCOMPARE(name(0), QByteArray("abcdefghijklmnopqrstuvwxy.mp4"));
    QCOMPARE(name(1), QByteArray("next.mp4"));
}

void NameTableTest::nameOf30CharactersRunsIntoTheNextSlot()
{
    store(1, "next.mp4");
    store(0, "abcdefghijklmnopqrstuvwxyz.mp4");
    QCOMPARE(name(0), QByteArray("abcdefghijklmnopqrstuvwxyz.mp4"));
    QCOMPARE(name(1), QByteArray()); // the long name's terminating zero
}

void NameTableTest::nameOfSeveralSlotsIsReadFromEachOfThem()
{
    store(5, QByteArray(30, 'a') + QByteArray(30, 'b') + "ccc");
    QCOMPARE(name(5), QByteArray(30, 'a') + QByteArray(30, 'b') + "ccc");
    QCOMPARE(name(6), QByteArray(30, 'b') + "ccc");
    QCOMPARE(name(7), QByteArray("ccc"));
    QCOMPARE(name(4), QByteArray());
    QCOMPARE(name(8), QByteArray());
}

void NameTableTest::nextNameIsReadAfterTheFirst30CharactersOfALongOne()
{
    store(0, "abcdefghijklmnopqrstuvwxyz0123.mp4");
    store(1, "next.mp4");
    QCOMPARE(name(0), QByteArray("abcdefghijklmnopqrstuvwxyz0123next.mp4"));
    QCOMPARE(name(1), QByteArray("next.mp4"));
}

void NameTableTest::shorterNameReplacesALongerOne()
{
    store(3, "BELUN_0001.mp4");
    store(3, "a.mp4");
    QCOMPARE(name(3), QByteArray("a.mp4"));
    store(3, "");
    QCOMPARE(name(3), QByteArray());
}

void NameTableTest::slotsNotWrittenKeepTheirText()
{
    store(0, "zero.mp4");
    store(1, "one.mp4");
    store(2, "two.mp4");
    store(1, "new.mp4");
    QCOMPARE(name(0), QByteArray("zero.mp4"));
    QCOMPARE(name(1), QByteArray("new.mp4"));
    QCOMPARE(name(2), QByteArray("two.mp4"));
}

void NameTableTest::nameInTheLastSlotIsCutWhereTheBlockEnds()
{
    store(9998, "abcdefghijklmnopqrstuvwxyz0123456789");
    QCOMPARE(name(9998), QByteArray("abcdefghijklmnopqrstuvwxyz012"));
    QVERIFY(surroundingsAreIntact());
}

void NameTableTest::hugeNameIsCutWhereTheBlockEnds()
{
    store(0, QByteArray(400000, 'x'));
    QCOMPARE(name(0).size(), 299969);
    QCOMPARE(name(9998), QByteArray(29, 'x'));
    QVERIFY(surroundingsAreIntact());
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
    QVERIFY(surroundingsAreIntact());
    for (const int inside : {0, 1, 9871, 9997, 9998}) {
        QCOMPARE(name(inside), QByteArray());
    }
}

BELUN_TEST(NameTableTest)

#include "NameTableTest.moc"
