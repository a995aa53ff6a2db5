#include "support/gwCorpus.h"

#include "support/gwTestEnv.h"

#include <QList>

QString gwCorpusDir()
{
    return QStringLiteral(GW_CORPUS_DIR);
}

QMap<QString, SgwCorpusReference> gwCorpusReferences(const QString& folder)
{
    QMap<QString, SgwCorpusReference> references;
    const QByteArray prefix = folder.toUtf8() + '/';
    const QList<QByteArray> lines = gwReadFile(gwCorpusDir() + QStringLiteral("/REFERENCE.tsv")).split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> f = line.split('\t');
        if (f.size() < 12 || !f[0].startsWith(prefix) || f[1] != "0")
            continue;
        references.insert(QString::fromUtf8(f[0].mid(prefix.size())),
                          SgwCorpusReference{QString::fromUtf8(f[2]), f[4].toInt(), f[5].toInt(), f[7].toInt(), f[10],
                                             f[11]});
    }
    return references;
}
