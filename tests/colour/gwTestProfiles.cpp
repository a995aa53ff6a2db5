#include "gwTestProfiles.h"

#include "colour/gwLcmsHandles.h"

#include <QtEndian>

#include <memory>

namespace {

struct PipelineCloser {
    void operator()(cmsPipeline* pipeline) const { cmsPipelineFree(pipeline); }
};
struct MluCloser {
    void operator()(cmsMLU* mlu) const { cmsMLUfree(mlu); }
};
struct CurveCloser {
    void operator()(cmsToneCurve* curve) const { cmsFreeToneCurve(curve); }
};
using Pipeline = std::unique_ptr<cmsPipeline, PipelineCloser>;
using Mlu = std::unique_ptr<cmsMLU, MluCloser>;
using Curve = std::unique_ptr<cmsToneCurve, CurveCloser>;

QByteArray saved(const CgwLcmsProfile& profile)
{
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return QByteArray();
    QByteArray bytes(int(size), '\0');
    return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : QByteArray();
}

CgwLcmsProfile opened(const QByteArray& bytes)
{
    return CgwLcmsProfile(cmsOpenProfileFromMem(bytes.constData(), cmsUInt32Number(bytes.size())));
}

bool describe(const CgwLcmsProfile& profile, const QString& text)
{
    if (text.isNull())
        return cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, nullptr);
    const Mlu mlu(cmsMLUalloc(nullptr, 1));
    return mlu && cmsMLUsetASCII(mlu.get(), "en", "US", text.toLatin1().constData())
           && cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, mlu.get());
}

// Takes the stage; it is freed when it cannot join the pipeline.
bool append(cmsPipeline* pipeline, cmsStage* stage)
{
    if (stage && cmsPipelineInsertStage(pipeline, cmsAT_END, stage))
        return true;
    if (stage)
        cmsStageFree(stage);
    return false;
}

// Identity curves around a grid of zeros: the smallest table that version 4
// lets Little CMS write.
bool writeClut(const CgwLcmsProfile& profile, cmsTagSignature tag, int inputs, int outputs)
{
    const auto in = cmsUInt32Number(inputs);
    const auto out = cmsUInt32Number(outputs);
    const Pipeline pipeline(cmsPipelineAlloc(nullptr, in, out));
    return pipeline && append(pipeline.get(), cmsStageAllocToneCurves(nullptr, in, nullptr))
           && append(pipeline.get(), cmsStageAllocCLut16bit(nullptr, 2, in, out, nullptr))
           && append(pipeline.get(), cmsStageAllocToneCurves(nullptr, out, nullptr))
           && cmsWriteTag(profile.get(), tag, pipeline.get());
}

} // namespace

QByteArray gwSRGBProfileBytes()
{
    return saved(CgwLcmsProfile(cmsCreate_sRGBProfile()));
}

QByteArray gwGrayProfileBytes()
{
    const Curve gamma(cmsBuildGamma(nullptr, 2.2));
    return saved(CgwLcmsProfile(cmsCreateGrayProfile(cmsD50_xyY(), gamma.get())));
}

QByteArray gwLutProfileBytes(cmsProfileClassSignature profileClass, cmsColorSpaceSignature space)
{
    const CgwLcmsProfile profile(cmsCreateProfilePlaceholder(nullptr));
    const int channels = int(cmsChannelsOf(space));
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), profileClass);
    cmsSetColorSpace(profile.get(), space);
    cmsSetPCS(profile.get(), cmsSigLabData);
    const bool made = writeClut(profile, cmsSigAToB0Tag, channels, 3) && writeClut(profile, cmsSigBToA0Tag, 3, channels)
                      && describe(profile, QStringLiteral("Test LUT"));
    return made ? saved(profile) : QByteArray();
}

QByteArray gwInkLimitingLinkBytes()
{
    return saved(CgwLcmsProfile(cmsCreateInkLimitingDeviceLink(cmsSigCmykData, 300.0)));
}

QByteArray gwLabIdentityBytes()
{
    return saved(CgwLcmsProfile(cmsCreateLab4Profile(nullptr)));
}

QByteArray gwXYZIdentityBytes()
{
    return saved(CgwLcmsProfile(cmsCreateXYZProfile()));
}

QByteArray gwAsVersion2(const QByteArray& bytes)
{
    const CgwLcmsProfile profile = opened(bytes);
    if (!profile)
        return QByteArray();
    // Reading the description first makes Little CMS write it anew in the
    // type of the new version instead of copying the old bytes.
    cmsReadTag(profile.get(), cmsSigProfileDescriptionTag);
    cmsSetProfileVersion(profile.get(), 2.1);
    return saved(profile);
}

QByteArray gwWithDescription(const QByteArray& bytes, const QString& text)
{
    const CgwLcmsProfile profile = opened(bytes);
    return profile && describe(profile, text) ? saved(profile) : QByteArray();
}

quint32 gwBigEndian32(const QByteArray& bytes, int offset)
{
    return offset + 4 <= bytes.size() ? qFromBigEndian<quint32>(bytes.constData() + offset) : 0;
}

quint16 gwBigEndian16(const QByteArray& bytes, int offset)
{
    return offset + 2 <= bytes.size() ? qFromBigEndian<quint16>(bytes.constData() + offset) : 0;
}
