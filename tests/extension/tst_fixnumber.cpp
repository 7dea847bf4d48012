// SPDX-FileCopyrightText: The parkomat-plugin authors
// SPDX-License-Identifier: MIT
#include "extension/fixnumber.h"

#include "support/testcase.h"

#include <limits>

static_assert(!std::is_constructible_v<FixNumber, int, double>);
static_assert(!std::is_constructible_v<FixNumber, int, float>);
static_assert(!std::is_constructible_v<FixNumber, int, long double>);
static_assert(!std::is_convertible_v<double, FixNumber>);
static_assert(!std::is_convertible_v<int, FixNumber>);

namespace {
constexpr qint64 LOWEST = std::numeric_limits<qint64>::min();
constexpr qint64 HIGHEST = std::numeric_limits<qint64>::max();

/// A whole number of any size, as a sign and decimal digits: slow, and built on nothing that FixNumber stands on.
struct BigNumber
{
    bool isNegative;
    /// Without leading zeros; empty for zero.
    QByteArray digits;
};

BigNumber big(qint64 value, const QByteArray &zeros = QByteArray())
{
    const QByteArray text = QByteArray::number(value);
    if (value == 0)
        return {false, QByteArray()};
    return value < 0 ? BigNumber{true, text.mid(1) + zeros} : BigNumber{false, text + zeros};
}

bool isShorterOrLess(const QByteArray &left, const QByteArray &right)
{
    return left.size() != right.size() ? left.size() < right.size() : left < right;
}

/// left + sign * right, digit by digit from the last; left is not the lesser one.
QByteArray combined(const QByteArray &left, const QByteArray &right, int sign)
{
    QByteArray digits;
    int carry = 0;
    for (int i = 1; i <= left.size() || carry != 0; ++i) {
        const int l = i <= left.size() ? left.at(left.size() - i) - '0' : 0;
        const int r = i <= right.size() ? right.at(right.size() - i) - '0' : 0;
        const int digit = l + sign * r + carry;
        carry = digit < 0 ? -1 : digit / 10;
        digits.prepend(static_cast<char>('0' + (digit + 10) % 10));
    }
    while (digits.startsWith('0'))
        digits.remove(0, 1);
    return digits;
}

BigNumber sum(const BigNumber &left, const BigNumber &right)
{
    if (isShorterOrLess(left.digits, right.digits))
        return sum(right, left);
    const int sign = left.isNegative == right.isNegative ? 1 : -1;
    return {left.isNegative, combined(left.digits, right.digits, sign)};
}

BigNumber difference(const BigNumber &left, const BigNumber &right)
{
    return sum(left, {!right.isNegative, right.digits});
}

bool isBeyond(const BigNumber &number)
{
    return isShorterOrLess(number.isNegative ? big(LOWEST).digits : big(HIGHEST).digits, number.digits);
}

qint64 nearest(const BigNumber &number)
{
    if (isBeyond(number))
        return number.isNegative ? LOWEST : HIGHEST;
    return ((number.isNegative ? "-" : "+") + number.digits).toLongLong();
}

QByteArray zeros(int coarse, int fine)
{
    return QByteArray::number(fine / coarse).mid(1);
}

/// The edges of the range, of every scale within it, and of its middle.
QList<qint64> edges()
{
    QList<qint64> values = {0, 1, -1, 150, -150, 99, 101, -99, -101};
    for (const qint64 end : {LOWEST, HIGHEST}) {
        for (const qint64 factor : {1, 2, 10, 100, 1000, 1'000'000'000}) {
            for (const qint64 step : {-1, 0, 1}) {
                const bool isInside = factor != 1 || (end == LOWEST ? step >= 0 : step <= 0);
                if (isInside)
                    values.append(end / factor + step);
            }
        }
    }
    return values;
}

void compareWithLog(const FixNumber &actual, const BigNumber &exact, int scale, const QByteArray &what)
{
    const QList<LogLine> lines = MessageLog::take();
    QVERIFY2(actual.scale() == scale, what);
    QVERIFY2(actual.value() == nearest(exact), what);
    QVERIFY2(lines.size() == (isBeyond(exact) ? 1 : 0), what);
    QVERIFY2(lines.isEmpty() || lines.at(0).level == QtCriticalMsg, what);
}
} // namespace

class FixNumberTest : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void fixNumber_byDefault_isZeroInHundredths()
    {
        QCOMPARE(FixNumber().scale(), 100);
        QCOMPARE(FixNumber().value(), 0);
        QCOMPARE(FixNumber().toString(), QStringLiteral("0.00"));
    }

