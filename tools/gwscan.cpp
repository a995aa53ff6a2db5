// gwscan PLUGIN [IMAGE]: loads the scanner plug-in like a host application,
// asks for the scanner "HDR Atelier" and scans IMAGE (default: the plug-in's
// built-in picture).

#include <QCoreApplication>
#include <QLibrary>
#include <QString>

#include <cstdio>

namespace {
// The exported functions, looked up by their C++ names.
const char* const kSupportsSymbol = "_Z24supportsScannerHDRImportRK7QString";
const char* const kFactorySymbol = "_Z19newScannerHDRImportRK14CgwScannerInfo";
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: gwscan PLUGIN [IMAGE]\n");
        return 1;
    }
    QLibrary plugin(QString::fromLocal8Bit(argv[1]));
    if (!plugin.load()) {
        std::fprintf(stderr, "gwscan: cannot load the plug-in: %s\n", qPrintable(plugin.errorString()));
        return 1;
    }
    using Supports = bool (*)(const QString&);
    auto supports = reinterpret_cast<Supports>(plugin.resolve(kSupportsSymbol));
    if (!supports) {
        std::fprintf(stderr, "gwscan: the plug-in exports no supportsScannerHDRImport\n");
        return 1;
    }
    const QString id = QStringLiteral("HDR Atelier");
    std::printf("plug-in %s loaded; supports \"%s\": %s\n", argv[1], qPrintable(id),
                supports(id) ? "yes" : "no");
    if (!plugin.resolve(kFactorySymbol)) {
        std::printf("The plug-in has no newScannerHDRImport yet: the HDR import scan is not built, "
                    "so nothing was scanned.\n");
        return 2;
    }
    std::printf("newScannerHDRImport found, but this host does not drive a scan yet.\n");
    return 2;
}
