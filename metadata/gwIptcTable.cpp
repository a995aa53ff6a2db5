// The text table of the IPTC datasets the browser shows: tag, key, label.

#include "metadata/gwIptcTable.h"

#include <QCoreApplication>

namespace {

const SgwIptcTextRow kRows[] = {
    {0x0105, "%iptcdestination%", QT_TRANSLATE_NOOP("CgwIptc", "Destination")},
    {0x0114, "%iptcfileformat%", QT_TRANSLATE_NOOP("CgwIptc", "File format")},
    {0x0116, "%iptcfileformver%", QT_TRANSLATE_NOOP("CgwIptc", "File format version")},
    {0x011E, "%iptcservid%", QT_TRANSLATE_NOOP("CgwIptc", "Service identifier")},
    {0x0128, "%iptcenvenum%", QT_TRANSLATE_NOOP("CgwIptc", "Envelope number")},
    {0x0132, "%iptcproductid%", QT_TRANSLATE_NOOP("CgwIptc", "Product ID")},
    {0x013C, "%iptcenveprio%", QT_TRANSLATE_NOOP("CgwIptc", "Envelope priority")},
    {0x0146, "%iptcdatesent%", QT_TRANSLATE_NOOP("CgwIptc", "Date sent")},
    {0x0150, "%iptctimesent%", QT_TRANSLATE_NOOP("CgwIptc", "Time sent")},
    {0x0164, "%iptcuno%", QT_TRANSLATE_NOOP("CgwIptc", "Unique name of object")},
    {0x0178, "%iptcarmid%", QT_TRANSLATE_NOOP("CgwIptc", "ARM identifier")},
    {0x017A, "%iptcarmver%", QT_TRANSLATE_NOOP("CgwIptc", "ARM Version")},
    {0x0203, "%iptcobjtypref%", QT_TRANSLATE_NOOP("CgwIptc", "Object type reference")},
    {0x0204, "%iptcobjartref%", QT_TRANSLATE_NOOP("CgwIptc", "Object attribute reference")},
    {0x0205, "%iptcobjname%", QT_TRANSLATE_NOOP("CgwIptc", "Object name")},
    {0x0207, "%iptcedstat%", QT_TRANSLATE_NOOP("CgwIptc", "Edit status")},
    {0x0208, "%iptcedupdate%", QT_TRANSLATE_NOOP("CgwIptc", "Editorial update")},
    {0x020A, "%iptcurgend%", QT_TRANSLATE_NOOP("CgwIptc", "Urgency")},
    {0x020C, "%iptcsubjref%", QT_TRANSLATE_NOOP("CgwIptc", "Subject reference")},
    {0x020F, "%iptccat%", QT_TRANSLATE_NOOP("CgwIptc", "Category")},
    {0x0214, "%iptcsubcat%", QT_TRANSLATE_NOOP("CgwIptc", "Sublemental category")},
    {0x0216, "%iptcfixid%", QT_TRANSLATE_NOOP("CgwIptc", "Fixture identifier")},
    {0x0219, "%iptckays%", QT_TRANSLATE_NOOP("CgwIptc", "Keywords")},
    {0x021A, "%iptccontloccode%", QT_TRANSLATE_NOOP("CgwIptc", "Content location code")},
    {0x021B, "%iptccontlocname%", QT_TRANSLATE_NOOP("CgwIptc", "Content location name")},
    {0x021E, "%iptcreldate%", QT_TRANSLATE_NOOP("CgwIptc", "Release date")},
    {0x0223, "%iptcreltime%", QT_TRANSLATE_NOOP("CgwIptc", "Release time")},
    {0x0225, "%iptcexpdate%", QT_TRANSLATE_NOOP("CgwIptc", "Expiration date")},
    {0x0226, "%iptcexptime%", QT_TRANSLATE_NOOP("CgwIptc", "Expiration time")},
    {0x0228, "%iptcspcinst%", QT_TRANSLATE_NOOP("CgwIptc", "Special instructions")},
    {0x022A, "%iptcactadv%", QT_TRANSLATE_NOOP("CgwIptc", "Action adviced")},
    {0x022E, "%iptcrefserv%", QT_TRANSLATE_NOOP("CgwIptc", "Reference service")},
    {0x022F, "%iptcrefdate%", QT_TRANSLATE_NOOP("CgwIptc", "Reference date")},
    {0x0232, "%iptcrefnum%", QT_TRANSLATE_NOOP("CgwIptc", "Reference number")},
    {0x0237, "%iptcdatecreat%", QT_TRANSLATE_NOOP("CgwIptc", "Date created")},
    {0x023C, "%iptctimecreat%", QT_TRANSLATE_NOOP("CgwIptc", "Time created")},
    {0x023E, "%iptcdigcreadate%", QT_TRANSLATE_NOOP("CgwIptc", "Digital creation date")},
    {0x023F, "%iptcdigcreatime%", QT_TRANSLATE_NOOP("CgwIptc", "Digital creation time")},
    {0x0241, "%iptcorgipro%", QT_TRANSLATE_NOOP("CgwIptc", "Originating program")},
    {0x0246, "%iptcprover%", QT_TRANSLATE_NOOP("CgwIptc", "Program version")},
    {0x024B, "%iptcobjcyc%", QT_TRANSLATE_NOOP("CgwIptc", "Object cycle")},
    {0x0250, "%iptcbyline%", QT_TRANSLATE_NOOP("CgwIptc", "By-line")},
    {0x0255, "%iptcbylinetit%", QT_TRANSLATE_NOOP("CgwIptc", "By-line title")},
    {0x025A, "%iptccity%", QT_TRANSLATE_NOOP("CgwIptc", "City")},
    {0x025C, "%iptcsubloc%", QT_TRANSLATE_NOOP("CgwIptc", "Sub-location")},
    {0x025F, "%iptcstate%", QT_TRANSLATE_NOOP("CgwIptc", "Province/state")},
    {0x0264, "%iptccountcode%", QT_TRANSLATE_NOOP("CgwIptc", "Country code")},
    {0x0265, "%iptccountname%", QT_TRANSLATE_NOOP("CgwIptc", "Country name")},
    {0x0267, "%iptcorgtranref%", QT_TRANSLATE_NOOP("CgwIptc", "Original transmission reference")},
    {0x0269, "%iptcheadline%", QT_TRANSLATE_NOOP("CgwIptc", "Headline")},
    {0x026E, "%iptccreadit%", QT_TRANSLATE_NOOP("CgwIptc", "Credit")},
    {0x0273, "%iptcsource%", QT_TRANSLATE_NOOP("CgwIptc", "Source")},
    {0x0274, "%iptccopynot%", QT_TRANSLATE_NOOP("CgwIptc", "Copyright notice")},
    {0x0276, "%iptccontact%", QT_TRANSLATE_NOOP("CgwIptc", "Contact")},
    {0x0278, "%iptccapabstr%", QT_TRANSLATE_NOOP("CgwIptc", "Caption abstract")},
    {0x027A, "%iptcwrited%", QT_TRANSLATE_NOOP("CgwIptc", "Writer editor")},
    {0x027D, "%iptcrascap%", QT_TRANSLATE_NOOP("CgwIptc", "Rasterized caption")},
    {0x0282, "%iptcimgtyp%", QT_TRANSLATE_NOOP("CgwIptc", "Image type")},
    {0x0283, "%iptcimgor%", QT_TRANSLATE_NOOP("CgwIptc", "Image orientation")},
    {0x0287, "%iptclangid%", QT_TRANSLATE_NOOP("CgwIptc", "Language identifier")},
};

} // namespace

const QMap<int, SgwIptcText>& gwIptcTextTable()
{
    // Built once; a static local is initialised under the compiler's guard.
    static const QMap<int, SgwIptcText> sTable = [] {
        QMap<int, SgwIptcText> table;
        for (const SgwIptcTextRow& row : kRows)
            table.insert(row.tag, {QCoreApplication::translate("CgwIptc", row.label), QLatin1String(row.key)});
        return table;
    }();
    return sTable;
}

int gwIptcTextRowCount()
{
    return int(sizeof(kRows) / sizeof(kRows[0]));
}
