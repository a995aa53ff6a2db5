#include "colour/gwProfileBase.h"

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "colour/gwProfileElements.h"
#include "diagnostics/gwDebug.h"
#include "diagnostics/gwLogFile.h"
#include "files/gwFilePathList.h"

#include <QCoreApplication>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <limits>
#include <new>

namespace {

constexpr int kErrorCannotOpen = 13;
constexpr int kErrorEmptyFile = 14;
constexpr int kErrorNotAvailable = 15;
constexpr int kErrorMemoryFull = 17;

// A profile's bytes must fit a QByteArray, through which they travel to the
// engine and into files.
constexpr qint64 kMaxProfileBytes = std::numeric_limits<int>::max();

struct SignatureValue {
    quint32 signature;
    int value;
};

const SignatureValue kColorModes[] = {
    {gwIccSignature("CMY "), 4}, {gwIccSignature("CMYK"), 6}, {gwIccSignature("GRAY"), 1},
    {gwIccSignature("Lab "), 5}, {gwIccSignature("RGB "), 3},
};

enum Role { kSource = 1, kDestination = 2 };

const SignatureValue kClassRoles[] = {
    {gwIccSignature("abst"), kSource | kDestination}, {gwIccSignature("mntr"), kSource | kDestination},
    {gwIccSignature("spac"), kSource | kDestination}, {gwIccSignature("prtr"), kDestination},
    {gwIccSignature("scnr"), kSource},
};

int lookUp(const SignatureValue* table, size_t count, quint32 signature)
{
    const SignatureValue* end = table + count;
    const SignatureValue* hit =
        std::find_if(table, end, [signature](const SignatureValue& row) { return row.signature == signature; });
    return hit == end ? 0 : hit->value;
}

QString withoutScheme(const QString& path)
{
    const QString scheme = CgwFilePathList::schemeFile();
    return path.startsWith(scheme) ? path.mid(scheme.size()) : path;
}

// 0, or the error code of what keeps the file from being a profile's bytes.
// Only reads the file when `bytes` is given.
int readProfileFile(const QString& path, QByteArray* bytes)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return kErrorCannotOpen;
    const qint64 size = file.size();
    if (size <= 0)
        return kErrorEmptyFile;
    if (size > kMaxProfileBytes)
        return kErrorMemoryFull;
    if (!bytes)
        return 0;
    try {
        bytes->resize(int(size));
    } catch (const std::bad_alloc&) {
        return kErrorMemoryFull;
    }
    return file.read(bytes->data(), size) == size ? 0 : kErrorCannotOpen;
}

bool passes(int errorCode)
{
    CgwLogFile::instance().reportError(errorCode);
    return errorCode == 0;
}

const QString& unnamedText()
{
    // Built once; the initialisation of a function's static is guarded, so
    // threads asking at the same time get the same text.
    static const QString sText =
        QCoreApplication::translate("CgwProfileBase", "Unnamed (maybe broken)", "Unbenannt (vielleicht beschaedigt)");
    return sText;
}

} // namespace

CgwProfileBase::CgwProfileBase() = default;
CgwProfileBase::CgwProfileBase(const CgwProfileBase& other) = default;
CgwProfileBase& CgwProfileBase::operator=(const CgwProfileBase& other) = default;
CgwProfileBase::~CgwProfileBase() = default;

CgwProfileBase CgwProfileBase::fromFile(const QString& path)
{
    CgwProfileBase profile;
    profile.mPath = path;
    if (readProfileFile(profile.filePath(), nullptr) == 0) {
        profile.mValid = true;
        profile.updateInfo();
    }
    return profile;
}

void CgwProfileBase::clear()
{
    closeEngineProfile();
    mValid = false;
    mHasBuffer = false;
    mPath.clear();
    mBuffer.clear();
    mColorMode = 0;
    mCanBeSource = false;
    mCanBeDestination = false;
    mName.clear();
}

bool CgwProfileBase::isValid() const
{
    return mValid;
}

bool CgwProfileBase::isFileProfile() const
{
    return !mPath.isEmpty() && !mHasBuffer;
}

