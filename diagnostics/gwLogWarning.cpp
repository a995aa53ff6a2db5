#include "diagnostics/gwLogWarning.h"

#include "diagnostics/gwLogHeader.h"
#include "diagnostics/gwSystem.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>

#include <cstdio>

void gwShowLogOpenWarning(const QString& filePath)
{
    //: Warnung
    const QString title = CgwLogFileTranslate::tr("Warning");
    //: Achtung! Die Logdatei konnte nicht geöffnet werden.
    const QString text = CgwLogFileTranslate::tr("Attention! The logfile could not be opened.");
    //: Der Dateipfad ist %1. Bitte prüfen Sie Ihre Rechte in diesem Ordner. Die Anwendung läuft mit solchen Rechteproblemen möglicherweise nicht richtig!
    const QString details = CgwLogFileTranslate::tr(
                                "File path is %1. Please check your permissions in that folder. The application "
                                "may not run correctly with such permission problems!")
                                .arg(filePath);

    auto* app = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!app || QThread::currentThread() != app->thread()) {
        std::fprintf(stderr, "%s: %s %s\n", qUtf8Printable(title), qUtf8Printable(text), qUtf8Printable(details));
        return;
    }
    QMessageBox box;
    box.setWindowTitle(QStringLiteral("%1 - %2").arg(CgwSystem::applicationName(), title));
    box.setText(text);
    box.setInformativeText(details);
    const QPixmap icon(QStringLiteral(":/GW8_items/Logos/warning.png"));
    if (!icon.isNull())
        box.setIconPixmap(icon.scaled(80, 80, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    else
        box.setIcon(QMessageBox::Warning);
    box.exec();
}
