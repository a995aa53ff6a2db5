#include "diagnostics/gwLogHeader.h"

#include "diagnostics/gwSystem.h"

#include <QDateTime>
#include <QLocale>
#include <QThread>

namespace {

// Deployment data of the support desks.
const char* const kSupportAddress = "https://support.norvane-imaging.example/glimmerway";
const char* const kWebContact = "https://www.norvane-imaging.example/contact";

struct ContactBlock {
    const char* heading;
    const char* postal;
    const char* hotline;
    const char* fax;
};

const ContactBlock kContactBlocks[2] = {
    //: Europa, Afrika, Australien, Asien:
    {QT_TRANSLATE_NOOP("CgwLogFileTranslate", "Europe, Africa, Australia, Asia:"), "Norvane Imaging GmbH, Hafenstrasse 12, 24103 Kiel, Germany",
     "+49 431 0000 100", "+49 431 0000 199"},
    //: USA, Nord- und Südamerika:
    {QT_TRANSLATE_NOOP("CgwLogFileTranslate", "USA, North & South America:"), "Norvane Imaging Inc., 400 Harbor Drive, Suite 20, Portland, OR 97201, USA",
     "+1 503 000 0100", "+1 503 000 0199"},
};

QByteArray utf8(const QString& text) { return text.toUtf8(); }

QByteArray contactBlock(const ContactBlock& block, int versionType)
{
    //: Web-/Mail-Kontakt (kostenlos):
    const QByteArray web = utf8(CgwLogFileTranslate::tr("Web/mail contact (for free):")) + ' ' + kWebContact + '\n';
    //: Fax: 
    const QByteArray fax = utf8(CgwLogFileTranslate::tr("Fax: ")) + block.fax + '\n';
    QByteArray text = utf8(CgwLogFileTranslate::tr(block.heading)) + '\n' + block.postal + '\n';
    if (versionType == 3)
        //: Hotline: 
        text += utf8(CgwLogFileTranslate::tr("Hotline: ")) + block.hotline + '\n' + fax + web;
    else
        text += web + fax;
    return text + '\n';
}

} // namespace

QByteArray gwLogSeparator()
{
    return QByteArray(73, '-') + '\n';
}

QByteArray gwLogPreamble(int versionType)
{
    QByteArray text = gwLogSeparator();
    //: Falls Sie Probleme haben, lesen Sie bitte unsere Online-Hilfe: ... und senden Sie uns die angehängte Datei an Norvane Imaging:
    text += utf8(CgwLogFileTranslate::tr(
                     "If you experience any problems, please see our online help:\n%1\nIf you need further "
                     "assistance, please don't hesitate to contact us and please send the attached file to "
                     "Norvane Imaging:\n\n")
                     .arg(QLatin1String(kSupportAddress)));
    for (const ContactBlock& block : kContactBlocks)
        text += contactBlock(block, versionType);
    //: Diese Datei enthält Informationen für unser Glimmerway-Supportteam. Wenn Sie mit der Übertragung nicht einverstanden sind, löschen Sie bitte alle Informationen, die Sie nicht teilen möchten.
    text += utf8(CgwLogFileTranslate::tr(
                "This file contains information relevant for our Glimmerway support team. If you do not agree "
                "with transferring this data to Norvane Imaging, please feel free to delete any information "
                "you do not like to share."))
            + '\n';
    return text;
}

QByteArray gwLogSessionHeader()
{
    const QByteArray separator = gwLogSeparator();
    const int threads = QThread::idealThreadCount();
    const QStringList cpu = CgwSystem::cpuInfo();
    const QString now = QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat);

    QByteArray text = "\n" + separator;
    //: Protokoll der Glimmerway-Sitzung
    text += "\n*** " + utf8(CgwLogFileTranslate::tr("Log of Glimmerway session")) + " ***\n\n";
    text += separator + "  Software information\n" + separator;
    text += "Maximum number of concurrent threads : " + QByteArray::number(threads) + "\n";
    text += "Date and time : " + utf8(now) + "\n\n";
    text += "Platform      : PC\n";
    text += "System        : " + utf8(CgwSystem::osName()) + "\n\n";
    // The one line kept in the local 8-bit encoding.
    text += QStringLiteral("Bitness       : %1-bit\n\n").arg(QSysInfo::WordSize).toLocal8Bit();
    text += "Version       : " + utf8(CgwSystem::applicationName()) + ' '
            + utf8(CgwSystem::applicationVersion(true)) + "\n";
    text += separator + "  Hardware\n" + separator;
    if (threads < 2)
        text += "Processor     : " + utf8(cpu.value(0)) + "\n";
    else
        text += "Processors    : " + QByteArray::number(threads) + "x " + utf8(cpu.value(0)) + "\n";
    text += "Processor speed: " + utf8(cpu.value(1)) + "\n";
    text += "Vendor name   : " + utf8(cpu.value(2)) + "\n\n";
    text += separator + "  Runtime messages\n" + separator + "\n";
    return text;
}