bool CgwProfileBase::isBufferProfile() const
{
    return mHasBuffer;
}

qint64 CgwProfileBase::bufferSize() const
{
    return qint64(mBuffer.size());
}

void CgwProfileBase::updateInfo()
{
    if (!mValid)
        return;
    const bool openedHere = !mHandle;
    if (openedHere)
        openEngineProfile();
    if (!mHandle) {
        mValid = false;
    } else if (readHeaderInfo() == 0 || !(mCanBeSource || mCanBeDestination)) {
        gwDebugString(QStringLiteral("CgwProfileBase::updateInfo : Error: ") + displayPath()
                      + QStringLiteral(" is neither a source nor a destination of a known colour space"));
        mValid = false;
    } else {
        getDescription(mName);
    }
    if (openedHere)
        closeEngineProfile();
}

bool CgwProfileBase::isSameProfile(const CgwProfileBase* other) const
{
    if (!other)
        return false;
    QString mine, theirs;
    getDescription(mine);
    other->getDescription(theirs);
    return mine == theirs;
}

void CgwProfileBase::setFromBuffer(const CgwMemBufferT<unsigned char>& buffer)
{
    clear();
    adoptBytes(buffer.data(), qint64(buffer.size()));
}

void CgwProfileBase::setFromMemory(const unsigned char* bytes, qint64 size)
{
    clear();
    qint64 count = bytes ? qMax<qint64>(size, 0) : 0;
    if (count >= 4) {
        const qint64 own = (qint64(bytes[0]) << 24) | (qint64(bytes[1]) << 16) | (qint64(bytes[2]) << 8) | bytes[3];
        count = qMin(count, own);
    }
    adoptBytes(bytes, count);
}

void CgwProfileBase::adoptBytes(const unsigned char* bytes, qint64 count)
{
    if (count > kMaxProfileBytes) {
        CgwLogFile::instance().reportError(kErrorMemoryFull);
        return;
    }
    if (count > 0)
        mBuffer.append(bytes, size_t(count));
    mHasBuffer = true;
    mValid = true;
    updateInfo();
}

void CgwProfileBase::setFromFile(const QString& path, bool loadIntoMemory)
{
    clear();
    mPath = path;
    const bool readable = loadIntoMemory ? loadBuffer() : passes(readProfileFile(filePath(), nullptr));
    if (!readable) {
        clear();
        return;
    }
    mValid = true;
    updateInfo();
}

const QString& CgwProfileBase::path() const
{
    return mPath;
}

QString CgwProfileBase::filePath() const
{
    return withoutScheme(mPath);
}

QString CgwProfileBase::fileName() const
{
    return QFileInfo(filePath()).fileName();
}

QString CgwProfileBase::baseName() const
{
    return QFileInfo(filePath()).completeBaseName();
}

bool CgwProfileBase::getDescription(QString& text) const
{
    constexpr quint32 kDescription = gwIccSignature("desc");
    // A valid profile whose handle is closed is opened for this call only.
    const std::shared_ptr<CgwEngineProfile> handle = mHandle || !mValid ? mHandle : openHandle(nullptr);
    const QString element = handle && handle->elementSize(kDescription) > 0
                                ? CgwProfileElements::textOf(handle->element(kDescription))
                                : QString();
    if (!element.isNull()) {
        text = element;
        return true;
    }
    text = baseName();
    if (text.isEmpty())
        text = unnamedText();
    return false;
}

int CgwProfileBase::readHeaderInfo()
{
    mColorMode = 0;
    mCanBeSource = false;
    mCanBeDestination = false;
    if (!mHandle)
        return 0;
    const SgwProfileHeader header = mHandle->header();
    mColorMode = lookUp(kColorModes, std::size(kColorModes), header.colorSpace);
    const int roles = lookUp(kClassRoles, std::size(kClassRoles), header.deviceClass);
    mCanBeSource = roles & kSource;
    mCanBeDestination = roles & kDestination;
    return mColorMode;
}

bool CgwProfileBase::canBeSource() const
{
    return mCanBeSource;
}

