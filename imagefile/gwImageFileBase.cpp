#include "imagefile/gwImageFileBase.h"

#include "diagnostics/gwDebug.h"
#include "files/gwFilePathList.h"
#include "settings/gwParamKeys.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QMutex>

#include <cerrno>
#include <cstdio>

CgwImageFileBase::CgwImageFileBase() : mProgress(new CgwImportProgress) {}

CgwImageFileBase::CgwImageFileBase(const CgwImageFileBase& other)
    : mInitialised(other.mInitialised), mCropRect(other.mCropRect), mProgress(new CgwImportProgress),
      mCancelFlag(other.mCancelFlag)
{
}

CgwImageFileBase::~CgwImageFileBase()
{
    mCropRect = CgwRectT<int>();
    delete mProgress;
}

bool CgwImageFileBase::isCanceled() const
{
    return mCancelFlag && __atomic_load_n(mCancelFlag, __ATOMIC_RELAXED);
}

CgwBitmapBase* CgwImageFileBase::finishBitmap(CgwBitmapBase* bitmap)
{
    const CgwRectT<int> none;
    if (bitmap && mCropRect != none && QSize(mCropRect.width(), mCropRect.height()) != bitmap->size()) {
        CgwBitmapBase* cropped = bitmap->getBlock(mCropRect, 0);
        delete bitmap;
        bitmap = cropped;
    }
    if (bitmap)
        bitmap->setScannerMode(9); // from a file
    return bitmap;
}

void CgwImageFileBase::clearCropRect()
{
    mCropRect = CgwRectT<int>();
}

int CgwImageFileBase::irLocation(const QString&)
{
    return 0;
}

bool CgwImageFileBase::hiRepxInfo(const QString&, double[2], int[2])
{
    return false;
}

namespace {
// The slots that take an open file work by its path; the file is closed first.
QString pathOf(CgwFile* file)
{
    if (!file)
        return QString();
    file->close();
    return file->path();
}
} // namespace

CgwBitmapBase* CgwImageFileBase::loadPreview(CgwFile* file, qint64 offset)
{
    return loadPreview(pathOf(file), offset);
}

CgwBitmapHead CgwImageFileBase::loadImageInformation(CgwFile* file, qint64 offset)
{
    return loadImageInformation(pathOf(file), offset);
}

CgwBitmapBase* CgwImageFileBase::loadBitmap(CgwFile* file, qint64 offset)
{
    return loadBitmap(pathOf(file), offset);
}

CgwBitmapBase* CgwImageFileBase::loadBitmapIR(CgwFile* file, qint64 offset)
{
    return loadBitmapIR(pathOf(file), offset);
}

CgwBitmapBase* CgwImageFileBase::loadBitmapIR(const QString&, qint64)
{
    gwDebugString(QStringLiteral("CgwImageFileBase::loadBitmapIR: This file format does not support IR"));
    return nullptr;
}

CgwBitmapBase* CgwImageFileBase::loadHiRePX(const QString& path, qint64 offset)
{
    return loadBitmap(path, offset);
}

CgwBitmapBase* CgwImageFileBase::loadBitmapThread(CgwFile* file, qint64 offset, const SgwLoadThreadRequest&)
{
    gwDebugString(QStringLiteral("CgwImageFileBase::loadBitmapThread : Warning: Subclass does not have this "
                                 "method, loading image from current thread."));
    return loadBitmap(file, offset);
}

CgwBitmapBase* CgwImageFileBase::loadBitmapThread(const QString& path, qint64 offset,
                                                  const SgwLoadThreadRequest& request)
{
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    return loadBitmapThread(file.get(), offset, request);
}

bool CgwImageFileBase::saveBitmap(const QString& path, const CgwBitmapBase& bitmap, const CgwBitmapBase* ir)
{
    if (ir)
        gwDebugString(QStringLiteral("Sorry, this image format cannot hold the IR channel"));
    return saveBitmap(path, bitmap);
}

void CgwImageFileBase::setParameter(const CgwParameterSet& parameters)
{
    const CgwQString size = parameters.value(GgwParam_ImageSize);
    const int width = int(CgwParameterSet::doubleFromValue(size, 0));
    const int height = int(CgwParameterSet::doubleFromValue(size, 1));
    if (width == 0 && height == 0)
        return;
    const CgwQString offset = parameters.value(GgwParam_ImageOffset);
    const int x = int(CgwParameterSet::doubleFromValue(offset, 0));
    const int y = int(CgwParameterSet::doubleFromValue(offset, 1));
    mCropRect = CgwRectT<int>(x, y, x + width, y + height).normalized();
}

