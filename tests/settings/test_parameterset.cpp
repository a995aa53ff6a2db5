// Token encoding and reading of parameter sets, and the key vocabulary.

#include "settings/gwParamKeys.h"
#include "settings/gwParameterSet.h"

#include <QSet>

#include <limits>

#include <gtest/gtest.h>

using PS = CgwParameterSet;

TEST(ParameterSet, TokensRoundTrip)
{
    for (bool b : {true, false})
        EXPECT_EQ(PS::boolFromValue(PS::valueFromBool(b)), b);
    for (double d : {2.2, -0.5, 0.0, 0.00016, 1e-30, 123456.0, 2.2e15})
        EXPECT_DOUBLE_EQ(PS::doubleFromValue(PS::valueFromDouble(d)), d) << d;
    for (qint64 v : {qint64(0), qint64(-17), std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()})
        EXPECT_EQ(PS::longLongFromValue(PS::valueFromLongLong(v)), v);
    for (quint64 v : {quint64(0), quint64(4096), std::numeric_limits<quint64>::max()})
        EXPECT_EQ(PS::uLongLongFromValue(PS::valueFromULongLong(v)), v);
    for (const char* s : {"", " ", "New Job", "tab\there", "~", "~NULL", "~0020", "ä ö", "a  b "}) {
        QString text = QStringLiteral("unchanged");
        ASSERT_TRUE(PS::stringFromValue(PS::valueFromString(QString::fromUtf8(s)), 0, text)) << s;
        EXPECT_EQ(text, QString::fromUtf8(s));
    }
}

TEST(ParameterSet, EncodedForms)
{
    const struct {
        CgwQString encoded;
        const char* text;
    } cases[] = {
        {PS::valueFromBool(true), "TRUE "},
        {PS::valueFromBool(false), "FALSE "},
        {PS::valueFromDouble(2.2), "2.2 "},
        {PS::valueFromDouble(1.0 / 3.0), "0.333333 "}, // setNum keeps six digits
        {PS::valueFromLongLong(-17), "-17 "},
        {PS::valueFromULongLong(4096), "4096 "},
        {PS::valueFromString(""), "~NULL "},
        {PS::valueFromString(" "), "~0020 "},
        {PS::valueFromString("New Job"), "New~0020Job "},
        {PS::valueFromString("a\t~b"), "a~0009~007eb "},
        {PS::valueFromString("%&<"), "%&< "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.encoded.toQString(), QString::fromLatin1(c.text));
}

TEST(ParameterSet, ReadersPickTokensByTheExactRules)
{
    const struct {
        const char* value;
        int index;
        bool asBool;
        double asDouble;
    } cases[] = {
        {"TRUE ", 0, true, 0},     {"TRUE", 0, true, 0},         {"true ", 0, false, 0},
        {"TRUE\t", 0, false, 0},   {"FALSE TRUE ", 1, true, 0},  {"TRUE  ", 0, true, 0},
        {"1 2 3 ", 1, false, 2},   {"1 2 3 ", 2, false, 3},      {"1 2 3 ", 3, false, 0},
        {"1\t2 3 ", 1, false, 2},  {" 5 ", 0, false, 0},         {" 5 ", 1, false, 5},
        {"2.5 ", 0, false, 2.5},   {"2.5", 0, false, 2.5},       {"x ", 0, false, 0},
        {"", 0, false, 0},         {"7  8 ", 1, false, 8},
    };
    for (const auto& c : cases) {
        const QString value = QString::fromLatin1(c.value);
        EXPECT_EQ(PS::boolFromValue(value, c.index), c.asBool) << '"' << c.value << "\" " << c.index;
        EXPECT_DOUBLE_EQ(PS::doubleFromValue(value, c.index), c.asDouble) << '"' << c.value << "\" " << c.index;
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
    for (const char* bad : {"~", "~00", "~zzzz ", "~0041 ", "a~002", "~0x20 "}) {
        QString text = QStringLiteral("default");
        EXPECT_FALSE(PS::stringFromValue(QString::fromLatin1(bad), 0, text)) << bad;
        EXPECT_FALSE(PS::hasValidEscapes(QString::fromLatin1(bad))) << bad;
        PS set;
        set.setValue(QStringLiteral("Name"), QString::fromLatin1(bad));
        EXPECT_EQ(set.stringValue(QStringLiteral("Name"), QStringLiteral("default")), "default") << bad;
    }
    EXPECT_TRUE(PS::hasValidEscapes(QStringLiteral("~NULL ~0020 x~007e ")));
}

TEST(ParameterSet, MapSemantics)
{
    PS set;
    QString value = QStringLiteral("default");
    EXPECT_FALSE(set.getValue(QStringLiteral("Missing"), value));
    EXPECT_EQ(value, "default") << "a missing key leaves the caller's default";

    set.setValue(QStringLiteral("b"), QStringLiteral("1 "));
    set.setValue(QStringLiteral("B"), QStringLiteral("2 "));
    set.setValue(QStringLiteral("a"), QStringLiteral("3 "));
    set[QStringLiteral("A")] = QStringLiteral("4 ");
    set[QStringLiteral("Empty")];
    QStringList order;
    for (auto it = set.begin(); it != set.end(); ++it)
        order << it.key();
    EXPECT_EQ(order, (QStringList{"A", "B", "Empty", "a", "b"})) << "upper case sorts first";
    EXPECT_TRUE(set.getValue(QStringLiteral("Empty"), value));
    EXPECT_TRUE(value.isEmpty());

    PS copy;
    copy = set;
    set.clear();
    EXPECT_EQ(copy.count(), 5);
    EXPECT_TRUE(set.isEmpty());
}

TEST(ParameterSet, PresetListEncoding)
{
    SgwSelectiveColorPreset preset;
    preset.name = QStringLiteral("Warm skin");
    preset.first = 1;
    preset.second = -2;
    for (int i = 0; i < 6; ++i)
        preset.values[i] = i * 10;
    PS set;
    set.setPresetList(QStringLiteral("SCCPresets"), {preset, SgwSelectiveColorPreset()});
    EXPECT_EQ(set.stringValue(QStringLiteral("SCCPresets"), QString()), "2");
    QString raw;
    set.getValue(QStringLiteral("SCCPresets"), raw);
    EXPECT_EQ(raw, "2 Warm~0020skin 1 -2 0 10 20 30 40 50 ~NULL 0 0 0 0 0 0 0 0 ");
}

TEST(ParameterKeys, VocabularyIsCompleteAndExact)
{
    const QStringList keys = gwAllParamKeys();
    EXPECT_EQ(keys.size(), 676);
    EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), 676) << "every key once";
    EXPECT_EQ(GgwParam_FactoryDefault, "Factory Default");
    EXPECT_EQ(GgwParam_HotFolderDetailsVisible, "GgwParam_HotFolderDetailsVisible");
    EXPECT_EQ(GgwParam_Iptc_Application2_Caption, "Iptc.Application2.Caption");
    EXPECT_EQ(GgwParam_date, "date");
    EXPECT_EQ(keys.first(), "FilterName");
    EXPECT_EQ(keys.last(), "Iptc.Application2.Copyright");
}
