#include "colour/gwEngineProfile.h"

#include "colour/gwLcmsHandles.h"

#include <QFile>
#include <QMutexLocker>

#include <limits>

struct CgwEngineProfile::Engine {
    // Filled by the context's error handler; declared first so that it
    // outlives the context and the profile that report into it.
    QString lastError;
    CgwLcmsContext context;
    CgwLcmsProfile profile;
};

namespace {

constexpr quint32 kMaxBlock = quint32(std::numeric_limits<int>::max());

void storeEngineError(cmsContext context, cmsUInt32Number, const char* text)
{
    if (auto* slot = static_cast<QString*>(cmsGetContextUserData(context)))
        *slot = QString::fromUtf8(text);
}

bool canTransform(cmsContext context, cmsHPROFILE input, cmsUInt32Number inFormat, cmsHPROFILE output,
                  cmsUInt32Number outFormat)
{
    // Only whether the engine accepts the chain matters, so nothing is
    // optimised or cached.
    const CgwLcmsTransform transform(cmsCreateTransformTHR(context, input, inFormat, output, outFormat,
                                                           INTENT_PERCEPTUAL, cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE));
    return transform != nullptr;
}

bool usableByEngine(cmsContext context, cmsHPROFILE profile)
{
    const cmsUInt32Number device = cmsFormatterForColorspaceOfProfile(profile, 2, FALSE);
    if (cmsGetDeviceClass(profile) == cmsSigLinkClass)
        return canTransform(context, profile, device, nullptr, cmsFormatterForPCSOfProfile(profile, 2, FALSE));
    const CgwLcmsProfile lab(cmsCreateLab4ProfileTHR(context, nullptr));
    return lab
           && (canTransform(context, profile, device, lab.get(), TYPE_Lab_16)
               || canTransform(context, lab.get(), TYPE_Lab_16, profile, device));
}

void setError(QString* error, const QString& text)
{
    if (error)
        *error = text;
}

} // namespace

CgwEngineProfile::CgwEngineProfile(bool writable)
    : mWritable(writable), mEngine(std::make_unique<Engine>())
{
    mEngine->context.reset(cmsCreateContext(nullptr, &mEngine->lastError));
    if (mEngine->context)
        cmsSetLogErrorHandlerTHR(mEngine->context.get(), storeEngineError);
}

CgwEngineProfile::~CgwEngineProfile() = default;

template <typename Open>
std::shared_ptr<CgwEngineProfile> CgwEngineProfile::attach(std::shared_ptr<CgwEngineProfile> candidate, Open open,
                                                           QString* error)
{
    Engine& engine = *candidate->mEngine;
    if (engine.context)
        engine.profile.reset(open(engine.context.get()));
    if (engine.profile)
        return candidate;
    setError(error, engine.lastError.isEmpty() ? QStringLiteral("the colour engine refused the profile")
                                               : engine.lastError);
    return nullptr;
}

std::shared_ptr<CgwEngineProfile> CgwEngineProfile::openFile(const QString& path, QString* error)
{
    // The engine keeps no CMM type, platform or illuminant, so the header
    // comes from the file itself.
    std::shared_ptr<CgwEngineProfile> result(new CgwEngineProfile(false));
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)
        || !SgwProfileHeader::read(file.read(SgwProfileHeader::kLength), result->mHeader)) {
        setError(error, QStringLiteral("cannot read a profile header from ") + path);
        return nullptr;
    }
    const QByteArray name = QFile::encodeName(path);
    return attach(
        std::move(result),
        [&name](cmsContext context) { return cmsOpenProfileFromFileTHR(context, name.constData(), "r"); }, error);
}

std::shared_ptr<CgwEngineProfile> CgwEngineProfile::openMemory(const QByteArray& bytes, QString* error)
{
    std::shared_ptr<CgwEngineProfile> result(new CgwEngineProfile(false));
    if (!SgwProfileHeader::read(bytes, result->mHeader)) {
        setError(error, QStringLiteral("a block of %1 bytes is too short for a profile").arg(bytes.size()));
        return nullptr;
    }
    return attach(
        std::move(result),
        [&bytes](cmsContext context) {
            return cmsOpenProfileFromMemTHR(context, bytes.constData(), cmsUInt32Number(bytes.size()));
        },
        error);
}