void CgwImageFileBase::getParameter(CgwParameterSet& parameters) const
{
    if (mCropRect == CgwRectT<int>())
        return;
    parameters.setValue(GgwParam_ImageOffset, CgwParameterSet::valueFromDouble(mCropRect.left).toQString()
                                                  + CgwParameterSet::valueFromDouble(mCropRect.top).toQString());
    parameters.setValue(GgwParam_ImageSize, CgwParameterSet::valueFromDouble(mCropRect.width()).toQString()
                                                + CgwParameterSet::valueFromDouble(mCropRect.height()).toQString());
}

bool CgwImageFileBase::prepareBitmaps(const QString&, CgwBitmapBase*, CgwBitmapBase*, CgwBitmapBase*, bool)
{
    return true;
}

bool CgwImageFileBase::checkFile(const QString&)
{
    return false;
}

bool CgwImageFileBase::supportsColorMode(int) const
{
    return true;
}

QByteArray CgwImageFileBase::headerBytes(const QString& path, const char* header, int count)
{
    if (header)
        return QByteArray::fromRawData(header, count);
    std::unique_ptr<CgwFile> file(CgwFilePathList::instance().createFile(path));
    if (!file || !file->open(QIODevice::ReadOnly))
        return QByteArray();
    QByteArray bytes(count, '\0');
    const qint64 got = file->read(bytes.data(), count);
    bytes.resize(int(std::max<qint64>(got, 0)));
    return bytes;
}

QString CgwImageFileBase::temporaryFilePath()
{
    static QMutex sMutex;
    static quint64 sCounter = 0;
    QMutexLocker lock(&sMutex);
    const QString stem = QDir::tempPath() + QStringLiteral("/GW8_tmp") + QString::number(QCoreApplication::applicationPid());
    QString path;
    do {
        path = stem + QString::number(++sCounter);
    } while (QFile::exists(path));
    return path;
}

QString CgwImageFileBase::creatorVersion(const QString& software)
{
    const int blank = software.indexOf(QLatin1Char(' '));
    if (blank < 0)
        return QString();
    QString version = software.mid(blank + 1);
    version.replace(QLatin1Char(' '), QLatin1Char('.'));
    const QStringList pieces = version.split(QLatin1Char('.'));
    if (pieces.size() < 4)
        return QString();
    return pieces[0] + QLatin1Char('.') + pieces[1] + QLatin1Char('.') + pieces[2] + pieces[3];
}

namespace {

// A copy beside the target, then a rename: the target is replaced in one
// step even when the temporary folder lies on another file system.
bool replaceAcrossFileSystems(const QString& temp, const QString& target)
{
    const QString beside = target + QStringLiteral(".GW8_move");
    QFile::remove(beside);
    if (!QFile::copy(temp, beside))
        return false;
    if (std::rename(QFile::encodeName(beside).constData(), QFile::encodeName(target).constData()) != 0) {
        QFile::remove(beside);
        return false;
    }
    QFile::remove(temp);
    return true;
}

} // namespace

bool CgwImageFileBase::moveToTarget(const QString& tempPath, const QString& targetUrl)
{
    const QString target = targetUrl.startsWith(QLatin1String("file:")) ? targetUrl.mid(5) : targetUrl;
    // POSIX rename replaces an existing target in one step.
    if (std::rename(QFile::encodeName(tempPath).constData(), QFile::encodeName(target).constData()) == 0)
        return true;
    if (errno == EXDEV && replaceAcrossFileSystems(tempPath, target))
        return true;
    // The move failed: the target is removed and the temporary file stays.
    QFile::remove(target);
    return false;
}

bool CgwImageFileBase::plausibleImageSize(const QSize& size, const char* reader)
{
    const qint64 limit = qint64(1) << 20;
    const bool plausible = size.width() > 0 && size.height() > 0 && size.width() <= limit && size.height() <= limit
                           && qint64(size.width()) * size.height() <= (qint64(1) << 32);
    if (!plausible)
        gwDebug("%s : Error: Image size %i x %i is beyond what can be read.", reader, size.width(), size.height());
    return plausible;
}