bool CgwProfileBase::canBeDestination() const
{
    return mCanBeDestination;
}

bool CgwProfileBase::openEngineProfile()
{
    if (mHandle)
        return true;
    if (!mValid || (isBufferProfile() && mBuffer.isEmpty())) {
        CgwLogFile::instance().reportError(kErrorNotAvailable);
        return false;
    }
    QString error;
    std::shared_ptr<CgwEngineProfile> handle = openHandle(&error);
    if (!handle) {
        gwDebugString(QStringLiteral("CgwProfileBase::openEngineProfile : Error: ") + error);
        return false;
    }
    if (!handle->isValid()) {
        gwDebugString(QStringLiteral("CgwProfileBase::openEngineProfile : Error: the colour engine cannot use ")
                      + displayPath());
        return false;
    }
    mHandle = std::move(handle);
    return true;
}

std::shared_ptr<CgwEngineProfile> CgwProfileBase::openHandle(QString* error) const
{
    if (isBufferProfile()) {
        const auto* data = reinterpret_cast<const char*>(mBuffer.data());
        return CgwEngineProfile::openMemory(QByteArray::fromRawData(data, int(mBuffer.size())), error);
    }
    // Paths stay as the platform writes them; the engine takes them as the
    // file system does.
    return CgwEngineProfile::openFile(filePath(), error);
}

void CgwProfileBase::closeEngineProfile()
{
    mHandle.reset();
}

bool CgwProfileBase::loadBuffer()
{
    if (isBufferProfile())
        return true;
    QByteArray bytes;
    if (!passes(readProfileFile(filePath(), &bytes)))
        return false;
    mBuffer.clear();
    mBuffer.append(reinterpret_cast<const unsigned char*>(bytes.constData()), size_t(bytes.size()));
    mHasBuffer = true;
    return true;
}

const unsigned char* CgwProfileBase::bufferData() const
{
    return mBuffer.isEmpty() ? nullptr : mBuffer.data();
}

quint32 CgwProfileBase::bufferLength() const
{
    return quint32(mBuffer.size());
}

bool CgwProfileBase::bufferToFile(const QString& path)
{
    const QString target = withoutScheme(path);
    if (isFileProfile())
        loadBuffer();
    if (isBufferProfile()) {
        QFile file(target);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            gwDebugString(QStringLiteral("CgwProfileBase::bufferToFile Error: Could not open file ") + target);
            return false;
        }
        QDataStream stream(&file);
        const int length = int(mBuffer.size());
        const bool written = stream.writeRawData(reinterpret_cast<const char*>(mBuffer.data()), length) == length;
        file.close();
        if (!written || file.error() != QFileDevice::NoError) {
            gwDebugString(QStringLiteral("CgwProfileBase::bufferToFile Error: Could not write file ") + target);
            return false;
        }
        clear();
        setFromFile(CgwFilePathList::schemeFile() + target, false);
    }
    return isFileProfile();
}

void CgwProfileBase::spare()
{
}

bool CgwProfileBase::isEmbeddable() const
{
    if (!isValid())
        return false;
    return isBufferProfile() ? !mBuffer.isEmpty() : readProfileFile(filePath(), nullptr) == 0;
}

QByteArray CgwProfileBase::profileBytes() const
{
    if (isBufferProfile())
        return QByteArray(reinterpret_cast<const char*>(mBuffer.data()), int(mBuffer.size()));
    QByteArray bytes;
    if (!isFileProfile() || !passes(readProfileFile(filePath(), &bytes)))
        return QByteArray();
    return bytes;
}

QString CgwProfileBase::displayPath() const
{
    return mPath.isEmpty() ? QStringLiteral("the profile in memory") : mPath;
}

bool CgwProfileBase::operator==(const CgwProfileBase& other) const
{
    return mPath == other.mPath && mHasBuffer == other.mHasBuffer && mBuffer.size() == other.mBuffer.size()
           && std::equal(mBuffer.data(), mBuffer.data() + mBuffer.size(), other.mBuffer.data());
}
