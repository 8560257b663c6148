// The program on screens of various densities: the window scales with the density.
#include "tests/kit/DrivenProcess.h"
#include "tests/kit/TestMain.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

class DensityTest : public QObject
{
    Q_OBJECT

private slots:
    void everythingGrowsWithTheDensity_data();
    void everythingGrowsWithTheDensity();
};

void DensityTest::everythingGrowsWithTheDensity_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("96") << 1.0;
    QTest::newRow("97") << 97.0 / 96;
    QTest::newRow("144") << 1.5;
    QTest::newRow("192") << 2.0;
}

/// In window pixels, the window's size and the screen's density are the same as at 96 dpi.
void DensityTest::everythingGrowsWithTheDensity()
{
    QFETCH(double, scale);
    const QTemporaryDir folder;
    QVERIFY(folder.isValid());
    DrivenProcess program;
    program.start(
        folder.path(), QProcessEnvironment::systemEnvironment(),
        QStringLiteral("exec \"%1\" --dpi %2 \"$0\"")
            .arg(QStringLiteral(PRIVATE_DISPLAY), QString::fromLatin1(QTest::currentDataTag())));
    if (QTest::currentTestFailed()) {
        return;
    }
    const QByteArray answer = program.tell("screen");
    const QByteArray before("795 x 712, 96 dpi, scale ");
    QVERIFY2(answer.startsWith(before), answer);
    const double seen = answer.mid(before.size()).split('\n').first().toDouble();
    QVERIFY2(qAbs(seen - scale) < 1.0 / 65536, answer); // the resolution of Qt's factor
    program.close();
}

BELUN_TEST(DensityTest)

#include "DensityTest.moc"
