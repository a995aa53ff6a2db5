// The browser's display text of Exif values. Labels and names are English
// source text; the German is the translator's comment.

#include "metadata/gwExif.h"

#include <QCoreApplication>
#include <QHash>

namespace {

// A source text and its translator's comment, as QT_TRANSLATE_NOOP3 gives them.
struct Text {
    const char* source;
    const char* comment;
};

struct TextRow {
    quint16 tag;
    const char* key;
    Text label;
    const char* unit;
};

// The keys stand as the templates use them, "exit" for Exif and the crossed
// film and HDRi keys included.
const TextRow kTextRows[] = {
    {0x0100, "%tiffsize%", QT_TRANSLATE_NOOP3("CgwExif", "Image size", "Bildgroesse"), " pixel"},
    {0x0102, "%tiffbits%", QT_TRANSLATE_NOOP3("CgwExif", "Bits per sample", "Bits pro Kanal"), " bits"},
    {0x0103, "%tiffcompr%", QT_TRANSLATE_NOOP3("CgwExif", "Compression", "Kompression"), ""},
    {0x010D, "%tiffdocname%", QT_TRANSLATE_NOOP3("CgwExif", "Document name", "Dateiname"), ""},
    {0x010E, "%tiffimgdscr%", QT_TRANSLATE_NOOP3("CgwExif", "Description", "Beschreibung"), ""},
    {0x010F, "%tiffmake%", QT_TRANSLATE_NOOP3("CgwExif", "Make", "Hersteller"), ""},
    {0x0110, "%tiffmodel%", QT_TRANSLATE_NOOP3("CgwExif", "Model", "Modell"), ""},
    {0x0115, "%tiffsmplppix%", QT_TRANSLATE_NOOP3("CgwExif", "Samples per pixel", "Kanaele pro Pixel"), " samples"},
    {0x011A, "%tiffres%", QT_TRANSLATE_NOOP3("CgwExif", "Resolution", "Aufloesung"), ""},
    {0x920E, "%exitfcplnres%", QT_TRANSLATE_NOOP3("CgwExif", "Focal plane resolution", "Aufloesung der Brennebene"), ""},
    {0x0131, "%tiffsftwr%", QT_TRANSLATE_NOOP3("CgwExif", "Software", "Software"), ""},
    {0x89AB, "%tifffilm%", QT_TRANSLATE_NOOP3("CgwExif", "HDRi", "HDRi"), ""},
    {0x89AC, "%tiffhdri%", QT_TRANSLATE_NOOP3("CgwExif", "Film Info", "Filminformation"), ""},
    {0x0132, "%tiffdttm%", QT_TRANSLATE_NOOP3("CgwExif", "Date time", "Datum und Uhrzeit"), ""},
    {0x0133, "%tiffdate%", QT_TRANSLATE_NOOP3("CgwExif", "Date", "Datum"), ""},
    {0x013B, "%tiffartist%", QT_TRANSLATE_NOOP3("CgwExif", "Artist", "Urheber"), ""},
    {0x8298, "%tiffcpyrght%", QT_TRANSLATE_NOOP3("CgwExif", "Copyright", "Copyright"), ""},
    {0xA002, "%exifsize%", QT_TRANSLATE_NOOP3("CgwExif", "Image size", "Bildgroesse"), " pixel"},
    {0x9286, "%exifusrcmmnt%", QT_TRANSLATE_NOOP3("CgwExif", "User comment", "Benutzerkommentar"), ""},
    {0x9003, "%exitdttmshot%", QT_TRANSLATE_NOOP3("CgwExif", "Date time shot", "Aufnahmezeitpunkt"), ""},
    {0x9004, "%exitdttmdigit%", QT_TRANSLATE_NOOP3("CgwExif", "Date time digit", "Digitalisierungszeitpunkt"), ""},
    {0x829A, "%exitexptm%", QT_TRANSLATE_NOOP3("CgwExif", "Exposure time", "Belichtungszeit"), " seconds"},
    {0x829D, "%exitfnum%", QT_TRANSLATE_NOOP3("CgwExif", "FNumber", "Blendenzahl"), ""},
    {0x8822, "%exitexpprg%", QT_TRANSLATE_NOOP3("CgwExif", "Exposure program", "Belichtungsprogramm"), ""},
    {0x8827, "%exitiso%", QT_TRANSLATE_NOOP3("CgwExif", "ISO speed", "ISO-Empfindlichkeit"), ""},
    {0x9201, "%exitshtspd%", QT_TRANSLATE_NOOP3("CgwExif", "Shutter speed", "Verschlusszeit"), ""},
    {0x9202, "%exitaptr%", QT_TRANSLATE_NOOP3("CgwExif", "Aperture", "Blende"), ""},
    {0x9203, "%exitbrght%", QT_TRANSLATE_NOOP3("CgwExif", "Brightness", "Helligkeit"), ""},
    {0x9204, "%exitexpbias%", QT_TRANSLATE_NOOP3("CgwExif", "Exposure bias", "Belichtungskorrektur"), ""},
    {0x9205, "%exitmxap%", QT_TRANSLATE_NOOP3("CgwExif", "Max aperture", "Groesste Blende"), ""},
    {0x9206, "%exitsbjdstc%", QT_TRANSLATE_NOOP3("CgwExif", "Subject distance", "Motiventfernung"), " meter"},
    {0x9207, "%exitmtmd%", QT_TRANSLATE_NOOP3("CgwExif", "Metering mode", "Messmethode"), ""},
    {0x9208, "%exitlghtsrc%", QT_TRANSLATE_NOOP3("CgwExif", "Light source", "Lichtquelle"), ""},
    {0x9209, "%exitflash%", QT_TRANSLATE_NOOP3("CgwExif", "Flash", "Blitz"), ""},
    {0x920A, "%exitfclenght%", QT_TRANSLATE_NOOP3("CgwExif", "Focal length", "Brennweite"), ""},
    {0xA20B, "%exitflashen%", QT_TRANSLATE_NOOP3("CgwExif", "Flash energy", "Blitzenergie"), ""},
    {0xA20E, "%exitfcplnres%", QT_TRANSLATE_NOOP3("CgwExif", "Focal plane resolution", "Aufloesung der Brennebene"), ""},
    {0xA402, "%exitexpmd%", QT_TRANSLATE_NOOP3("CgwExif", "Exposure mode", "Belichtungsmodus"), ""},
    {0xA403, "%exitwhtblnc%", QT_TRANSLATE_NOOP3("CgwExif", "White balance", "Weissabgleich"), ""},
    {0xA404, "%exitdigitzmrt%", QT_TRANSLATE_NOOP3("CgwExif", "Digital zoom ratio", "Digitaler Zoomfaktor"), ""},
    {0xA405, "%exitfclenght35%", QT_TRANSLATE_NOOP3("CgwExif", "Focal length in 35mm film", "Brennweite bei Kleinbild"), ""},
    {0xA406, "%exitsccptyp%", QT_TRANSLATE_NOOP3("CgwExif", "Scene capture type", "Aufnahmeart"), ""},
    {0xA407, "%exitflash%", QT_TRANSLATE_NOOP3("CgwExif", "Gain control", "Verstaerkungsregelung"), ""},
    {0xA408, "%exitcontrast%", QT_TRANSLATE_NOOP3("CgwExif", "Contrast", "Kontrast"), ""},
    {0xA409, "%exitsaturation%", QT_TRANSLATE_NOOP3("CgwExif", "Saturation", "Saettigung"), ""},
    {0xA40A, "%exitsharpness%", QT_TRANSLATE_NOOP3("CgwExif", "Sharpness", "Schaerfe"), ""},
    {0xA40C, "%exitsbjdtcrg%", QT_TRANSLATE_NOOP3("CgwExif", "Subject distance range", "Entfernungsbereich"), ""},
    {0xA420, "%exitunique%", QT_TRANSLATE_NOOP3("CgwExif", "Unique image id", "Eindeutige Bildkennung"), ""},
    {0xFF01, "%ownimgname%", QT_TRANSLATE_NOOP3("CgwExif", "Image name", "Bildname"), ""},
    {0xFF03, "%ownimgpath%", QT_TRANSLATE_NOOP3("CgwExif", "Image path", "Bildpfad"), ""},
    {0xFF02, "%ownimgtitle%", QT_TRANSLATE_NOOP3("CgwExif", "Image title", "Bildtitel"), ""},
    {0xFF04, "%ownimgformat%", QT_TRANSLATE_NOOP3("CgwExif", "Image format", "Bildformat"), ""},
    {0xFF05, "%ownimgsize%", QT_TRANSLATE_NOOP3("CgwExif", "Image size", "Bildgroesse"), " pixel"},
    {0xFF10, "%ownfacebookuser%", QT_TRANSLATE_NOOP3("CgwExif", "Facebook user", "Facebook Nutzer"), ""},
    {0xFF12, "%ownflickruser%", QT_TRANSLATE_NOOP3("CgwExif", "Flickr user", "Flickr Nutzer"), ""},
    {0xFF14, "%ownpicasauser%", QT_TRANSLATE_NOOP3("CgwExif", "Picasa user", "Picasa Nutzer"), ""},
    {0xFF16, "%owncoltemp%", QT_TRANSLATE_NOOP3("CgwExif", "Color temperature", "Farbtemperatur"), ""},
};

struct Name {
    int value;
    Text name;
};

const Name kExposurePrograms[] = {
    {1, QT_TRANSLATE_NOOP3("CgwExif", "Manual", "Manuell, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {2, QT_TRANSLATE_NOOP3("CgwExif", "Normal program", "Normales Programm, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {3, QT_TRANSLATE_NOOP3("CgwExif", "Aperture priority", "Blendenautomatik, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {4, QT_TRANSLATE_NOOP3("CgwExif", "Shutter priority", "Zeitautomatik, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {5, QT_TRANSLATE_NOOP3("CgwExif", "Creative program", "Kreativprogramm, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {6, QT_TRANSLATE_NOOP3("CgwExif", "Action program", "Sportprogramm, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {7, QT_TRANSLATE_NOOP3("CgwExif", "Portrait mode", "Portraitmodus, bezieht sich auf Belichtungsprogramm einer Kamera")},
    {8, QT_TRANSLATE_NOOP3("CgwExif", "Landscape mode", "Landschaftsmodus, bezieht sich auf Belichtungsprogramm einer Kamera")},
};

#define GW_METERING(v, text, german) \
    {v, QT_TRANSLATE_NOOP3("CgwExif", text, german ", bezieht sich auf die Messmethode einer Kamera")}
const Name kMeteringModes[] = {
    GW_METERING(1, "Average", "Mittelwert"), GW_METERING(2, "Center weighted average", "Mittenbetonte Messung"),
    GW_METERING(3, "Spot", "Punktmessung"), GW_METERING(4, "Multispot", "Mehrpunktmessung"),
    GW_METERING(5, "Pattern", "Muster"), GW_METERING(6, "Partial", "Teilweise"), GW_METERING(255, "Other", "Anderer"),
};
#undef GW_METERING

#define GW_LIGHT(v, text, german) \
    {v, QT_TRANSLATE_NOOP3("CgwExif", text, german ", bezieht sich auf das Licht / Farbtemperatur eines Bildes")}
const Name kLightSources[] = {
    GW_LIGHT(1, "Daylight", "Tageslicht"), GW_LIGHT(2, "Fluorescent", "Fluoreszierend"),
    GW_LIGHT(3, "Tungsten", "Kunstlicht"), GW_LIGHT(4, "Flash", "Blitz"), GW_LIGHT(9, "Fine weather", "Gutes Wetter"),
    GW_LIGHT(10, "Cloudy weather", "Bewoelkt"), GW_LIGHT(11, "Shade", "Schatten"),
    GW_LIGHT(12, "Daylight fluorescent", "Tageslicht Fluoreszenzlampe"),
    GW_LIGHT(13, "Day white fluorescent", "Warmweisse Fluoreszenzlampe"),
    GW_LIGHT(14, "Cool white fluorescent", "Kaltweisse Fluoreszenzlampe"),
    GW_LIGHT(15, "White fluorescent", "Weisse Fluoreszenzlampe"), GW_LIGHT(17, "Standard light A", "Standardlicht A"),
    GW_LIGHT(18, "Standard light B", "Standardlicht B"), GW_LIGHT(19, "Standard light C", "Standardlicht C"),
    GW_LIGHT(20, "D55", "D55"), GW_LIGHT(21, "D65", "D65"), GW_LIGHT(22, "D75", "D75"), GW_LIGHT(23, "D50", "D50"),
    GW_LIGHT(24, "ISO studio tungsten", "ISO Studiokunstlicht"), GW_LIGHT(255, "Other light source", "Andere Lichtquelle"),
};
#undef GW_LIGHT

#define GW_PLAIN(v, text) {v, {QT_TRANSLATE_NOOP("CgwExif", text), nullptr}}
const Name kFlashModes[] = {
    GW_PLAIN(0, "Flash did not fire."), GW_PLAIN(1, "Flash fired."), GW_PLAIN(5, "Strobe return light not detected."),
    GW_PLAIN(7, "Strobe return light detected."), GW_PLAIN(9, "Flash fired, compulsory flash mode"),
    GW_PLAIN(13, "Flash fired, compulsory flash mode, return light not detected"),
    GW_PLAIN(15, "Flash fired, compulsory flash mode, return light detected"),
    GW_PLAIN(16, "Flash did not fire, compulsory flash mode"), GW_PLAIN(24, "Flash did not fire, auto mode"),
    GW_PLAIN(25, "Flash fired, auto mode"), GW_PLAIN(29, "Flash fired, auto mode, return light not detected"),
    GW_PLAIN(31, "Flash fired, auto mode, return light detected"), GW_PLAIN(32, "No flash function"),
    GW_PLAIN(65, "Flash fired, red-eye reduction mode"),
    GW_PLAIN(69, "Flash fired, red-eye reduction mode, return light not detected"),
    GW_PLAIN(71, "Flash fired, red-eye reduction mode, return light detected"),
    GW_PLAIN(73, "Flash fired, compulsory flash mode, red-eye reduction mode"),
    GW_PLAIN(77, "Flash fired, compulsory flash mode, red-eye reduction mode, return light not detected"),
    GW_PLAIN(79, "Flash fired, compulsory flash mode, red-eye reduction mode, return light detected"),
    GW_PLAIN(89, "Flash fired, auto mode, red-eye reduction mode"),
    GW_PLAIN(93, "Flash fired, auto mode, return light not detected, red-eye reduction mode"),
    GW_PLAIN(95, "Flash fired, auto mode, return light detected, red-eye reduction mode"),
};
const Name kExposureModes[] = {GW_PLAIN(0, "Auto exposure"), GW_PLAIN(1, "Manual exposure"), GW_PLAIN(2, "Auto bracket")};
const Name kWhiteBalances[] = {GW_PLAIN(0, "Auto white balance"), GW_PLAIN(1, "Manual white balance")};
const Name kSceneTypes[] = {GW_PLAIN(0, "Standard"), GW_PLAIN(1, "Landscape"), GW_PLAIN(2, "Portrait"),
                            GW_PLAIN(3, "Night scene")};
const Name kDistanceRanges[] = {GW_PLAIN(1, "Macro"), GW_PLAIN(2, "Close view"), GW_PLAIN(3, "Distant view")};
#undef GW_PLAIN

QString tr(const char* text, const char* comment = nullptr)
{
    return QCoreApplication::translate("CgwExif", text, comment);
}

const TextRow* textRow(quint16 tag)
{
    static const QHash<quint16, const TextRow*> sRows = [] {
        QHash<quint16, const TextRow*> rows;
        for (const TextRow& row : kTextRows)
            rows.insert(row.tag, &row);
        return rows;
    }();
    return sRows.value(tag, nullptr);
}

template <size_t N>
QString nameOf(const Name (&table)[N], qint64 value)
{
    for (const Name& name : table) {
        if (name.value == value)
            return tr(name.name.source, name.name.comment);
    }
    return tr("Undefined", "Unbekannt");
}

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

// "x x y" and a unit chosen by a third tag.
QString pairWithUnit(const CgwExif& exif, quint16 tag, quint16 unitTag, const std::map<qint64, const char*>& units)
{
    QString text = number(exif.getDouble(tag)) + QStringLiteral(" x ") + number(exif.getDouble(tag + 1));
    const auto unit = units.find(exif.getInt(unitTag));
    if (unit != units.end())
        text += tr(unit->second, "Masseinheit");
    return text;
}

} // namespace

int CgwExif::textTableSize()
{
    return int(sizeof(kTextRows) / sizeof(kTextRows[0]));
}

QString CgwExif::textKey(quint16 tag)
{
    const TextRow* row = textRow(tag);
    return row ? QString::fromLatin1(row->key) : QString();
}

QString CgwExif::textLabel(quint16 tag)
{
    const TextRow* row = textRow(tag);
    return row ? tr(row->label.source, row->label.comment) : QString();
}

QString CgwExif::getValueAsText(quint16 tag) const
{
    const TextRow* row = textRow(tag);
    if (!row || !hasTag(tag))
        return tr("Not available", "Nicht verfuegbar, oder nicht ermittelbar");
    const CgwExifValue value = getValue(tag);
    QString text;
    switch (tag) {
    case 0x0100:
    case 0xA002:
    case 0xFF05:
        text = QString::number(getInt(tag)) + QStringLiteral(" x ") + QString::number(getInt(tag + 1));
        break;
    case 0x011A:
        return pairWithUnit(*this, tag, 0x0128, {{2, QT_TRANSLATE_NOOP("CgwExif", " inch")}, {3, QT_TRANSLATE_NOOP("CgwExif", " cm")}});
    case 0x920E:
        return pairWithUnit(*this, tag, 0x9210,
                            {{1, QT_TRANSLATE_NOOP("CgwExif", " inch")}, {2, QT_TRANSLATE_NOOP("CgwExif", " m")},
                             {3, QT_TRANSLATE_NOOP("CgwExif", " cm")}, {4, QT_TRANSLATE_NOOP("CgwExif", " mm")},
                             {5, QT_TRANSLATE_NOOP("CgwExif", " ym")}});
    case 0xA20E:
        return pairWithUnit(*this, tag, 0xA210, {{2, QT_TRANSLATE_NOOP("CgwExif", " inch")}, {3, QT_TRANSLATE_NOOP("CgwExif", " cm")}});
    case 0x0133:
        text = QString::fromLatin1(value.data.left(10)).replace(QLatin1Char(':'), QLatin1Char('.'));
        break;
    case 0x829A: {
        qint32 n = 0, d = 0;
        getRational(tag, 0, &n, &d);
        text = QString::number(quint32(n)) + QLatin1Char('/') + QString::number(quint32(d));
        break;
    }
    case 0x8827: text = QStringLiteral("ISO ") + QString::number(getInt(tag)); break;
    case 0x8822: text = nameOf(kExposurePrograms, getInt(tag)); break;
    case 0x9207: text = nameOf(kMeteringModes, getInt(tag)); break;
    case 0x9208: text = nameOf(kLightSources, getInt(tag)); break;
    case 0x9209: text = nameOf(kFlashModes, getInt(tag)); break;
    case 0xA402: text = nameOf(kExposureModes, getInt(tag)); break;
    case 0xA403: text = nameOf(kWhiteBalances, getInt(tag)); break;
    case 0xA406: text = nameOf(kSceneTypes, getInt(tag)); break;
    case 0xA40C: text = nameOf(kDistanceRanges, getInt(tag)); break;
    default:
        switch (value.type) {
        case 1: case 3: case 4: case 6: case 8: case 9: text = QString::number(getInt(tag)); break;
        case 2: text = QString::fromLatin1(value.data.constData(), int(qstrnlen(value.data.constData(), uint(value.data.size())))); break;
        case 5: case 10: case 11: case 12: text = number(getDouble(tag)); break;
        default: break;
        }
    }
    return text + (row->unit[0] ? tr(row->unit) : QString());
}
