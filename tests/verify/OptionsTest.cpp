#include "verify/Options.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

using verify::Options;
using verify::WrongOption;

Q_DECLARE_METATYPE(WrongOption::Kind)
Q_DECLARE_METATYPE(std::vector<std::string>)

class OptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingComparesSizesOfAll();
    void everyOptionIsTaken();
    void valuesMayFollowAnEqualsSign();
    void namesAreTakenAsTheyAre();
    void wrongOnesAreRefused_data();
    void wrongOnesAreRefused();
    void timeoutsWithinTheLimits_data();
    void timeoutsWithinTheLimits();
};

void OptionsTest::nothingComparesSizesOfAll()
{
    const Options options = std::get<Options>(verify::readOptions({}));
    QCOMPARE(options.action, Options::Action::Compare);
    QVERIFY(!options.contents && !options.json && !options.wait);
    QCOMPARE(options.timeout, 15);
    QVERIFY(options.desktop.empty() && options.names.empty());
}

void OptionsTest::everyOptionIsTaken()
{
    const auto read = verify::readOptions(
        {"--content", "A.MP4", "--json", "--timeout", "3", "--desktop", "/d", "--wait", "B.MP4"});
    const Options options = std::get<Options>(read);
    QVERIFY(options.contents && options.json && options.wait);
    QCOMPARE(options.timeout, 3);
    QCOMPARE(options.desktop, std::string("/d"));
    QCOMPARE(options.names, (std::vector<std::string>{"A.MP4", "B.MP4"}));
    QCOMPARE(std::get<Options>(verify::readOptions({"--help"})).action, Options::Action::Help);
    QCOMPARE(std::get<Options>(verify::readOptions({"--version"})).action,
             Options::Action::Version);
}

void OptionsTest::valuesMayFollowAnEqualsSign()
{
    const auto read = verify::readOptions({"--timeout=7", "--desktop=a=b"});
    QCOMPARE(std::get<Options>(read).timeout, 7);
    QCOMPARE(std::get<Options>(read).desktop, std::string("a=b"));
}

void OptionsTest::namesAreTakenAsTheyAre()
{
    const auto read = verify::readOptions({"", "a b", "--", "--content", "--"});
    const Options options = std::get<Options>(read);
    QCOMPARE(options.names, (std::vector<std::string>{"", "a b", "--content", "--"}));
    QVERIFY(!options.contents);
}

void OptionsTest::wrongOnesAreRefused_data()
{
    using Kind = WrongOption::Kind;
    const support::Rows<std::vector<std::string>, Kind, QString> row("arguments", "kind", "option");
    row("unknown", {"--contents"}, Kind::Unknown, "--contents");
    row("unknown with a value", {"--x=1"}, Kind::Unknown, "--x=1");
    row("one dash", {"-c"}, Kind::Unknown, "-c");
    row("a dash alone", {"-"}, Kind::Unknown, "-");
    row("wrong after right", {"--json", "--jso"}, Kind::Unknown, "--jso");
    row("flag with a value", {"--json=yes"}, Kind::TakesNoValue, "--json");
    row("no time-out", {"--timeout"}, Kind::NeedsValue, "--timeout");
    row("no desktop", {"--desktop"}, Kind::NeedsValue, "--desktop");
    row("empty desktop", {"--desktop="}, Kind::EmptyValue, "--desktop");
    row("empty time-out", {"--timeout", ""}, Kind::EmptyValue, "--timeout");
    row("time-out zero", {"--timeout", "0"}, Kind::BadTimeout, "0");
    row("negative time-out", {"--timeout", "-1"}, Kind::BadTimeout, "-1");
    row("fraction", {"--timeout", "1.5"}, Kind::BadTimeout, "1.5");
    row("with a unit", {"--timeout", "5s"}, Kind::BadTimeout, "5s");
    row("too long", {"--timeout", "3601"}, Kind::BadTimeout, "3601");
    row("beyond an int", {"--timeout", "99999999999"}, Kind::BadTimeout, "99999999999");
}

void OptionsTest::wrongOnesAreRefused()
{
    QFETCH(std::vector<std::string>, arguments);
    const auto read = verify::readOptions(arguments);
    const auto* wrong = std::get_if<WrongOption>(&read);
    QVERIFY(wrong != nullptr);
    QTEST(wrong->kind, "kind");
    QTEST(QString::fromStdString(wrong->option), "option");
}

void OptionsTest::timeoutsWithinTheLimits_data()
{
    const support::Rows<QString, int> row("text", "seconds");
    row("shortest", "1", 1);
    row("longest", "3600", 3600);
    row("leading zeros", "0009", 9);
}

void OptionsTest::timeoutsWithinTheLimits()
{
    QFETCH(QString, text);
    const auto read = verify::readOptions({"--timeout", text.toStdString()});
    QTEST(std::get<Options>(read).timeout, "seconds");
}

BELUN_TEST(OptionsTest)

#include "OptionsTest.moc"
