// The plug-in as a host sees it: loaded with QLibrary, its functions found by their C++ names.

#include "Sourcen/Image/gwColorMode.h"
#include "imagefile/gwImageFileJPG.h"

#include <QLibrary>

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

TEST(Plugin, SupportsTheScannerIdentifierOnly)
{
    using Supports = bool (*)(const QString&);
    auto supports = reinterpret_cast<Supports>(plugin().resolve("_Z24supportsScannerHDRImportRK7QString"));
    ASSERT_NE(supports, nullptr);
    EXPECT_TRUE(supports(QStringLiteral("HDR Atelier")));
    EXPECT_FALSE(supports(QStringLiteral("HDR,Atelier"))) << "the make and model is no identifier";
}

TEST(Plugin, ExportsNothingButItsSurface)
{
    // The path helpers a host combines shapes with.
    for (const char* name : {"_ZN8QtAddons9intersectERK12QPainterPathS2_", "_ZN8QtAddons8subtractERK12QPainterPathS2_",
                             "_ZN8QtAddons5uniteERK12QPainterPathS2_"})
        EXPECT_NE(plugin().resolve(name), nullptr) << name;
    // The library's own singletons must not bind to a host's symbols of the same name.
    EXPECT_EQ(plugin().resolve("_Z13gwDebugStringRK7QString"), nullptr);
    EXPECT_EQ(plugin().resolve("sScannerTable"), nullptr);
}

TEST(Plugin, CarriesTheBuiltInPicture)
{
    ASSERT_TRUE(plugin().isLoaded());
    CgwImageFileJPG jpeg;
    const CgwBitmapHead head = jpeg.loadImageInformation(QStringLiteral("file::/standard.jpg"), 0);
    EXPECT_EQ(head.mSize, QSize(640, 420));
    EXPECT_EQ(head.mColorMode, EgwColorModeRGB);
}
