#include "gwTestProfiles.h"

namespace {

bool describe(const CgwLcmsProfile& profile, const QString& text)
{
    const std::unique_ptr<cmsMLU, decltype(&cmsMLUfree)> mlu(text.isNull() ? nullptr : cmsMLUalloc(nullptr, 1),
                                                             cmsMLUfree);
    return (text.isNull() || (mlu && cmsMLUsetASCII(mlu.get(), "en", "US", text.toLatin1().constData())))
           && cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, mlu.get());
}

// Takes the stage; it is freed when it cannot join the pipeline.
bool append(cmsPipeline* pipeline, cmsStage* stage)
{
    const bool joined = stage && cmsPipelineInsertStage(pipeline, cmsAT_END, stage);
    if (stage && !joined)
        cmsStageFree(stage);
    return joined;
}

// Identity curves around a grid of zeros: the smallest table that version 4
// lets Little CMS write.
bool writeClut(const CgwLcmsProfile& profile, cmsTagSignature tag, cmsUInt32Number in, cmsUInt32Number out)
{
    const std::unique_ptr<cmsPipeline, decltype(&cmsPipelineFree)> pipeline(cmsPipelineAlloc(nullptr, in, out),
                                                                           cmsPipelineFree);
    return pipeline && append(pipeline.get(), cmsStageAllocToneCurves(nullptr, in, nullptr))
           && append(pipeline.get(), cmsStageAllocCLut16bit(nullptr, 2, in, out, nullptr))
           && append(pipeline.get(), cmsStageAllocToneCurves(nullptr, out, nullptr))
           && cmsWriteTag(profile.get(), tag, pipeline.get());
}

} // namespace

QByteArray gwSavedProfile(cmsHPROFILE handle)
{
    const CgwLcmsProfile profile(handle);
    cmsUInt32Number size = 0;
    if (!profile || !cmsSaveProfileToMem(profile.get(), nullptr, &size))
        return QByteArray();
    QByteArray bytes(int(size), '\0');
    return cmsSaveProfileToMem(profile.get(), bytes.data(), &size) ? bytes : QByteArray();
}

QByteArray gwGrayProfileBytes()
{
    const std::unique_ptr<cmsToneCurve, decltype(&cmsFreeToneCurve)> gamma(cmsBuildGamma(nullptr, 2.2),
                                                                           cmsFreeToneCurve);
    return gwSavedProfile(cmsCreateGrayProfile(cmsD50_xyY(), gamma.get()));
}

QByteArray gwLutProfileBytes(cmsProfileClassSignature profileClass, cmsColorSpaceSignature space)
{
    CgwLcmsProfile profile(cmsCreateProfilePlaceholder(nullptr));
    const cmsUInt32Number channels = cmsChannelsOf(space);
    cmsSetProfileVersion(profile.get(), 4.3);
    cmsSetDeviceClass(profile.get(), profileClass);
    cmsSetColorSpace(profile.get(), space);
    cmsSetPCS(profile.get(), cmsSigLabData);
    const bool made = writeClut(profile, cmsSigAToB0Tag, channels, 3) && writeClut(profile, cmsSigBToA0Tag, 3, channels)
                      && describe(profile, QStringLiteral("Test LUT"));
    return made ? gwSavedProfile(profile.release()) : QByteArray();
}

QByteArray gwAsVersion2(const QByteArray& bytes)
{
    CgwLcmsProfile profile = gwOpenedByLcms(bytes);
    if (!profile)
        return QByteArray();
    // Reading the description first makes Little CMS write it anew in the
    // type of the new version instead of copying the old bytes.
    cmsReadTag(profile.get(), cmsSigProfileDescriptionTag);
    cmsSetProfileVersion(profile.get(), 2.1);
    return gwSavedProfile(profile.release());
}

QByteArray gwWithDescription(const QByteArray& bytes, const QString& text)
{
    CgwLcmsProfile profile = gwOpenedByLcms(bytes);
    return profile && describe(profile, text) ? gwSavedProfile(profile.release()) : QByteArray();
}