std::shared_ptr<CgwEngineProfile> CgwEngineProfile::createWritable(QString* error)
{
    std::shared_ptr<CgwEngineProfile> result =
        attach(std::shared_ptr<CgwEngineProfile>(new CgwEngineProfile(true)), cmsCreateProfilePlaceholder, error);
    // The engine's defaults are the header a caller starts from.
    if (result && !SgwProfileHeader::read(result->serialise(), result->mHeader)) {
        setError(error, QStringLiteral("the colour engine cannot serialise a new profile"));
        return nullptr;
    }
    return result;
}

bool CgwEngineProfile::isValid() const
{
    if (mWritable) {
        const std::shared_ptr<CgwEngineProfile> reader = openMemory(toBytes());
        return reader && reader->isValid();
    }
    QMutexLocker lock(&mMutex);
    return usableByEngine(mEngine->context.get(), mEngine->profile.get());
}

SgwProfileHeader CgwEngineProfile::header() const
{
    QMutexLocker lock(&mMutex);
    return mHeader;
}

bool CgwEngineProfile::setHeader(const SgwProfileHeader& header)
{
    if (!mWritable)
        return false;
    QMutexLocker lock(&mMutex);
    // The engine keeps what it needs to write its tags; the CMM type, the
    // platform, the date and the illuminant it would write as its own, so
    // toBytes puts the caller's values back over them.
    cmsHPROFILE profile = mEngine->profile.get();
    cmsSetDeviceClass(profile, cmsProfileClassSignature(header.deviceClass));
    cmsSetColorSpace(profile, cmsColorSpaceSignature(header.colorSpace));
    cmsSetPCS(profile, cmsColorSpaceSignature(header.pcs));
    cmsSetEncodedICCversion(profile, header.version);
    cmsSetHeaderFlags(profile, header.flags);
    cmsSetHeaderManufacturer(profile, header.manufacturer);
    cmsSetHeaderModel(profile, header.model);
    cmsSetHeaderAttributes(profile, header.attributes);
    cmsSetHeaderRenderingIntent(profile, header.renderingIntent);
    mHeader = header;
    return true;
}

quint32 CgwEngineProfile::elementSize(quint32 tag) const
{
    QMutexLocker lock(&mMutex);
    return cmsReadRawTag(mEngine->profile.get(), cmsTagSignature(tag), nullptr, 0);
}

QByteArray CgwEngineProfile::element(quint32 tag) const
{
    QMutexLocker lock(&mMutex);
    return readElement(tag);
}

QByteArray CgwEngineProfile::readElement(quint32 tag) const
{
    const quint32 size = cmsReadRawTag(mEngine->profile.get(), cmsTagSignature(tag), nullptr, 0);
    if (size == 0 || size > kMaxBlock)
        return QByteArray();
    QByteArray bytes(int(size), '\0');
    const quint32 read = cmsReadRawTag(mEngine->profile.get(), cmsTagSignature(tag), bytes.data(), size);
    return read == size ? bytes : QByteArray();
}

bool CgwEngineProfile::setElementSize(quint32 tag, quint32 size)
{
    if (!mWritable || size == 0 || size > kMaxBlock)
        return false;
    QMutexLocker lock(&mMutex);
    return writeElement(tag, QByteArray(int(size), '\0'));
}

bool CgwEngineProfile::setElement(quint32 tag, quint32 offset, const QByteArray& bytes)
{
    if (!mWritable)
        return false;
    QMutexLocker lock(&mMutex);
    QByteArray block = readElement(tag);
    if (quint64(offset) + quint64(bytes.size()) > quint64(block.size()))
        return false;
    block.replace(int(offset), bytes.size(), bytes);
    return writeElement(tag, block);
}

bool CgwEngineProfile::writeElement(quint32 tag, const QByteArray& bytes)
{
    return cmsWriteRawTag(mEngine->profile.get(), cmsTagSignature(tag), bytes.constData(),
                          cmsUInt32Number(bytes.size()));
}

QByteArray CgwEngineProfile::toBytes() const
{
    QMutexLocker lock(&mMutex);
    QByteArray bytes = serialise();
    SgwProfileHeader header = mHeader;
    header.size = quint32(bytes.size());
    return header.writeInto(bytes) ? bytes : QByteArray();
}

QByteArray CgwEngineProfile::serialise() const
{
    cmsUInt32Number needed = 0;
    if (!cmsSaveProfileToMem(mEngine->profile.get(), nullptr, &needed) || needed > kMaxBlock)
        return QByteArray();
    QByteArray bytes(int(needed), '\0');
    if (!cmsSaveProfileToMem(mEngine->profile.get(), bytes.data(), &needed) || needed > quint32(bytes.size()))
        return QByteArray();
    bytes.truncate(int(needed));
    return bytes;
}
