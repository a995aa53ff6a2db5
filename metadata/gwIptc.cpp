#include "metadata/gwIptc.h"

#include "diagnostics/gwDebug.h"
#include "metadata/gwExiv2.h"
#include "metadata/gwIptcTable.h"
#include "settings/gwParamKeys.h"
#include "settings/gwParameterSet.h"

#include <functional>

namespace {

// The user's IPTC parameters and where they go, in the order of writing.
struct SgwIptcParam {
    const QString& param;
    const QString& exivKey;
};

const SgwIptcParam kParams[] = {
    {GgwParam_IPTCCaption, GgwParam_Iptc_Application2_Caption},
    {GgwParam_IPTCWriter, GgwParam_Iptc_Application2_Writer},
    {GgwParam_IPTCHeadline, GgwParam_Iptc_Application2_Headline},
    {GgwParam_IPTCSpecial, GgwParam_Iptc_Application2_SpecialInstructions},
    {GgwParam_IPTCKeywords, GgwParam_Iptc_Application2_Keywords},
    {GgwParam_IPTCByline, GgwParam_Iptc_Application2_Byline},
    {GgwParam_IPTCTitle, GgwParam_Iptc_Application2_BylineTitle},
    {GgwParam_IPTCCredits, GgwParam_Iptc_Application2_Credit},
    {GgwParam_IPTCSource, GgwParam_Iptc_Application2_Source},
    {GgwParam_IPTCObject, GgwParam_Iptc_Application2_ObjectName},
    {GgwParam_IPTCDate, GgwParam_Iptc_Application2_DateCreated},
    {GgwParam_IPTCCity, GgwParam_Iptc_Application2_City},
    {GgwParam_IPTCProvince, GgwParam_Iptc_Application2_ProvinceState},
    {GgwParam_IPTCCountry, GgwParam_Iptc_Application2_CountryName},
    {GgwParam_IPTCOTR, GgwParam_Iptc_Application2_TransmissionReference},
    {GgwParam_IPTCCopyright, GgwParam_Iptc_Application2_Copyright},
};

void eraseKey(Exiv2::IptcData& iptc, const Exiv2::IptcKey& key)
{
    for (auto it = iptc.findKey(key); it != iptc.end(); it = iptc.findKey(key))
        iptc.erase(it);
}

// Opens the file, lets `edit` change its IPTC block, writes it back. Exiv2's
// errors end here with one log line; the file is left as Exiv2 left it.
bool editIptc(const QString& location, const std::function<void(Exiv2::IptcData&)>& edit)
{
    return gwRunExiv2("CgwIptc::applyIptcToFile()", "storing IPTC data", [&] {
        std::unique_ptr<Exiv2::Image> image = gwOpenExiv2Image(location);
        Exiv2::IptcData iptc = image->iptcData();
        edit(iptc);
        image->setIptcData(iptc);
        image->writeMetadata();
    });
}

// The keywords of the parameter set: one string token each.
QStringList keywordsOf(const CgwParameterSet& params)
{
    QString value;
    params.getValue(GgwParam_IPTCKeywords, value);
    const qint64 count = params.longLongValue(GgwParam_IPTCKeywordCount, 0);
    QStringList keywords;
    QString keyword;
    for (int i = 0; i < count && CgwParameterSet::stringFromValue(value, i, keyword); ++i)
        keywords << keyword;
    return keywords;
}

void addKeywords(Exiv2::IptcData& iptc, const Exiv2::IptcKey& key, const QStringList& keywords)
{
    for (const QString& keyword : keywords) {
        Exiv2::StringValue value(keyword.toStdString());
        if (iptc.add(key, &value) != 0)
            gwDebugString(QStringLiteral("CgwImageFileJPG::writeIptcToFile() Keywords %1 could not be added to list "
                                         "of keywords.")
                              .arg(keyword));
    }
}

void applyParams(Exiv2::IptcData& iptc, const CgwParameterSet& params)
{
    for (const SgwIptcParam& row : kParams) {
        const Exiv2::IptcKey key(row.exivKey.toStdString());
        if (row.param == GgwParam_IPTCKeywords) {
            const QStringList keywords = keywordsOf(params);
            if (!keywords.isEmpty()) {
                eraseKey(iptc, key);
                addKeywords(iptc, key, keywords);
            }
            continue;
        }
        const QString text = params.stringValue(row.param, QString());
        if (text.isEmpty())
            continue;
        eraseKey(iptc, key);
        Exiv2::StringValue value(text.toStdString());
        iptc.add(key, &value);
    }
}

bool hasIptcParams(const CgwParameterSet& params)
{
    for (const SgwIptcParam& row : kParams)
        if (params.hasKey(row.param))
            return true;
    return false;
}

} // namespace

namespace {
// Every dataset in file order; repeatable ones keep all their values.
void collect(CgwIptc& iptc, const Exiv2::IptcData& data)
{
    for (const Exiv2::Iptcdatum& datum : data)
        iptc.addValue(datum.record() * 256 + datum.tag(), QString::fromStdString(datum.toString()));
}
} // namespace

bool CgwIptc::readIPTC(const QString& location)
{
    mValues.clear();
    return gwRunExiv2("CgwIptc::readIPTC()", "reading IPTC data", [&] {
        std::unique_ptr<Exiv2::Image> image = gwOpenExiv2Image(location);
        collect(*this, image->iptcData());
    });
}

bool CgwIptc::readBlock(const QByteArray& block)
{
    mValues.clear();
    return gwRunExiv2("CgwIptc::readBlock()", "decoding IPTC data", [&] {
        Exiv2::IptcData data;
        if (Exiv2::IptcParser::decode(data, reinterpret_cast<const Exiv2::byte*>(block.constData()),
                                      uint32_t(block.size()))
            != 0)
            throw Exiv2::Error(Exiv2::kerFailedToReadImageData);
        collect(*this, data);
    });
}

bool CgwIptc::applyToFile(const QString& location, const CgwParameterSet* params) const
{
    if (mValues.isEmpty() && !(params && hasIptcParams(*params)))
        return true; // nothing to write: the file stays untouched
    return editIptc(location, [&](Exiv2::IptcData& iptc) {
        for (auto it = mValues.constBegin(); it != mValues.constEnd(); ++it) {
            const Exiv2::IptcKey key(quint16(it.key() & 0xFF), quint16(it.key() >> 8));
            eraseKey(iptc, key);
            for (const QString& text : it.value()) {
                const std::unique_ptr<Exiv2::Value> value =
                    gwCreateExiv2Value(Exiv2::IptcDataSets::dataSetType(key.tag(), key.record()));
                if (value->read(text.toStdString()) == 0)
                    iptc.add(key, value.get());
            }
        }
        if (params)
            applyParams(iptc, *params);
    });
}

bool CgwIptc::applyIptcToFile(const QString& location, const CgwParameterSet& params)
{
    return editIptc(location, [&](Exiv2::IptcData& iptc) { applyParams(iptc, params); });
}

QString CgwIptc::valueAsText(int tag, QString& label, QString& key) const
{
    const auto row = gwIptcTextTable().constFind(tag);
    label = row == gwIptcTextTable().constEnd() ? QString() : row->label;
    key = row == gwIptcTextTable().constEnd() ? QString() : row->key;
    return value(tag);
}

int CgwIptc::textTableRows()
{
    return gwIptcTextRowCount();
}
