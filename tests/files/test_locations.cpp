// Listing folders of the disk, at once and on workers.

#include "files/gwFilePathFS.h"
#include "files/gwFilePathList.h"
#include "support/gwTestEnv.h"

#include <QSignalSpy>

#include <algorithm>

#include <gtest/gtest.h>

namespace {

const QStringList kTreeFiles = {"a.tif", "b.jpg", "chain.tif", "link.tif"};

// Two files, a link to one of them and a link to that link, two folders and a link to
// one of them, a broken link and a loop of links.
QString makeTree()
{
    const QString root = gwTestRoot() + "/tree";
    gwWriteTestFile("tree/a.tif", "12345");
    gwWriteTestFile("tree/b.jpg", "12345");
    gwWriteTestFile("tree/sub/inner.tif", "");
    gwWriteTestFile("tree/other/inner.tif", "");
    for (const auto& [target, link] : {std::pair{"a.tif", "link.tif"}, {"link.tif", "chain.tif"}, {"sub", "linkdir"},
                                       {"gone", "broken"}, {"loop1", "loop2"}, {"loop2", "loop1"}})
        QFile::link(root + "/" + target, root + "/" + link);
    return root;
}

QMap<QString, SgwFileInfo> byName(const CgwFileInfoList& list)
{
    QMap<QString, SgwFileInfo> names;
    for (const auto& entry : list)
        names.insert(entry.second.name, entry.second);
    return names;
}

} // namespace

TEST(Locations, ListingFollowsLinksAndKeepsTheirNames)
{
    const QString root = makeTree();
    CgwFilePathFS disk;
    const QMap<QString, SgwFileInfo> files = byName(disk.listFiles("file:" + root));
    EXPECT_EQ(files.keys(), kTreeFiles) << "broken links and loops are left out";
    EXPECT_EQ(files["link.tif"].size, 5);
    EXPECT_FALSE(files["a.tif"].date.isNull());
    const QMap<QString, SgwFileInfo> folders = byName(disk.listFolders("file:" + root));
    EXPECT_EQ(folders.keys(), (QStringList{"linkdir", "other", "sub"}));
    EXPECT_TRUE(folders["sub"].isFolder);

    EXPECT_TRUE(disk.listFiles("scnr:" + root).empty()) << "another scheme lists nothing";
    EXPECT_TRUE(disk.listFiles("file:" + root + "/absent").empty());
}

// The root lists the mounted volumes, named by their mount point; "/" is always among them.
TEST(Locations, RootListsMountedVolumes)
{
    const CgwFileInfoList volumes = CgwFilePathFS().listFolders("file:");
    const auto isRoot = [](const auto& v) { return v.first == "file:/" && v.second.name.startsWith("/ - "); };
    EXPECT_TRUE(std::any_of(volumes.begin(), volumes.end(), isRoot));
}

TEST(Locations, RequestsWhileAWorkerRunsAreQueuedAndAnswered)
{
    const QString root = makeTree();
    // A folder large enough that the first worker is still busy.
    for (int i = 0; i < 3000; ++i)
        gwWriteTestFile(QStringLiteral("tree/many/f%1").arg(i), "");
    CgwFilePathFS disk;
    QSignalSpy ready(&disk, &CgwFilePathBase::signalListReady);
    disk.requestFiles("file:" + root + "/many");
    disk.requestFiles("file:" + root);
    disk.requestFolders("file:" + root);
    for (int i = 0; i < 50 && ready.count() < 3; ++i)
        ready.wait(200);
    ASSERT_EQ(ready.count(), 3);
    EXPECT_EQ(ready.at(0).at(0).value<CgwFileInfoList>().size(), 3000u);
    EXPECT_TRUE(ready.at(0).at(1).toBool());
    EXPECT_EQ(byName(ready.at(1).at(0).value<CgwFileInfoList>()).keys(), kTreeFiles);
    EXPECT_FALSE(ready.at(2).at(1).toBool());
    EXPECT_EQ(ready.at(2).at(0).value<CgwFileInfoList>().size(), 4u);
}
