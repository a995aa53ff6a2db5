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

using PathOperation = QPainterPath (*)(const QPainterPath&, const QPainterPath&);

PathOperation pathOperation(const char* symbol)
{
    auto operation = reinterpret_cast<PathOperation>(plugin().resolve(symbol));
    EXPECT_NE(operation, nullptr) << symbol;
    return operation;
}

} // namespace

TEST(Plugin, SupportsOnlyTheExactScannerIdentifier)
{
    using Supports = bool (*)(const QString&);
    auto supports = reinterpret_cast<Supports>(plugin().resolve("_Z24supportsScannerHDRImportRK7QString"));
    ASSERT_NE(supports, nullptr);
    const struct {
        const char* id;
        bool supported;
    } cases[] = {
        {"HDR Atelier", true},   {"HDR,Atelier", false},       {"hdr atelier", false}, {"", false},
        {" HDR Atelier", false}, {"HDR Atelier ", false},      {"HDR", false},
        {"scnr:HDR Atelier", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(supports(QString::fromLatin1(c.id)), c.supported) << '"' << c.id << '"';
}

TEST(Plugin, PathHelpersCombineShapes)
{
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
        PathOperation operation = pathOperation(c.symbol);
        ASSERT_NE(operation, nullptr);
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
