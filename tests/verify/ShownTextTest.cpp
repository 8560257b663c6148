#include "verify/ShownText.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

using verify::Letters;

class ShownTextTest : public QObject
{
    Q_OBJECT

private slots:
    void nothingReachesTheTerminalThatItWouldObey_data();
    void nothingReachesTheTerminalThatItWouldObey();
    void everyControlCharacterIsEscaped();
    void noTwoTextsLookTheSame();
    void invalidUtf8HasNoLength_data();
    void invalidUtf8HasNoLength();
};

void ShownTextTest::nothingReachesTheTerminalThatItWouldObey_data()
{
    const support::Rows<QByteArray, QByteArray, QByteArray> rows("text", "utf8", "ascii");
    const auto row = [&rows](const char* tag, const QByteArray& text, const QByteArray& utf8,
                             const QByteArray& ascii = {}) {
        rows(tag, text, utf8, ascii.isEmpty() ? utf8 : ascii);
    };
    row("ordinary", "REC one & two.MP4", "REC one & two.MP4");
    row("escape sequence", "\x1b[31mred", "\\u{1B}[31mred");
    row("line end", "a\r\nb", "a\\u{D}\\u{A}b");
    row("zero byte", QByteArray("a\0b", 3), "a\\u{0}b");
    row("DEL", "a\x7f", "a\\u{7F}");
    row("C1 in UTF-8",
        "\xc2\x9b"
        "31m",
        "\\u{9B}31m");
    row("C1 as a byte",
        "\x9b"
        "31m",
        "\\x9B31m");
    row("right-to-left override",
        "a\xe2\x80\xae"
        "4PM",
        "a\\u{202E}4PM");
    row("isolate", "\xe2\x81\xa6x", "\\u{2066}x");
    row("zero width space", "a\xe2\x80\x8b", "a\\u{200B}");
    row("byte order mark", "\xef\xbb\xbf", "\\u{FEFF}");
    row("tag", "\xf3\xa0\x81\x81", "\\u{E0041}");
    row("Chinese", "\xe6\xb5\xb7", "\xe6\xb5\xb7", "\\u{6D77}");
    row("beyond 16 bits", "\xf0\x9f\x90\x9f", "\xf0\x9f\x90\x9f", "\\u{1F41F}");
    row("Latin-1 byte", "\xe9.MP4", "\\xE9.MP4");
    row("cut letter", "\xe6\xb5", "\\xE6\\xB5");
    row("backslash", "a\\x41", "a\\\\x41");
}

void ShownTextTest::nothingReachesTheTerminalThatItWouldObey()
{
    QFETCH(QByteArray, text);
    QTEST(QByteArray::fromStdString(verify::shownText(text.toStdString(), Letters::Utf8)), "utf8");
    QTEST(QByteArray::fromStdString(verify::shownText(text.toStdString(), Letters::Ascii)),
          "ascii");
}

void ShownTextTest::everyControlCharacterIsEscaped()
{
    for (char32_t letter = 0; letter < 0x3000; ++letter) {
        const QChar character(static_cast<ushort>(letter));
        const bool obeyed = character.category() == QChar::Other_Control ||
                            character.category() == QChar::Other_Format ||
                            character.category() == QChar::Separator_Line ||
                            character.category() == QChar::Separator_Paragraph;
        // These Arabic signs and the Syriac abbreviation mark are visible, although Unicode
        // classifies them as format characters.
        const bool seen = (letter >= 0x600 && letter <= 0x605) || letter == 0x6DD ||
                          letter == 0x70F || letter == 0x890 || letter == 0x891 || letter == 0x8E2;
        if (obeyed && !seen) {
            QVERIFY2(verify::isControl(letter), qPrintable(QString::number(letter, 16)));
        }
    }
}

void ShownTextTest::noTwoTextsLookTheSame()
{
    QVERIFY(verify::shownText("\\x9B", Letters::Utf8) != verify::shownText("\x9b", Letters::Utf8));
    QVERIFY(verify::shownText("\\u{1B}", Letters::Utf8) !=
            verify::shownText("\x1b", Letters::Utf8));
}

void ShownTextTest::invalidUtf8HasNoLength_data()
{
    const support::Rows<QByteArray> row("text");
    row("empty", QByteArray());
    row("continuation first", "\x80");
    row("overlong slash", "\xc0\xaf");
    row("overlong in three", "\xe0\x80\xaf");
    row("overlong in four", "\xf0\x80\x80\xaf");
    row("surrogate", "\xed\xa0\x80");
    row("beyond the last", "\xf4\x90\x80\x80");
    row("five bytes", "\xf8\x88\x80\x80\x80");
    row("cut", "\xf0\x9f\x90");
    row("letter inside", QByteArray("\xe6"
                                    "A\x80"));
}

void ShownTextTest::invalidUtf8HasNoLength()
{
    QFETCH(QByteArray, text);
    char32_t letter = 0;
    QCOMPARE(verify::decodeUtf8(text.toStdString(), letter), 0);
}

BELUN_TEST(ShownTextTest)

#include "ShownTextTest.moc"