    void scale_given_isKeptOrReplaced_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<int>("taken");
        for (const int good : {1, 10, 100, 1000, 10'000, 100'000, 1'000'000, 10'000'000, 100'000'000, 1'000'000'000})
            QTest::addRow("%d", good) << good << good;
        for (const int bad : {0, -1, -100, 2, 5, 9, 11, 50, 99, 101, 1001, 999'999'999, 1'000'000'001, 2'000'000'000,
                              std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
            QTest::addRow("%d", bad) << bad << 100;
    }

    void scale_given_isKeptOrReplaced()
    {
        QFETCH(int, scale);
        QFETCH(int, taken);
        const FixNumber fromValue(scale, qint64(7));
        const FixNumber fromText(scale, QStringLiteral("7"));
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(fromValue.scale(), taken);
        QCOMPARE(fromValue.value(), 7);
        QCOMPARE(fromText.scale(), taken);
        QCOMPARE(fromText.value(), qint64(7) * taken);
        QCOMPARE(lines.size(), scale == taken ? 0 : 2);
        for (const LogLine &line : lines) {
            QCOMPARE(line.level, QtCriticalMsg);
            QVERIFY(line.text.contains(QString::number(scale)));
        }
    }

    void text_read_isItsNumber_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<qint64>("value");
        const auto row = [](int scale, const char *text, qint64 value) {
            QTest::addRow("%s at %d", text, scale) << scale << QString::fromUtf8(text) << value;
        };
        row(100, "0", 0);
        row(100, "150", 15000);
        row(100, "+150", 15000);
        row(100, "-150", -15000);
        row(100, "150.00", 15000);
        row(100, "150.5", 15050);
        row(100, "150.05", 15005);
        row(100, "000150.50", 15050);
        row(100, "-0.05", -5);
        row(100, "-0", 0);
        row(100, "-0.00", 0);
        row(100, "0.009", 0);
        row(100, "0.999", 99);
        row(100, "-0.999", -99);
        row(100, "1.23456789012345678901234567890", 123);
        row(1, "7.99", 7);
        row(1, "-7.99", -7);
        row(10, "7.99", 79);
        row(1000, "7.99", 7990);
        row(1'000'000'000, "1.000000001", 1'000'000'001);
        row(1'000'000'000, "1.0000000019", 1'000'000'001);
        row(100, "92233720368547758.07", HIGHEST);
        row(100, "-92233720368547758.08", LOWEST);
        row(100, "92233720368547758.079", HIGHEST);
        row(100, "-92233720368547758.089", LOWEST);
        row(1, "9223372036854775807", HIGHEST);
        row(1, "-9223372036854775808", LOWEST);
        row(1, "-9223372036854775807", -HIGHEST);
        row(1'000'000'000, "9223372036.854775807", HIGHEST);
        row(1'000'000'000, "-9223372036.854775808", LOWEST);
        QTest::newRow("zeros before") << 100 << QString(100'000, QLatin1Char('0')) + QStringLiteral("1.5")
                                      << qint64(150);
        QTest::newRow("decimals beyond count")
            << 100 << QStringLiteral("1.") + QString(100'000, QLatin1Char('9')) << qint64(199);
    }

    void text_read_isItsNumber()
    {
        QFETCH(int, scale);
        QFETCH(QString, text);
        QFETCH(qint64, value);
        QCOMPARE(FixNumber(scale, text).value(), value);
    }

    void text_beyondTheRange_saturatesWithOneLine_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("isNegative");
        const auto row = [](int scale, const char *text, bool isNegative) {
            QTest::addRow("%s at %d", text, scale) << scale << QString::fromUtf8(text) << isNegative;
        };
        row(100, "92233720368547758.08", false);
        row(100, "-92233720368547758.09", true);
        row(100, "92233720368547759", false);
        row(100, "-92233720368547759", true);
        row(1, "9223372036854775808", false);
        row(1, "-9223372036854775809", true);
        row(1, "18446744073709551616", false);
        row(1, "340282366920938463463374607431768211456", false);
        row(1, "-340282366920938463463374607431768211456", true);
        row(1'000'000'000, "9223372036854775807", false);
        row(1'000'000'000, "-9223372036854775808", true);
        row(1'000'000'000, "9223372036.854775808", false);
        QTest::newRow("long") << 100 << QString(100'000, QLatin1Char('9')) << false;
        QTest::newRow("long with decimals")
            << 1'000'000'000 << QLatin1Char('-') + QString(100'000, QLatin1Char('9')) + QStringLiteral(".0000000000")
            << true;
    }

    void text_beyondTheRange_saturatesWithOneLine()
    {
        QFETCH(int, scale);
        QFETCH(QString, text);
        QFETCH(bool, isNegative);
        const FixNumber number(scale, text);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(number.value(), isNegative ? LOWEST : HIGHEST);
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).level, QtCriticalMsg);
        QVERIFY(lines.at(0).text.contains(number.toString()));
    }

    void text_thatIsNoNumber_isZero_data()
    {
        QTest::addColumn<QString>("text");
        for (const char *text : {"",
                                 " ",
                                 "+",
                                 "-",
                                 ".",
                                 "-.",
                                 "+.5",
                                 ".5",
                                 "150.",
                                 "-150.",
                                 " 150",
                                 "150 ",
                                 "1 50",
                                 "\t150",
                                 "150\n",
                                 "1e3",
                                 "1E3",
                                 "1,5",
                                 "1,000",
                                 "1'000",
                                 "1.5.5",
                                 "1..5",
                                 "--1",
                                 "+-1",
                                 "-+1",
                                 "1-",
                                 "0x10",
                                 "150р",
                                 "руб.",
                                 "nan",
                                 "inf",
                                 "1.-5",
                                 "1.+5",
                                 "1. 5",
                                 "− 1",
                                 "−1",
                                 "١٥٠",
                                 "１５０",
                                 "१५०",
                                 "1٫5",
                                 "150.٥",
                                 "½",
                                 "1.5e2",
                                 "150.00 ",
                                 "\"150\"",
                                 "1_000",
                                 "$1",
                                 "1.5руб",
                                 "+",
                                 "99999999999999999999x",
                                 "150.99999999999999999999x"})
            QTest::addRow("\"%s\"", text) << QString::fromUtf8(text);
        QTest::newRow("null") << QString();
        QTest::newRow("embedded NUL") << QString::fromLatin1("150\0"
                                                             "0",
                                                             5);
        QTest::newRow("NUL at the end") << QString::fromLatin1("150\0", 4);
        QTest::newRow("no-break space") << QString::fromUtf8("1\u00a0500");
        QTest::newRow("byte order mark") << QString(QChar(0xfeff)) + QStringLiteral("150");
    }

    void text_thatIsNoNumber_isZero()
    {
        QFETCH(QString, text);
        QCOMPARE(FixNumber(100, text).value(), 0);
        QCOMPARE(FixNumber(100, text).scale(), 100);
    }

    void toString_ofANumber_hasTheScalesDecimals_data()
    {
        QTest::addColumn<int>("scale");
        QTest::addColumn<qint64>("value");
        QTest::addColumn<QString>("text");
        const auto row = [](int scale, qint64 value, const char *text) {
            QTest::addRow("%s", text) << scale << value << QString::fromLatin1(text);
        };
        row(100, 15000, "150.00");
        row(100, 5, "0.05");
        row(100, -5, "-0.05");
        row(100, -99, "-0.99");
        row(100, -100, "-1.00");
        row(100, -15005, "-150.05");
        row(1, 0, "0");
        row(1, -7, "-7");
        row(10, -7, "-0.7");
        row(1000, 1, "0.001");
        row(1'000'000'000, 1, "0.000000001");
        row(1'000'000'000, -1'000'000'000, "-1.000000000");
        row(1, HIGHEST, "9223372036854775807");
        row(1, LOWEST, "-9223372036854775808");
        row(100, HIGHEST, "92233720368547758.07");
        row(100, LOWEST, "-92233720368547758.08");
        row(1'000'000'000, HIGHEST, "9223372036.854775807");
        row(1'000'000'000, LOWEST, "-9223372036.854775808");
    }

    void toString_ofANumber_hasTheScalesDecimals()
    {
        QFETCH(int, scale);
        QFETCH(qint64, value);
        QFETCH(QString, text);
        QCOMPARE(FixNumber(scale, value).toString(), text);
    }

    void text_ofAnyNumber_readsBack()
    {
        for (const int scale : {1, 10, 100, 1000, 1'000'000'000}) {
            for (const qint64 value : edges())
                QCOMPARE(FixNumber(scale, FixNumber(scale, value).toString()).value(), value);
        }
    }

    void arithmetic_atEveryEdge_isExactOrSaturates_data()
    {
        QTest::addColumn<int>("left");
        QTest::addColumn<int>("right");
        for (const int left : {1, 10, 100, 1'000'000, 1'000'000'000}) {
            for (const int right : {1, 10, 100, 1'000'000, 1'000'000'000})
                QTest::addRow("%d and %d", left, right) << left << right;
        }
    }

    void arithmetic_atEveryEdge_isExactOrSaturates()
    {
        QFETCH(int, left);
        QFETCH(int, right);
        const int finer = std::max(left, right);
        for (const qint64 l : edges()) {
            const BigNumber bigLeft = big(l, zeros(left, finer));
            for (const qint64 r : edges()) {
                const BigNumber bigRight = big(r, zeros(right, finer));
                const QByteArray what = QByteArray::number(l) + " and " + QByteArray::number(r);
                const FixNumber added = FixNumber(left, l) + FixNumber(right, r);
                compareWithLog(added, sum(bigLeft, bigRight), finer, what + " added");
                const FixNumber subtracted = FixNumber(left, l) - FixNumber(right, r);
                compareWithLog(subtracted, difference(bigLeft, bigRight), finer, what + " subtracted");
                if (QTest::currentTestFailed())
                    return;
            }
        }
    }

    void comparison_atEveryEdge_goesByNumber_data() { arithmetic_atEveryEdge_isExactOrSaturates_data(); }

    void comparison_atEveryEdge_goesByNumber()
    {
        QFETCH(int, left);
        QFETCH(int, right);
        const int finer = std::max(left, right);
        for (const qint64 l : edges()) {
            for (const qint64 r : edges()) {
                const BigNumber exact = difference(big(l, zeros(left, finer)), big(r, zeros(right, finer)));
                const bool isEqual = exact.digits.isEmpty();
                const bool isLess = !isEqual && exact.isNegative;
                const FixNumber a(left, l);
                const FixNumber b(right, r);
                const QByteArray what = QByteArray::number(l) + " and " + QByteArray::number(r);
                QVERIFY2((a == b) == isEqual, what);
                QVERIFY2((a != b) == !isEqual, what);
                QVERIFY2((a < b) == isLess, what);
                QVERIFY2((a <= b) == (isLess || isEqual), what);
                QVERIFY2((a > b) == !(isLess || isEqual), what);
                QVERIFY2((a >= b) == !isLess, what);
            }
        }
    }

    void arithmetic_byHand_holds_data()
    {
        QTest::addColumn<QString>("sum");
        QTest::addColumn<FixNumber>("actual");
        QTest::newRow("1.50 + 0.005") << QStringLiteral("1.505")
                                      << FixNumber(100, qint64(150)) + FixNumber(1000, qint64(5));
        QTest::newRow("1 - 0.01") << QStringLiteral("0.99") << FixNumber(1, qint64(1)) - FixNumber(100, qint64(1));
        QTest::newRow("0.01 - 1") << QStringLiteral("-0.99") << FixNumber(100, qint64(1)) - FixNumber(1, qint64(1));
        QTest::newRow("lowest + highest")
            << QStringLiteral("-0.01") << FixNumber(100, LOWEST) + FixNumber(100, HIGHEST);
        QTest::newRow("-1 - lowest") << QStringLiteral("9223372036854775807")
                                     << FixNumber(1, qint64(-1)) - FixNumber(1, LOWEST);
    }

    void arithmetic_byHand_holds()
    {
        QFETCH(QString, sum);
        QFETCH(FixNumber, actual);
        QCOMPARE(actual.toString(), sum);
    }

    void saturation_ofASum_saysWhatHappened()
    {
        QCOMPARE((FixNumber(100, HIGHEST) + FixNumber(100, qint64(1))).value(), HIGHEST);
        const QList<LogLine> lines = MessageLog::take();
        QCOMPARE(lines.size(), 1);
        QCOMPARE(lines.at(0).category, QStringLiteral("terminal.extension"));
        QVERIFY2(lines.at(0).text.contains(QStringLiteral("92233720368547758.07")), qPrintable(lines.at(0).text));
    }
};

TEST_MAIN(FixNumberTest)
#include "tst_fixnumber.moc"
