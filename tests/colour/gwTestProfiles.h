#pragma once

#include "colour/gwLcmsHandles.h"

#include <QByteArray>
#include <QString>
#include <QtEndian>

// Real profiles for the colour tests, made by Little CMS itself so that the
// tests depend on no profile installed on the machine.

// The bytes of a profile Little CMS made; the profile is closed.
QByteArray gwSavedProfile(cmsHPROFILE profile);
// Little CMS's own sRGB profile (version 4, description "sRGB built-in").
inline QByteArray gwSRGBProfileBytes() { return gwSavedProfile(cmsCreate_sRGBProfile()); }
// A grey display profile with gamma 2.2.
QByteArray gwGrayProfileBytes();
// A CLUT profile of the given class and colour space, both directions
// through grids of zeros, PCS Lab, described as "Test LUT".
QByteArray gwLutProfileBytes(cmsProfileClassSignature profileClass, cmsColorSpaceSignature space);
// The profile saved again as version 2.1, which stores a description as the
// older 'desc' type rather than 'mluc'.
QByteArray gwAsVersion2(const QByteArray& bytes);
// The profile with `text` as its description; a null text removes it.
QByteArray gwWithDescription(const QByteArray& bytes, const QString& text);

// The bytes opened by Little CMS itself, to check what the suite wrote.
inline CgwLcmsProfile gwOpenedByLcms(const QByteArray& bytes)
{
    return CgwLcmsProfile(cmsOpenProfileFromMem(bytes.constData(), cmsUInt32Number(bytes.size())));
}

// A big-endian number of the block; 0 past its end.
template <typename T>
T gwBigEndian(const QByteArray& bytes, int offset)
{
    return offset + int(sizeof(T)) <= bytes.size() ? qFromBigEndian<T>(bytes.constData() + offset) : T(0);
}
