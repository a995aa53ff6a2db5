#pragma once

#include <QByteArray>
#include <QString>

#include <lcms2.h>

// Real profiles for the colour tests, made by Little CMS itself so that the
// tests depend on no profile installed on the machine.

// Bytes of Little CMS's own sRGB profile (version 4, description "sRGB
// built-in").
QByteArray gwSRGBProfileBytes();
// A grey display profile with gamma 2.2.
QByteArray gwGrayProfileBytes();
// A CLUT profile of the given class and colour space, both directions
// through grids of zeros, PCS Lab, described as "Test LUT".
QByteArray gwLutProfileBytes(cmsProfileClassSignature profileClass, cmsColorSpaceSignature space);
// Little CMS's CMYK ink-limiting device link.
QByteArray gwInkLimitingLinkBytes();
// Little CMS's abstract identity profiles in Lab and XYZ.
QByteArray gwLabIdentityBytes();
QByteArray gwXYZIdentityBytes();

// The profile saved again as version 2.1, which stores a description as the
// older 'desc' type rather than 'mluc'.
QByteArray gwAsVersion2(const QByteArray& bytes);
// The profile with `text` as its description; a null text removes it.
QByteArray gwWithDescription(const QByteArray& bytes, const QString& text);

// A big-endian number of the block.
quint32 gwBigEndian32(const QByteArray& bytes, int offset);
quint16 gwBigEndian16(const QByteArray& bytes, int offset);
