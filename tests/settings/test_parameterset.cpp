// Token encoding and reading of parameter sets, and the key vocabulary.

#include "settings/gwParamKeys.h"
#include "settings/gwParameterSet.h"

#include <QSet>

#include <limits>
#include <tuple>

#include <gtest/gtest.h>

using PS = CgwParameterSet;

TEST(ParameterSet, NumberTokensAndTheirWayBack)
{
    EXPECT_EQ(PS::valueFromDouble(1.0 / 3.0).toQString(), "0.333333 ") << "six digits";
    EXPECT_EQ(PS::valueFromLongLong(-17).toQString(), "-17 ");
    for (double d : {2.2, -0.5, 0.0, 0.00016, 1e-30, 123456.0, 2.2e15})
        EXPECT_DOUBLE_EQ(PS::doubleFromValue(PS::valueFromDouble(d)), d) << d;
    for (qint64 v : {qint64(0), qint64(-17), std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()})
        EXPECT_EQ(PS::longLongFromValue(PS::valueFromLongLong(v)), v);
    for (quint64 v : {quint64(0), quint64(4096), std::numeric_limits<quint64>::max()})
        EXPECT_EQ(PS::uLongLongFromValue(PS::valueFromULongLong(v)), v);
}

// Blanks, tabs and the tilde itself are escaped; text that looks like an escape comes back as it was.
TEST(ParameterSet, StringTokensAndTheirWayBack)
{
    const struct {
        const char* text;
        const char* encoded;
    } cases[] = {
        {"", "~NULL "}, {" ", "~0020 "}, {"New Job", "New~0020Job "}, {"a\t~b", "a~0009~007eb "},
        {"%&<", "%&< "}, {"~", "~007e "}, {"~NULL", "~007eNULL "}, {"~0020", "~007e0020 "},
        {"ä ö", "ä~0020ö "}, {"a  b ", "a~0020~0020b~0020 "},
    };
    for (const auto& c : cases) {
        const QString text = QString::fromUtf8(c.text);
        EXPECT_EQ(PS::valueFromString(text).toQString(), QString::fromUtf8(c.encoded)) << c.text;
        QString back = QStringLiteral("unchanged");
        ASSERT_TRUE(PS::stringFromValue(PS::valueFromString(text), 0, back)) << c.text;
        EXPECT_EQ(back, text);
    }
}

TEST(ParameterSet, ReadersPickTokensByTheExactRules)
{
    const std::tuple<QString, int, bool, double> cases[] = {
        {"TRUE ", 0, true, 0},     {"TRUE", 0, true, 0},         {"true ", 0, false, 0},
        {"TRUE\t", 0, false, 0},   {"FALSE TRUE ", 1, true, 0},  {"TRUE  ", 0, true, 0},
        {"1 2 3 ", 1, false, 2},   {"1 2 3 ", 2, false, 3},      {"1 2 3 ", 3, false, 0},
        {"1\t2 3 ", 1, false, 2},  {" 5 ", 0, false, 0},         {" 5 ", 1, false, 5},
        {"2.5 ", 0, false, 2.5},   {"2.5", 0, false, 2.5},       {"x ", 0, false, 0},
        {"", 0, false, 0},         {"7  8 ", 1, false, 8},
    };
    for (const auto& [value, index, asBool, asDouble] : cases) {
        EXPECT_EQ(PS::boolFromValue(value, index), asBool) << '"' << qPrintable(value) << "\" " << index;
        EXPECT_DOUBLE_EQ(PS::doubleFromValue(value, index), asDouble) << '"' << qPrintable(value) << "\" " << index;
    }
    EXPECT_EQ(PS::longLongFromValue(QStringLiteral("-3 4 "), 0), -3);
    EXPECT_EQ(PS::longLongFromValue(QStringLiteral("-3 4 "), 1), 4);

    int start = -1;
    int end = -1;
    EXPECT_FALSE(PS::findToken(QStringLiteral(" a"), 0, start, end));
    EXPECT_EQ(end, start - 1) << "no token leaves end one before start";
    EXPECT_TRUE(PS::findToken(QStringLiteral("ab cd "), 1, start, end));
    EXPECT_EQ(start, 3);
    EXPECT_EQ(end, 4);
}

TEST(ParameterSet, BrokenStringTokensAreRefused)
{
    QString text;
    for (const char* bad : {"~", "~00", "~zzzz ", "~0041 ", "a~002", "~0x20 "}) {
        EXPECT_FALSE(PS::stringFromValue(QString::fromLatin1(bad), 0, text)) << bad;
        EXPECT_FALSE(PS::hasValidEscapes(QString::fromLatin1(bad))) << bad;
    }
    EXPECT_TRUE(PS::hasValidEscapes(QStringLiteral("~NULL ~0020 x~007e ")));
}

TEST(ParameterSet, PresetListEncoding)
{
    const SgwSelectiveColorPreset preset{QStringLiteral("Warm skin"), 1, -2, {0, 10, 20, 30, 40, 50}};
    PS set;
    set.setPresetList(QStringLiteral("SCCPresets"), {preset, SgwSelectiveColorPreset()});
    QString raw;
    set.getValue(QStringLiteral("SCCPresets"), raw);
    EXPECT_EQ(raw, "2 Warm~0020skin 1 -2 0 10 20 30 40 50 ~NULL 0 0 0 0 0 0 0 0 ");
}

// Two names for one key would make two options share a value.
TEST(ParameterKeys, EveryKeyIsNamedOnce)
{
    const QStringList keys = gwAllParamKeys();
    EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), keys.size());
    EXPECT_FALSE(keys.contains(QString()));
}
