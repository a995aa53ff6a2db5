#include "colour/gwProfileICM2.h"

#include "colour/gwEngineProfile.h"
#include "colour/gwIccSignature.h"
#include "colour/gwProfileElements.h"
#include "diagnostics/gwDebug.h"

#include <QDateTime>

CgwProfileICM2::CgwProfileICM2() = default;
CgwProfileICM2::~CgwProfileICM2() = default;

QString CgwProfileICM2::copyrightNotice()
{
    return QStringLiteral("Copyright (c) Norvane Imaging. All rights reserved.");
}

bool CgwProfileICM2::createMemoryProfile(const QString& name)
{
    clear();
    QString error;
    mHandle = CgwEngineProfile::createWritable(&error);
    if (!mHandle) {
        gwDebugString(QStringLiteral("CgwProfileICM2::createMemoryProfile : Error: ") + error);
        return false;
    }
    mName = name;
    return true;
}

bool CgwProfileICM2::createLabProfile()
{
    const QByteArray table = CgwProfileElements::identityLut16Block(2, 256, 256);
    const bool made = createMemoryProfile(QString()) && setDescription(QString())
                      && setWhitePoint(0.96417, 1.0, 0.82487) && setCopyright(QString())
                      && writeElement(gwIccSignature("A2B0"), table) && writeElement(gwIccSignature("B2A0"), table)
                      && writeLabHeader() && finishMemoryProfile();
    if (!made) {
        clear();
        gwDebugString(QStringLiteral("CgwProfileICM2::createLabProfile : Error: the Lab profile could not be made"));
    }
    return made;
}

bool CgwProfileICM2::writeLabHeader()
{
    SgwProfileHeader header = mHandle->header();
    header.cmmType = gwIccSignature("Lino");
    header.version = 0x02100000;
    header.deviceClass = gwIccSignature("spac");
    header.colorSpace = gwIccSignature("Lab ");
    header.pcs = gwIccSignature("Lab ");
    // Universal time, which version 4 of the format demands and which does
    // not hurt version 2.
    header.setDateTime(QDateTime::currentDateTimeUtc());
    header.signature = gwIccSignature("acsp");
    header.platform = gwIccSignature("MSFT");
    header.manufacturer = gwIccSignature("MSFT");
    header.flags = 0;
    header.attributes = 0;
    header.renderingIntent = 0;
    header.illuminantX = 0xF6D4;
    header.illuminantY = 0x10000;
    header.illuminantZ = 0xD32B;
    return mHandle->setHeader(header);
}

bool CgwProfileICM2::finishMemoryProfile()
{
    if (!mHandle || !mHandle->isWritable() || !mHandle->isValid())
        return false;
    const QByteArray bytes = mHandle->toBytes();
    if (bytes.isEmpty())
        return false;
    setFromMemory(reinterpret_cast<const unsigned char*>(bytes.constData()), bytes.size());
    return isValid();
}

bool CgwProfileICM2::setDescription(const QString& text)
{
    return writeElement(gwIccSignature("desc"), CgwProfileElements::textBlock(text));
}

bool CgwProfileICM2::setCopyright(const QString& text)
{
    return writeElement(gwIccSignature("cprt"), CgwProfileElements::textBlock(text.isEmpty() ? copyrightNotice() : text));
}

bool CgwProfileICM2::setToneCurves(const QVector<double>& red, const QVector<double>& green,
                                   const QVector<double>& blue)
{
    return writeElement(gwIccSignature("rTRC"), CgwProfileElements::toneCurveBlock(red))
           && writeElement(gwIccSignature("gTRC"), CgwProfileElements::toneCurveBlock(green))
           && writeElement(gwIccSignature("bTRC"), CgwProfileElements::toneCurveBlock(blue));
}

bool CgwProfileICM2::setColorants(double rx, double ry, double rz, double gx, double gy, double gz, double bx,
                                  double by, double bz)
{
    return writeElement(gwIccSignature("rXYZ"), CgwProfileElements::xyzBlock(rx, ry, rz))
           && writeElement(gwIccSignature("gXYZ"), CgwProfileElements::xyzBlock(gx, gy, gz))
           && writeElement(gwIccSignature("bXYZ"), CgwProfileElements::xyzBlock(bx, by, bz));
}

bool CgwProfileICM2::setWhitePoint(double x, double y, double z)
{
    return writeElement(gwIccSignature("wtpt"), CgwProfileElements::xyzBlock(x, y, z));
}

bool CgwProfileICM2::writeElement(quint32 tag, const QByteArray& block)
{
    if (block.isEmpty() || !mHandle || !mHandle->isWritable())
        return false;
    const quint32 size = quint32(block.size());
    return mHandle->setElementSize(tag, size) && mHandle->setElement(tag, 0, block);
}
