// hostToLong. No name server can be reached here, so unknown names fail immediately.
#include "http/HTTPClient.h"

#include "tests/kit/Rows.h"
#include "tests/kit/TestMain.h"

#include <cstring>

#include <QByteArray>
#include <QFile>
#include <QIODevice>
#include <QObject>
#include <QRegularExpression>
#include <QTest>

class HTTPClient_HostTest : public QObject
{
    Q_OBJECT

private slots:
    void hostBecomesAnAddress_data();
    void hostBecomesAnAddress();
    void knownNameGivesItsAddressInNetworkByteOrder();
};

/// Returns the bytes of the address in memory order as hexadecimal numbers.
static QByteArray bytesOf(unsigned int address)
{
    char bytes[4];
    static_assert(sizeof address == sizeof bytes);
    std::memcpy(bytes, &address, sizeof bytes);
    return QByteArray(bytes, sizeof bytes).toHex(' ');
}

void HTTPClient_HostTest::hostBecomesAnAddress_data()
{
    const support::Rows<QByteArray, QByteArray> row("host", "address");
    // A host without a byte from "A" to "z" is parsed by inet_addr().
    row("dotted address", "10.0.0.1", "0a 00 00 01");
    row("the camera", "192.168.1.120", "c0 a8 01 78");
    row("two numbers", "10.1", "0a 00 00 01");
    row("one number", "1", "00 00 00 01");
    row("octal digits", "010.0.0.1", "08 00 00 01");
    row("all ones", "255.255.255.255", "ff ff ff ff");
    row("empty", "", "ff ff ff ff");
    row("number too large", "256.0.0.1", "ff ff ff ff");
    row("five numbers", "1.2.3.4.5", "ff ff ff ff");
    row("byte before the letters", "@", "ff ff ff ff");
    row("byte after the letters", "{", "ff ff ff ff");
    row("minus", "10.0.0.1-", "ff ff ff ff");
    row("bytes outside ASCII", "\x80\xC1\xDA\xFF", "ff ff ff ff");

    // Each of these hosts contains a letter or one of the six characters between "Z" and "a", so
    // the client must look it up as a name, which fails (0). inet_addr() would return INADDR_NONE.
    row("underscore", "my_host", "00 00 00 00");
    row("first of the letters", "A!", "00 00 00 00");
    row("last of the letters", "z!", "00 00 00 00");
    row("bracket", "[", "00 00 00 00");
    row("backslash", "\\", "00 00 00 00");
    row("closing bracket", "]", "00 00 00 00");
    row("circumflex", "^", "00 00 00 00");
    row("grave accent", "`", "00 00 00 00");
    row("letter at the end only", "10.0.0.1.x", "00 00 00 00");
    row("letter after a byte outside ASCII", "\xE4.q", "00 00 00 00");
}

void HTTPClient_HostTest::hostBecomesAnAddress()
{
    QFETCH(QByteArray, host);
    QTEST(bytesOf(HTTPClient().hostToLong(host.toStdString())), "address");
}

void HTTPClient_HostTest::knownNameGivesItsAddressInNetworkByteOrder()
{
    QFile hosts("/etc/hosts");
    const QRegularExpression line("^127\\.0\\.0\\.1\\s+localhost\\b",
                                  QRegularExpression::MultilineOption);
    if (!hosts.open(QIODevice::ReadOnly) || !line.match(hosts.readAll()).hasMatch()) {
        // Clang rejects QSKIP with only a reason in C++17.
        QTest::qSkip("this system's /etc/hosts does not name 127.0.0.1 localhost", __FILE__,
                     __LINE__);
        return;
    }
    QCOMPARE(bytesOf(HTTPClient().hostToLong("localhost")), QByteArray("7f 00 00 01"));
}

BELUN_NETWORK_TEST(HTTPClient_HostTest)
#include "HTTPClient_HostTest.moc"
