// Every input the fuzzers ever crashed on, replayed: none may harm us again.

#include "support/gwFuzzBodies.h"
#include "support/gwTestEnv.h"

#include <QDir>

#include <gtest/gtest.h>

TEST(FuzzFindings, ExifStreamsThatOnceCrashed)
{
    const QDir findings(QStringLiteral(GW_TEST_DATA_DIR "/fuzz/exif"));
    const QStringList files = findings.entryList(QDir::Files);
    EXPECT_FALSE(files.isEmpty());
    for (const QString& name : files) {
        SCOPED_TRACE(name.toStdString());
        gwFuzzExifStream(gwReadFile(findings.filePath(name)));
    }
}
