// The plug-in as a host sees it: loaded with QLibrary, its functions found by
// their C++ names.

#include "Sourcen/Image/gwColorMode.h"
#include "imagefile/gwImageFileJPG.h"

#include <QFile>
#include <QLibrary>
#include <QPainterPath>

#include <gtest/gtest.h>

namespace {

QLibrary& plugin()
{
    static QLibrary library(QStringLiteral(GW_PLUGIN_PATH));
    if (!library.isLoaded()) {
        EXPECT_TRUE(library.load()) << qPrintable(library.errorString());
    }
    return library;
}

} // namespace

TEST(Plugin, SupportsOnlyTheExactScannerIdentifier)
{
    using Supports = bool (*)(const QString&);
    auto supports = reinterpret_cast<Supports>(plugin().resolve("_Z24supportsScannerHDRImportRK7QString"));
    ASSERT_NE(supports, nullptr);
    EXPECT_TRUE(supports(QStringLiteral("HDR Atelier")));
    for (const char* id : {"HDR,Atelier", "hdr atelier", "", " HDR Atelier", "HDR Atelier ", "HDR", "scnr:HDR Atelier"})
        EXPECT_FALSE(supports(QString::fromLatin1(id))) << '"' << id << '"';
}

TEST(Plugin, PathHelpersCombineShapes)
{
    using PathOperation = QPainterPath (*)(const QPainterPath&, const QPainterPath&);
    QPainterPath a;
    a.addRect(0, 0, 10, 10);
    QPainterPath b;
    b.addRect(5, 0, 10, 10);
    const struct {
        const char* symbol;
        QRectF bounds;
    } cases[] = {
        {"_ZN8QtAddons9intersectERK12QPainterPathS2_", QRectF(5, 0, 5, 10)},
        {"_ZN8QtAddons8subtractERK12QPainterPathS2_", QRectF(0, 0, 5, 10)},
        {"_ZN8QtAddons5uniteERK12QPainterPathS2_", QRectF(0, 0, 15, 10)},
    };
    for (const auto& c : cases) {
        auto operation = reinterpret_cast<PathOperation>(plugin().resolve(c.symbol));
        ASSERT_NE(operation, nullptr) << c.symbol;
        EXPECT_EQ(operation(a, b).boundingRect(), c.bounds) << c.symbol;
    }
}

TEST(Plugin, ExportsNothingButItsSurface)
{
    // The library's own singletons must not bind to a host's symbols of the same name.
    EXPECT_EQ(plugin().resolve("_Z13gwDebugStringRK7QString"), nullptr);
    EXPECT_EQ(plugin().resolve("sScannerTable"), nullptr);
}

TEST(Plugin, CarriesTheBuiltInPicture)
{
    ASSERT_TRUE(plugin().isLoaded());
    QFile picture(QStringLiteral(":/standard.jpg"));
    ASSERT_TRUE(picture.open(QIODevice::ReadOnly));
    EXPECT_TRUE(picture.read(3) == QByteArray("\xff\xd8\xff"));
    CgwImageFileJPG jpeg;
    const CgwBitmapHead head = jpeg.loadImageInformation(QStringLiteral("file::/standard.jpg"), 0);
    EXPECT_EQ(head.mSize, QSize(640, 420));
    EXPECT_EQ(head.mColorMode, EgwColorModeRGB);
}
