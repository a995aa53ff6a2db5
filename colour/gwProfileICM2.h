#pragma once

#include "colour/gwProfileBase.h"

#include <QVector>

// A profile the suite builds itself: a writable profile in memory, filled
// element by element and finished into an ordinary buffer profile. Reading
// profiles needs nothing beyond CgwProfileBase.
class CgwProfileICM2 : public CgwProfileBase
{
public:
    CgwProfileICM2();
    ~CgwProfileICM2() override;

    // Opens an empty writable profile; `name` stands as the name until the
    // profile is finished, after which its description names it.
    virtual bool createMemoryProfile(const QString& name);
    // The identity 'spac' profile in CIELAB through which conversions enter
    // and leave Lab; valid on success, empty on failure.
    virtual bool createLabProfile();
    // The setters need a profile opened by createMemoryProfile and return
    // false on any failure.
    virtual bool setDescription(const QString& text);
    // An empty text gives the maker's rights notice.
    virtual bool setCopyright(const QString& text);
    // Written red, green, blue; the first failure ends the run.
    virtual bool setToneCurves(const QVector<double>& red, const QVector<double>& green, const QVector<double>& blue);
    virtual bool setColorants(double rx, double ry, double rz, double gx, double gy, double gz, double bx, double by,
                              double bz);
    virtual bool setWhitePoint(double x, double y, double z);

    // Checks the profile built in memory with the engine and makes it the
    // profile's buffer; false, and nothing changed, when the engine refuses.
    bool finishMemoryProfile();

    // The copyright text of the profiles the suite makes.
    static QString copyrightNotice();

private:
    bool writeElement(quint32 tag, const QByteArray& block);
    bool writeLabHeader();
};
